#include "supp/served_templates.h"

#include <algorithm>
#include <cstring>
#include <mutex>

namespace qzr {

namespace {

// The library compares vectors of bytes one by one.
bool same_bytes(const Vector<std::byte>& a, const Vector<std::byte>& b) noexcept {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size()) == 0;
}

} // namespace

// A resource that is found again may be another one: its module went, and a new one came to its place.
void ServedTemplates::note(HRSRC resource, const DialogSource& source) {
    const std::lock_guard lock(lock_);
    notes_.try_emplace(resource, Note{source, nullptr}).first->second.source = source;
}

std::optional<DialogSource> ServedTemplates::source(HRSRC resource) const {
    const std::lock_guard lock(lock_);
    const auto found = notes_.find(resource);
    if (found == notes_.end()) return std::nullopt;
    return found->second.source;
}

DialogBytes ServedTemplates::keep(HRSRC resource, Vector<std::byte>&& copy, std::size_t original_size) {
    copy.resize(std::max(copy.size(), original_size));
    const std::lock_guard lock(lock_);
    const auto note = notes_.find(resource);
    if (note == notes_.end()) return {};
    const std::byte*& newest = note->second.newest;
    if (newest == nullptr || !same_bytes(copies_.at(newest), copy)) {
        const std::byte* const data = copy.data();
        copies_.emplace(data, std::move(copy));
        newest = data;
    }
    return {newest, copies_.at(newest).size()};
}

bool ServedTemplates::holds(const void* data) const noexcept {
    const std::lock_guard lock(lock_);
    return copies_.find(data) != copies_.end();
}

} // namespace qzr
