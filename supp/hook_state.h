// The state of the hooks, one per process.
#pragma once

#include "core/library.h"
#include "supp/hook_table.h"
#include "supp/import_patch.h"
#include "supp/served_templates.h"

namespace qzr {

// Modules beside the fixed list that are hooked with a dictionary, as soon as they are there.
inline constexpr unsigned kExtraModules = 4;

// Built when the library loads, with nothing hooked; see core/library.h. The patches come last: at unload the
// modules are back to the system's functions before anything goes that the replacements use.
struct HookState {
    explicit HookState(HINSTANCE own_module) : patches(own_module) {}

    std::atomic<HMODULE> extra_modules[kExtraModules] = {};
    UnhookedFunctions unhooked;
    ServedTemplates templates;
    ImportPatches patches;
};

inline HookState& hooks() noexcept { return *library().hooks; }

// For the replacements: what they replaced.
template <class Function>
Function* unhooked(Hook hook, Function* system) noexcept {
    return hooks().unhooked.get(hook, system);
}

} // namespace qzr
