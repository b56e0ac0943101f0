// The state of the hooks, one per process.
#pragma once

#include "core/library.h"
#include "supp/import_patch.h"

namespace qzr {

// Built when the library loads, with nothing hooked; see core/library.h. The patches come last: at unload the
// modules are back to the system's functions before anything goes that the replacements use.
struct HookState {
    explicit HookState(HINSTANCE own_module) : patches(own_module) {}

    ImportPatches patches;
};

inline HookState& hooks() noexcept { return *library().hooks; }

} // namespace qzr
