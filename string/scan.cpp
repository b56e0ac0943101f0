#include "string/scan.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include <emmintrin.h>

namespace qzr {
namespace {

constexpr std::size_t kBlock = 16;

// Bits of a comparison mask: one a byte, so two a wide unit.
unsigned mask_of(__m128i equal) { return static_cast<unsigned>(_mm_movemask_epi8(equal)); }

unsigned lowest(unsigned mask) { return static_cast<unsigned>(std::countr_zero(mask)); }
unsigned highest(unsigned mask) { return 31U - static_cast<unsigned>(std::countl_zero(mask)); }

// What differs between the two widths.
template <class Unit>
struct Lanes;

template <>
struct Lanes<char> {
    static constexpr std::size_t kUnits = kBlock;
    static __m128i all(char c) { return _mm_set1_epi8(c); }
    static __m128i equal(__m128i a, __m128i b) { return _mm_cmpeq_epi8(a, b); }
    static __m128i least(__m128i a, __m128i b) { return _mm_min_epu8(a, b); }
    static unsigned beyond_ascii(__m128i v) { return mask_of(v); }
    static bool is_ascii(char c) { return static_cast<unsigned char>(c) < 0x80; }
};

template <>
struct Lanes<wchar_t> {
    static constexpr std::size_t kUnits = kBlock / 2;
    static __m128i all(wchar_t c) { return _mm_set1_epi16(static_cast<short>(c)); }
    static __m128i equal(__m128i a, __m128i b) { return _mm_cmpeq_epi16(a, b); }
    static __m128i least(__m128i a, __m128i b) { return _mm_sub_epi16(a, _mm_subs_epu16(a, b)); }
    static unsigned beyond_ascii(__m128i v) {
        const __m128i high = _mm_and_si128(v, _mm_set1_epi16(static_cast<short>(0xFF80)));
        return mask_of(_mm_cmpeq_epi16(high, _mm_setzero_si128())) ^ 0xFFFFU;
    }
    static bool is_ascii(wchar_t c) { return c < 0x80; }
};

template <class Unit>
__m128i load(const Unit* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// A line of the processor's cache, aligned: one with a byte of the text in it may be read as a whole, since
// it lies in the page of that byte.
constexpr std::size_t kBlocksOfLine = 4;
constexpr std::size_t kLine = kBlocksOfLine * kBlock;

const __m128i* line_of(std::uintptr_t address) {
    return reinterpret_cast<const __m128i*>(address & ~std::uintptr_t{kLine - 1});
}

// A mask for each block of a line, in one.
template <class Mask>
[[gnu::always_inline]] inline std::uint64_t bits_of_line(const __m128i* line, Mask mask) {
    const auto bits = [&](int block) {
        return std::uint64_t{mask(_mm_load_si128(line + block))} << 16 * block;
    };
    return bits(0) | bits(1) | bits(2) | bits(3);
}

// Bits of the bytes of a line that are in zero units.
template <class Unit>
[[gnu::always_inline]] inline std::uint64_t zeroes(const __m128i* line) {
    return bits_of_line(line, [](__m128i v) { return mask_of(Lanes<Unit>::equal(v, _mm_setzero_si128())); });
}

// Bits of those in units beyond ASCII.
template <class Unit>
std::uint64_t beyond_ascii(const __m128i* line) {
    return bits_of_line(line, [](__m128i v) { return Lanes<Unit>::beyond_ascii(v); });
}

template <class Unit>
bool has_zero(const __m128i* line) {
    const auto least_of = [=](int at) {
        return Lanes<Unit>::least(_mm_load_si128(line + at), _mm_load_si128(line + at + 1));
    };
    const __m128i least = Lanes<Unit>::least(least_of(0), least_of(2));
    return mask_of(Lanes<Unit>::equal(least, _mm_setzero_si128())) != 0;
}

// An odd wide text has units that lie across blocks.
std::size_t walked_length(const wchar_t* text, std::size_t limit) {
    std::size_t n = 0;
    for (wchar_t unit; n < limit && (std::memcpy(&unit, text + n, sizeof unit), unit != 0);)
        ++n;
    return n;
}

// Of the bit of a unit's first byte.
std::size_t unit_at(std::uint64_t found, std::size_t unit_size) {
    return static_cast<unsigned>(std::countr_zero(found)) / unit_size;
}

// Nearly every operation on a string begins here, since none keeps its length. Whole lines leave the
// processor nothing to guess but their number: half the time of one block after the other where lengths vary.
template <class Unit>
std::size_t length(const Unit* text) {
    const auto address = reinterpret_cast<std::uintptr_t>(text);
    if constexpr (sizeof(Unit) != 1)
        if (address % sizeof(Unit) != 0) return walked_length(text, SIZE_MAX);
    const __m128i* line = line_of(address);
    const std::size_t skipped = address % kLine;
    const std::uint64_t found = zeroes<Unit>(line) >> skipped;
    if (found != 0) return unit_at(found, sizeof(Unit));
    do
        line += kBlocksOfLine;
    while (!has_zero<Unit>(line));
    const std::size_t seen = reinterpret_cast<std::uintptr_t>(line) - address;
    return seen / sizeof(Unit) + unit_at(zeroes<Unit>(line), sizeof(Unit));
}

template <class Unit>
std::size_t length(const Unit* text, std::size_t limit) {
    const auto address = reinterpret_cast<std::uintptr_t>(text);
    if constexpr (sizeof(Unit) != 1)
        if (address % sizeof(Unit) != 0) return walked_length(text, limit);
    if (limit == 0) return 0;
    const __m128i* line = line_of(address);
    const std::size_t skipped = address % kLine;
    std::uint64_t found = zeroes<Unit>(line) >> skipped;
    std::size_t seen = 0;
    if (found == 0) {
        line += kBlocksOfLine;
        for (seen = (kLine - skipped) / sizeof(Unit); seen < limit && !has_zero<Unit>(line);
             seen += kLine / sizeof(Unit))
            line += kBlocksOfLine;
        if (seen >= limit) return limit;
        found = zeroes<Unit>(line);
    }
    return std::min(seen + unit_at(found, sizeof(Unit)), limit);
}

// The first of n units that is a hit, or n. `block` gives the hits among the units of a block as bits of a
// mask, `unit` tells of a single one. The last block ends with the last unit and overlaps the one before.
template <class Unit, class Block, class One>
std::size_t first_hit(std::size_t n, Block block, One unit) {
    if (n < Lanes<Unit>::kUnits) {
        std::size_t i = 0;
        while (i < n && !unit(i))
            ++i;
        return i;
    }
    const std::size_t last = n - Lanes<Unit>::kUnits;
    for (std::size_t at = 0;; at = std::min(at + Lanes<Unit>::kUnits, last)) {
        if (const unsigned mask = block(at)) return at + lowest(mask) / sizeof(Unit);
        if (at == last) return n;
    }
}

template <class Unit>
const Unit* find_first(const Unit* begin, const Unit* end, Unit c) {
    const __m128i wanted = Lanes<Unit>::all(c);
    const Unit* const found =
        begin + first_hit<Unit>(
                    static_cast<std::size_t>(end - begin),
                    [=](std::size_t at) { return mask_of(Lanes<Unit>::equal(load(begin + at), wanted)); },
                    [=](std::size_t i) { return begin[i] == c; });
    return found != end ? found : nullptr;
}

template <class Unit>
const Unit* find_last(const Unit* begin, const Unit* end, Unit c) {
    const __m128i wanted = Lanes<Unit>::all(c);
    for (; static_cast<std::size_t>(end - begin) >= Lanes<Unit>::kUnits; end -= Lanes<Unit>::kUnits)
        if (const unsigned mask = mask_of(Lanes<Unit>::equal(load(end - Lanes<Unit>::kUnits), wanted)))
            return end - Lanes<Unit>::kUnits + highest(mask) / sizeof(Unit);
    while (end != begin)
        if (*--end == c) return end;
    return nullptr;
}

// A text to look for, n units of it.
template <class Unit>
class Needle {
public:
    Needle(const Unit* text, std::size_t n) : text_(text), n_(n) {
        const std::size_t bytes = std::min(n * sizeof(Unit), kBlock);
        char start[kBlock] = {};
        std::memcpy(start, text, bytes);
        start_ = load(start);
        start_mask_ = (1U << bytes) - 1;
    }

    // Whether it stands at p, where at least n units are left before the end.
    bool is_at(const Unit* p, const Unit* end) const {
        if (static_cast<std::size_t>(end - p) < Lanes<Unit>::kUnits) return rest_is_at(p, 0);
        if ((~mask_of(_mm_cmpeq_epi8(load(p), start_)) & start_mask_) != 0) return false;
        return n_ <= Lanes<Unit>::kUnits || rest_is_at(p, Lanes<Unit>::kUnits);
    }

private:
    bool rest_is_at(const Unit* p, std::size_t from) const {
        return std::memcmp(p + from, text_ + from, (n_ - from) * sizeof(Unit)) == 0;
    }

    const Unit* text_;
    std::size_t n_;
    __m128i start_;
    unsigned start_mask_;
};

// The places where the first, the middle and the last unit of a text stand, which passes over words that
// begin and end alike.
template <class Unit>
class Candidates {
public:
    Candidates(const Unit* text, std::size_t n)
        : middle_at_(n / 2),
          last_at_(n - 1),
          first_(Lanes<Unit>::all(text[0])),
          middle_(Lanes<Unit>::all(text[middle_at_])),
          last_(Lanes<Unit>::all(text[last_at_])) {}

    // Of the block of places at p.
    __m128i at(const Unit* p) const {
        const __m128i ends =
            _mm_and_si128(Lanes<Unit>::equal(load(p), first_), Lanes<Unit>::equal(load(p + last_at_), last_));
        return _mm_and_si128(ends, Lanes<Unit>::equal(load(p + middle_at_), middle_));
    }

    bool are_in_four(const Unit* p) const {
        constexpr std::size_t kUnits = Lanes<Unit>::kUnits;
        const __m128i front = _mm_or_si128(at(p), at(p + kUnits));
        const __m128i back = _mm_or_si128(at(p + 2 * kUnits), at(p + 3 * kUnits));
        return mask_of(_mm_or_si128(front, back)) != 0;
    }

private:
    std::size_t middle_at_;
    std::size_t last_at_;
    __m128i first_;
    __m128i middle_;
    __m128i last_;
};

// Looks at the whole text where it may stand.
template <class Unit>
const Unit* find_sequence(const Unit* begin, const Unit* end, const Unit* text, std::size_t n) {
    if (n == 0) return begin;
    if (static_cast<std::size_t>(end - begin) < n) return nullptr;
    if (n == 1) return find_first(begin, end, *text);
    const std::size_t places = static_cast<std::size_t>(end - begin) - n + 1;
    const Needle<Unit> needle(text, n);
    if (places < Lanes<Unit>::kUnits) {
        for (const Unit* p = begin; p != begin + places; ++p)
            if (*p == *text && needle.is_at(p, end)) return p;
        return nullptr;
    }
    const Candidates<Unit> candidates(text, n);
    const Unit* const last_block = begin + (places - Lanes<Unit>::kUnits);
    for (;;) {
        while (static_cast<std::size_t>(last_block - begin) >= 3 * Lanes<Unit>::kUnits &&
               !candidates.are_in_four(begin))
            begin +=
                std::min<std::size_t>(4 * Lanes<Unit>::kUnits, static_cast<std::size_t>(last_block - begin));
        unsigned mask = mask_of(candidates.at(begin));
        while (mask != 0) {
            const unsigned bit = lowest(mask);
            const Unit* const p = begin + bit / sizeof(Unit);
            if (needle.is_at(p, end)) return p;
            mask &= ~(((1U << sizeof(Unit)) - 1) << bit);
        }
        if (begin == last_block) return nullptr;
        begin = static_cast<std::size_t>(last_block - begin) < Lanes<Unit>::kUnits
                    ? last_block
                    : begin + Lanes<Unit>::kUnits;
    }
}

template <class Unit>
const Unit* ascii_end(const Unit* begin, const Unit* end) {
    return begin + first_hit<Unit>(
                       static_cast<std::size_t>(end - begin),
                       [=](std::size_t at) { return Lanes<Unit>::beyond_ascii(load(begin + at)); },
                       [=](std::size_t i) { return !Lanes<Unit>::is_ascii(begin[i]); });
}

template <class Unit>
MeasuredText measure(const Unit* text) {
    const auto address = reinterpret_cast<std::uintptr_t>(text);
    if constexpr (sizeof(Unit) != 1) {
        if (address % sizeof(Unit) != 0) {
            const std::size_t n = walked_length(text, SIZE_MAX);
            return {n, ascii_end(text, text + n) == text + n};
        }
    }
    const __m128i* line = line_of(address);
    const std::size_t skipped = address % kLine;
    std::uint64_t found = zeroes<Unit>(line) >> skipped;
    std::uint64_t beyond = beyond_ascii<Unit>(line) >> skipped;
    std::size_t seen = 0;
    bool ascii = true;
    if (found == 0) {
        seen = (kLine - skipped) / sizeof(Unit);
        line += kBlocksOfLine;
        for (ascii = beyond == 0; (found = zeroes<Unit>(line)) == 0; seen += kLine / sizeof(Unit)) {
            ascii = ascii && beyond_ascii<Unit>(line) == 0;
            line += kBlocksOfLine;
        }
        beyond = beyond_ascii<Unit>(line);
    }
    const std::uint64_t before_end = (found & (0 - found)) - 1;
    return {seen + unit_at(found, sizeof(Unit)), ascii && (beyond & before_end) == 0};
}

template <class Unit>
std::size_t prefix(const Unit* a, const Unit* b, std::size_t n) {
    return first_hit<Unit>(
        n, [=](std::size_t at) { return mask_of(Lanes<Unit>::equal(load(a + at), load(b + at))) ^ 0xFFFFU; },
        [=](std::size_t i) { return a[i] != b[i]; });
}

} // namespace

std::size_t text_length(const char* text) noexcept { return length(text); }
std::size_t text_length(const wchar_t* text) noexcept { return length(text); }
std::size_t text_length(const char* text, std::size_t limit) noexcept { return length(text, limit); }
std::size_t text_length(const wchar_t* text, std::size_t limit) noexcept { return length(text, limit); }

MeasuredText measure_text(const char* text) noexcept { return measure(text); }
MeasuredText measure_text(const wchar_t* text) noexcept { return measure(text); }

const char* find_byte(const char* begin, const char* end, char c) noexcept {
    return find_first(begin, end, c);
}
const wchar_t* find_unit(const wchar_t* begin, const wchar_t* end, wchar_t c) noexcept {
    return find_first(begin, end, c);
}

const char* find_last_byte(const char* begin, const char* end, char c) noexcept {
    return find_last(begin, end, c);
}
const wchar_t* find_last_unit(const wchar_t* begin, const wchar_t* end, wchar_t c) noexcept {
    return find_last(begin, end, c);
}

const char* find_text(const char* begin, const char* end, const char* text, std::size_t n) noexcept {
    return find_sequence(begin, end, text, n);
}
const wchar_t* find_text(const wchar_t* begin, const wchar_t* end, const wchar_t* text,
                         std::size_t n) noexcept {
    return find_sequence(begin, end, text, n);
}

const char* skip_ascii(const char* begin, const char* end) noexcept { return ascii_end(begin, end); }
const wchar_t* skip_ascii(const wchar_t* begin, const wchar_t* end) noexcept { return ascii_end(begin, end); }

std::size_t common_prefix(const char* a, const char* b, std::size_t n) noexcept { return prefix(a, b, n); }
std::size_t common_prefix(const wchar_t* a, const wchar_t* b, std::size_t n) noexcept {
    return prefix(a, b, n);
}

} // namespace qzr
