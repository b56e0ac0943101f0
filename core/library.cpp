#include "core/library.h"

#include "fio/file_state.h"
#include "supp/hook_state.h"
#include "supp/translation_context.h"

#include <memory>

namespace qzr {

namespace {

// The module that holds a given piece of code: the system names it by where its image begins.
HINSTANCE module_around(const void* code) {
    MEMORY_BASIC_INFORMATION region = {};
    VirtualQuery(code, &region, sizeof region);
    return static_cast<HINSTANCE>(region.AllocationBase);
}

// Everything: what stands in core/, then what later folders need.
struct Process {
    Process() : hooks(library.module) {
        library.files = &files;
        library.translation = &translation;
        library.hooks = &hooks;
    }

    Library library;
    FileState files;
    TranslationContext translation;
    HookState hooks;
};

constinit bool running = false;

} // namespace

namespace detail {
alignas(Process) constinit std::byte library_storage[sizeof(Process)] = {};
}

Library::Library()
    : module(module_around(reinterpret_cast<const void*>(&start_library))),
      service_container("CLSID_OFSERVICECONTAINER", module) {
    heaps.set_recycled(&blocks);
}

bool start_library() noexcept {
    try {
        new (detail::library_storage) Process;
        running = true;
    } catch (...) {
        // The loader takes false for an answer; an exception would end the process.
    }
    return running;
}

void stop_library() noexcept {
    if (!running) return;
    running = false;
    std::destroy_at(reinterpret_cast<Process*>(detail::library_storage));
}

} // namespace qzr
