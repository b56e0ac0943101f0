#include "param/memory/name_slots.h"

#include "qzexception.h"

#include <algorithm>
#include <limits>

namespace qzr {

namespace {

NameEntry* allocate(unsigned entries) {
    return static_cast<NameEntry*>(block_alloc(entries * sizeof(NameEntry)));
}

void deallocate(NameEntry* segment, unsigned entries) noexcept {
    block_free(segment, entries * sizeof(NameEntry));
}

} // namespace

void NameSlots::grow() {
    if (capacity_ >= kSegment) {
        if (capacity_ > std::numeric_limits<int>::max() - kSegment) throw CXMemException();
        if (segments_.empty()) segments_.push_back(first_);
        segments_.push_back(nullptr);
        try {
            segments_.back() = allocate(kSegment);
        } catch (...) {
            segments_.pop_back();
            throw;
        }
        capacity_ += kSegment;
        return;
    }
    const unsigned larger = std::max(2 * capacity_, kFirstCapacity);
    NameEntry* const grown = allocate(larger);
    if (size_ != 0) std::memcpy(static_cast<void*>(grown), first_, size_ * sizeof(NameEntry));
    deallocate(first_, capacity_);
    first_ = grown;
    capacity_ = larger;
}

void NameSlots::shrink(unsigned size) noexcept {
    size_ = size;
    while (capacity_ > kSegment && size <= capacity_ - kSegment) {
        deallocate(segments_.back(), kSegment);
        segments_.pop_back();
        capacity_ -= kSegment;
    }
    if (size != 0) return;
    segments_.clear();
    deallocate(first_, capacity_);
    first_ = nullptr;
    capacity_ = 0;
}

} // namespace qzr
