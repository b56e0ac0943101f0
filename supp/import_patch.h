// Redirected imports: slots of import tables that were changed, and are changed back.
#pragma once

#include "core/allocator.h"
#include "core/native_lock.h"
#include "core/windows_lean.h"

namespace qzr {

// One slot that was made to hold another function. Whoever changes the slot later keeps it: it is restored
// only while it holds what was put there.
class ImportPatch {
public:
    ImportPatch(const void* module, void** slot, void* original, void* replacement) noexcept
        : module_(module), slot_(slot), original_(original), replacement_(replacement) {}

    const void* module() const noexcept { return module_; }

    // False when the system refuses to make the slot writable.
    bool apply() const noexcept;
    // False when the slot holds something else by now, or is gone with its module.
    bool restore() const noexcept;

    // Whether `other` is made in the very state that this one was made in: then this one's work was undone by
    // someone else, or its module went and came back.
    bool superseded_by(const ImportPatch& other) const noexcept {
        return slot_ == other.slot_ && original_ == other.original_;
    }

private:
    const void* module_;
    void** slot_;
    void* original_;
    void* replacement_;
};

// All patches of the process.
class ImportPatches {
public:
    explicit ImportPatches(const void* own_module) noexcept : own_module_(own_module) {}
    ~ImportPatches() { restore_all(); }
    ImportPatches(const ImportPatches&) = delete;
    ImportPatches& operator=(const ImportPatches&) = delete;

    // Redirects one function in one module: every slot that holds the address that the exporter has for the
    // function. The library's own module is left alone, since the replacements call through it.
    // @return the function's own address, also when the module does not import it; null when the exporter or
    // the function is missing, the module's image is damaged or a slot cannot be written; the address of a
    // function that does nothing for a null module. Throws CXMemException.
    void* install(HINSTANCE module, const char* exporter, const char* function, void* replacement);

    // Slots that someone else has changed stay as they are, and are tried again next time.
    void restore(const void* module) noexcept;
    void restore_all() noexcept;

private:
    bool patch(const ImportPatch& added);

    const void* own_module_;
    NativeLock lock_;
    Vector<ImportPatch> patches_; // oldest first
};

} // namespace qzr
