#include "supp/import_patch.h"

#include "core/readable_memory.h"
#include "supp/pe_imports.h"

#include <algorithm>
#include <atomic>
#include <mutex>

namespace qzr {

namespace {

// What a null module's functions are: callers call what they got.
long long no_function() { return 0; }

// Other threads may be calling through the slot.
bool write_slot(void** slot, void* function) noexcept {
    DWORD protection = 0;
    if (!VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection)) return false;
    std::atomic_ref<void*>(*slot).store(function);
    VirtualProtect(slot, sizeof *slot, protection, &protection);
    FlushInstructionCache(GetCurrentProcess(), slot, sizeof *slot);
    return true;
}

void* address_of(const char* exporter, const char* function) noexcept {
    const HMODULE module = GetModuleHandleA(exporter);
    return module != nullptr ? reinterpret_cast<void*>(GetProcAddress(module, function)) : nullptr;
}

} // namespace

bool ImportPatch::apply() const noexcept { return write_slot(slot_, replacement_); }

bool ImportPatch::restore() const noexcept {
    if (readable_bytes(slot_, sizeof *slot_) != sizeof *slot_ || *slot_ != replacement_) return false;
    return write_slot(slot_, original_);
}

void* ImportPatches::install(HINSTANCE module, const char* exporter, const char* function,
                             void* replacement) {
    if (module == nullptr) return reinterpret_cast<void*>(&no_function);
    void* const original = address_of(exporter, function);
    if (original == nullptr) return nullptr;
    if (module == own_module_) return original;
    Vector<void**> slots;
    if (!find_import_slots(module, original, slots)) return nullptr;
    const std::lock_guard lock(lock_);
    const bool done = std::all_of(slots.begin(), slots.end(), [&](void** slot) {
        return patch(ImportPatch(module, slot, original, replacement));
    });
    return done ? original : nullptr;
}

// The record comes first: a slot that was changed and not recorded would outlive the library.
bool ImportPatches::patch(const ImportPatch& added) {
    std::erase_if(patches_, [&](const ImportPatch& old) { return old.superseded_by(added); });
    patches_.push_back(added);
    if (added.apply()) return true;
    patches_.pop_back();
    return false;
}

// Newest first, so that a slot that was patched twice passes through all its states.
void ImportPatches::restore(const void* module) noexcept {
    const std::lock_guard lock(lock_);
    for (auto i = patches_.size(); i-- != 0;)
        if (patches_[i].module() == module && patches_[i].restore())
            patches_.erase(patches_.begin() + static_cast<std::ptrdiff_t>(i));
}

void ImportPatches::restore_all() noexcept {
    for (auto i = patches_.size(); i-- != 0;)
        patches_[i].restore();
    patches_.clear();
}

} // namespace qzr
