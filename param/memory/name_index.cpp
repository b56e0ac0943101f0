#include "param/memory/name_index.h"

#include "core/allocator.h"
#include "qzexception.h"

#include <cstring>

namespace qzr {

namespace {

constexpr unsigned kFirstBits = 4;
constexpr unsigned kMostBits = 31;

} // namespace

void NameIndex::build(const NameSlots& slots) {
    unsigned bits = kFirstBits;
    while (most_of(bits) < slots.size())
        ++bits;
    if (bits > kMostBits) throw CXMemException();
    auto* const words = static_cast<unsigned*>(mem_alloc((std::size_t{1} << bits) * sizeof(unsigned)));
    clear();
    words_ = words;
    bits_ = bits;
    mask_ = (1u << bits) - 1;
    place_all(slots);
}

void NameIndex::rebuild(const NameSlots& slots) noexcept {
    try {
        build(slots);
    } catch (const CXMemException&) {
        std::memset(words_, 0, (std::size_t{mask_} + 1) * sizeof(unsigned));
        place_all(slots);
    }
}

void NameIndex::place_all(const NameSlots& slots) noexcept {
    for (unsigned position = 0; position < slots.size(); ++position)
        if (slots[position].state == NameEntry::State::kFound) place(position, slots);
}

void NameIndex::place(unsigned position, const NameSlots& slots) noexcept {
    const unsigned scattered = scatter(slots[position].hash);
    const unsigned tag = tag_of(scattered);
    unsigned place = home(scattered);
    for (; words_[place] != 0; place = after(place)) {
        const unsigned other = words_[place] ^ tag;
        if (other <= mask_ && slots[other - 1].state != NameEntry::State::kFound) break;
    }
    words_[place] = (position + 1) ^ tag;
}

void NameIndex::clear() noexcept {
    mem_free(words_);
    words_ = nullptr;
    bits_ = mask_ = 0;
}

} // namespace qzr
