// The entries of a list of names, in the order in which they came.
#pragma once

#include "core/allocator.h"
#include "param/memory/packed_value.h"

#include <cstring>
#include <utility>

namespace qzr {

struct NameEntry {
    // kFound: listed, and found by its hash. kOrphan: listed only. kHole: it has left the list. Those that
    // are not found hold an empty value.
    enum class State : unsigned char { kFound, kOrphan, kHole };

    PackedValue value;
    State state = State::kFound;
    unsigned hash = 0;
    const char* name = nullptr; // in the list's pool

    bool found_by(unsigned wanted) const noexcept { return hash == wanted && state == State::kFound; }
};
static_assert(sizeof(NameEntry) == 32, "every byte here is paid once per value");

// A growing array in segments: entries of a full segment stay where they are, and what is not used is a part
// of one segment at most. While there is only one, it grows by doubling.
class NameSlots {
public:
    NameSlots() noexcept = default;
    NameSlots(NameSlots&& other) noexcept { swap(other); }
    NameSlots& operator=(const NameSlots&) = delete;
    ~NameSlots() { shrink(0); }

    unsigned size() const noexcept { return size_; }
    // Asks for the number of segments, which the processor can foresee, and not whether it is the first.
    NameEntry& operator[](unsigned at) noexcept {
        return capacity_ <= kSegment ? first_[at] : segments_[at / kSegment][at % kSegment];
    }
    const NameEntry& operator[](unsigned at) const noexcept { return const_cast<NameSlots&>(*this)[at]; }

    // A new entry at the end. References to others are good until the next one. Throws CXMemException.
    NameEntry& push() {
        if (size_ == capacity_) grow();
        return *new (&(*this)[size_++]) NameEntry;
    }

    // Cuts what stands behind; the entries are forgotten as they are.
    void shrink(unsigned size) noexcept;

    void swap(NameSlots& other) noexcept {
        std::swap(first_, other.first_);
        segments_.swap(other.segments_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

private:
    static constexpr unsigned kSegment = 512;
    static constexpr unsigned kFirstCapacity = 2;

    void grow();

    NameEntry* first_ = nullptr;
    Vector<NameEntry*> segments_; // all, once there is more than one
    unsigned size_ = 0;
    unsigned capacity_ = 0;
};

} // namespace qzr
