// The table of a dictionary: from the hash of a text to its narrow texts and its wide translation.
#pragma once

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

#include <emmintrin.h>

namespace qzr {

using WideText = std::atomic<wchar_t*>; // a block of the default heap; null until somebody asks for it

// What is known of a text. Lies in the table, so it holds until something is added.
struct DictionaryEntry {
    unsigned pair = 0; // of narrow texts; 0 when there is no entry
    WideText* wide = nullptr;

    explicit operator bool() const noexcept { return pair != 0; }
};

// Open addressing over groups of four entries. A group fills a line of the cache and its hashes are compared
// at once, so nine of ten look-ups touch this line alone, and no branch on the way is hard to guess.
class DictionaryTable {
public:
    DictionaryTable() noexcept = default;
    ~DictionaryTable();
    DictionaryTable(const DictionaryTable&) = delete;
    DictionaryTable& operator=(const DictionaryTable&) = delete;

    unsigned size() const noexcept { return size_; }

    DictionaryEntry find(unsigned hash) const noexcept {
        if (size_ == 0) return {};
        const __m128i wanted = _mm_set1_epi32(static_cast<int>(hash));
        for (unsigned i = home(hash);; i = after(i)) {
            Group& group = groups_[i];
            const __m128i hashes = _mm_load_si128(reinterpret_cast<const __m128i*>(group.hashes));
            const int equal = _mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(hashes, wanted)));
            if (equal != 0) {
                // May be a free place, when 0 is looked for: that has no pair.
                const int place = std::countr_zero(static_cast<unsigned>(equal));
                return {group.pairs[place], &group.wide[place]};
            }
            if (group.pairs[kPlaces - 1] == 0) return {};
        }
    }

    // Makes sure that one more entry can be added. Throws CXMemException, and nothing is changed then.
    void make_room();

    // Adds an entry, whose hash must not be there yet; after make_room().
    DictionaryEntry add(unsigned hash, unsigned pair) noexcept;

private:
    static constexpr unsigned kPlaces = 4;

    struct alignas(64) Group { // its places are taken from the first one on
        unsigned hashes[kPlaces] = {};
        unsigned pairs[kPlaces] = {}; // 0: the place is free
        WideText wide[kPlaces] = {};
    };
    static_assert(sizeof(Group) == 64, "as large as a line");

    // The hashes of like texts lie close together, so they are scattered.
    unsigned home(unsigned hash) const noexcept {
        const unsigned scattered = (hash ^ (hash >> 16)) * 0x9E3779B1u;
        return static_cast<unsigned>(scattered * std::uint64_t{groups_count_} >> 32);
    }
    unsigned after(unsigned group) const noexcept { return group + 1 < groups_count_ ? group + 1 : 0; }

    Group* groups_ = nullptr;
    void* memory_ = nullptr; // the block they lie in
    unsigned groups_count_ = 0;
    unsigned size_ = 0; // entries, at most three quarters of the places
};

} // namespace qzr
