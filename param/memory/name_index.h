// Finding the entries of a long list by hash.
#pragma once

#include "param/memory/name_slots.h"

namespace qzr {

// Open addressing with linear probing over one 32-bit word a place: the entry's position plus one in the low
// bits, and in the others, as far as they reach, a part of its hash. So a search reads one or two lines of
// the table and then the entry itself, and other entries hardly ever. Zero marks a free place.
//
// The word of an entry that is not found any more stays, and is taken for the next one of that hash: entries
// that have left the list keep their positions until the list is tidied up, which builds the index anew.
class NameIndex {
public:
    NameIndex() noexcept = default;
    NameIndex(const NameIndex&) = delete;
    NameIndex& operator=(const NameIndex&) = delete;
    ~NameIndex() { clear(); }

    bool active() const noexcept { return words_ != nullptr; }

    // The position of the entry that is found by this hash, or kNone.
    static constexpr unsigned kNone = ~0u;
    unsigned find(unsigned hash, const NameSlots& slots) const noexcept {
        const unsigned scattered = scatter(hash);
        const unsigned tag = tag_of(scattered);
        for (unsigned place = home(scattered); words_[place] != 0; place = after(place)) {
            const unsigned behind = words_[place] ^ tag; // the position plus one, when the tag is the same
            if (behind <= mask_ && slots[behind - 1].found_by(hash)) return behind - 1;
        }
        return kNone;
    }

    // Enters the last of the slots. Throws CXMemException, and nothing has changed then.
    void add_last(const NameSlots& slots) {
        if (slots.size() > most()) {
            build(slots);
        } else {
            place(slots.size() - 1, slots);
        }
    }

    // Enters all slots that are found, instead of what was there, in a table of the right size. Throws
    // CXMemException, and nothing has changed then.
    void build(const NameSlots& slots);

    // The same for slots that have become fewer: without memory for another table it keeps its own.
    void rebuild(const NameSlots& slots) noexcept;

    void clear() noexcept;

private:
    // Name hashes lie close together. Different hashes stay different.
    static unsigned scatter(unsigned hash) noexcept { return (hash ^ (hash >> 16)) * 0x9E3779B1u; }

    // The high bits of the scattered hash say where to look, the others are the tag, above the position.
    unsigned home(unsigned scattered) const noexcept { return scattered >> (32 - bits_); }
    unsigned tag_of(unsigned scattered) const noexcept { return scattered << bits_; }
    unsigned after(unsigned place) const noexcept { return (place + 1) & mask_; }

    // The most slots for a table of this size: thirteen of sixteen places.
    unsigned long long most() const noexcept { return active() ? most_of(bits_) : 0; }
    static unsigned long long most_of(unsigned bits) noexcept { return (13ull << bits) / 16; }

    void place(unsigned position, const NameSlots& slots) noexcept;
    void place_all(const NameSlots& slots) noexcept;

    unsigned* words_ = nullptr;
    unsigned bits_ = 0; // 2^bits_ places
    unsigned mask_ = 0;
};

} // namespace qzr
