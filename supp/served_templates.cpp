#include "supp/served_templates.h"

#include <mutex>

namespace qzr {

// A resource that is found again may be another one: its module went, and a new one came to its place.
void ServedTemplates::note(HRSRC resource, DialogSource&& source) {
    auto shared = std::allocate_shared<DialogSource>(HeapAllocator<DialogSource>(), std::move(source));
    const std::lock_guard lock(lock_);
    Note& note = notes_[resource];
    note.source = std::move(shared);
    note.original = {};
}

ServedTemplates::Note ServedTemplates::find(HRSRC resource) const noexcept {
    const std::lock_guard lock(lock_);
    const auto found = notes_.find(resource);
    return found != notes_.end() ? found->second : Note();
}

DialogBytes ServedTemplates::keep(HRSRC resource, const DialogBytes& original, DialogCopy& copy) {
    if (copy.size() < original.size) copy.append_zeroes(original.size - copy.size());
    const std::lock_guard lock(lock_);
    const auto found = notes_.find(resource);
    if (found == notes_.end()) return {};
    Note& note = found->second;
    note.original = original;
    if (!same_bytes(note.newest, {copy.data(), copy.size()})) {
        Vector<std::byte> kept(copy.data(), copy.data() + copy.size());
        const DialogBytes bytes = {kept.data(), kept.size()};
        copies_.emplace(bytes.data, std::move(kept));
        note.newest = bytes;
    }
    return note.newest;
}

bool ServedTemplates::holds(const void* data) const noexcept {
    const std::lock_guard lock(lock_);
    return copies_.find(data) != copies_.end();
}

} // namespace qzr
