// Translated dialog templates for code that finds, loads and locks templates itself.
#pragma once

#include "core/native_lock.h"
#include "supp/dialog_source.h"

#include <map>
#include <memory>

namespace qzr {

// Copies live until the library is unloaded: the system never frees a loaded resource either, and callers go
// on using it. The handle of a copy is its address, so it also locks where the hooks do not reach.
class ServedTemplates {
public:
    ServedTemplates() noexcept = default;
    ServedTemplates(const ServedTemplates&) = delete;
    ServedTemplates& operator=(const ServedTemplates&) = delete;

    // What is known of a resource: where it comes from, and the bytes of it that were found readable when a
    // copy was kept.
    struct Note {
        std::shared_ptr<const DialogSource> source;
        DialogBytes original;
        DialogBytes newest; // copy
    };

    // Remembers that a resource is a dialog template. Throws CXMemException.
    void note(HRSRC resource, DialogSource&& source);
    Note find(HRSRC resource) const noexcept; // without a source for other resources

    // Keeps a copy, or finds the same one again that was kept last for this resource. It is as large as the
    // original at least, which somebody may have measured. Throws CXMemException.
    DialogBytes keep(HRSRC resource, const DialogBytes& original, DialogCopy& copy);

    bool holds(const void* data) const noexcept;

private:
    template <class Key, class Value>
    using Map = std::map<Key, Value, std::less<>, HeapAllocator<std::pair<const Key, Value>>>;

    mutable NativeLock lock_;
    Map<HRSRC, Note> notes_;
    Map<const void*, Vector<std::byte>> copies_; // by address
};

} // namespace qzr
