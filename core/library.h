// The library's process-wide objects.
//
// Start-up. When the system loads the DLL, its entry point builds one Process in static storage: each member
// in the order below, since each may use those above it. Nothing else in the library is built at start-up: no
// other file defines a global that needs a constructor or a destructor. (constinit ones with a trivial
// destructor are fine.)
//
// Unload. The entry point destroys the Library, members in reverse order, both when the DLL is freed and when
// the process ends. At the end of the process the other threads are gone, wherever they stood: destructors
// wait for no event and no mutex. Whoever calls in after that finds the class registry closed and must not
// allocate.
//
// A later folder whose state needs building adds it to the struct Process in library.cpp, behind the members
// here, with a pointer to it in Library; library.cpp alone may name the types of all folders.
#pragma once

#include "core/block_cache.h"
#include "core/global_mutex.h"
#include "core/heap_manager.h"
#include "core/object_registry.h"
#include "core/windows_lean.h"

#include <atomic>
#include <cstddef>

namespace qzr {

struct StringLoaders;      // string/resource_text.h
struct FileState;          // fio/file_state.h
struct TranslationContext; // supp/translation_context.h
struct HookState;          // supp/hook_state.h

struct Library {
    Library();

    HINSTANCE module;         // the library's own
    HeapManager heaps;        // everything below may own heap blocks
    BlockCache blocks;        //
    GlobalMutex global_mutex; //
    ObjectRegistry objects;   // classes by name
    CQZObjectRegistrar service_container;
    std::atomic<const StringLoaders*> string_loaders = nullptr; // null: those of the system
    FileState* files = nullptr;                // locks and result buffers of the file functions
    TranslationContext* translation = nullptr; // dictionary, its code page, the hooks' switch
    HookState* hooks = nullptr;                // redirected imports
};

namespace detail {
extern std::byte library_storage[]; // begins with the Library
}

// Valid from start-up to unload; costs nothing.
inline Library& library() noexcept { return *reinterpret_cast<Library*>(detail::library_storage); }

// For the entry point alone.
bool start_library() noexcept; // false when memory is missing
void stop_library() noexcept;  // does nothing when the library did not start

} // namespace qzr
