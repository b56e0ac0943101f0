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
    static unsigned beyond_ascii(__m128i v) { return mask_of(v); }
    static bool is_ascii(char c) { return static_cast<unsigned char>(c) < 0x80; }
};

template <>
struct Lanes<wchar_t> {
    static constexpr std::size_t kUnits = kBlock / 2;
    static __m128i all(wchar_t c) { return _mm_set1_epi16(static_cast<short>(c)); }
    static __m128i equal(__m128i a, __m128i b) { return _mm_cmpeq_epi16(a, b); }
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

// Reads whole aligned blocks, up to the one that holds the zero or the last unit in the limit: they never
// reach into a page that holds no unit of the text. An odd wide text has units that lie across blocks and is
// walked instead.
template <class Unit>
std::size_t length(const Unit* text, std::size_t limit) {
    const auto address = reinterpret_cast<std::uintptr_t>(text);
    if (address % sizeof(Unit) != 0) {
        std::size_t n = 0;
        for (Unit unit; n < limit && (std::memcpy(&unit, text + n, sizeof unit), unit != 0);)
            ++n;
        return n;
    }
    if (limit == 0) return 0;
    const unsigned skipped = static_cast<unsigned>(address % kBlock);
    const auto* block = reinterpret_cast<const __m128i*>(address - skipped);
    const __m128i zero = _mm_setzero_si128();
    unsigned mask = mask_of(Lanes<Unit>::equal(_mm_load_si128(block), zero)) >> skipped;
    std::size_t seen = (kBlock - skipped) / sizeof(Unit);
    if (mask != 0) return std::min<std::size_t>(lowest(mask) / sizeof(Unit), limit);
    for (; seen < limit; seen += Lanes<Unit>::kUnits) {
        mask = mask_of(Lanes<Unit>::equal(_mm_load_si128(++block), zero));
        if (mask != 0) return std::min<std::size_t>(seen + lowest(mask) / sizeof(Unit), limit);
    }
    return limit;
}

template <class Unit>
const Unit* find_first(const Unit* begin, const Unit* end, Unit c) {
    const __m128i wanted = Lanes<Unit>::all(c);
    for (; static_cast<std::size_t>(end - begin) >= Lanes<Unit>::kUnits; begin += Lanes<Unit>::kUnits)
        if (const unsigned mask = mask_of(Lanes<Unit>::equal(load(begin), wanted)))
            return begin + lowest(mask) / sizeof(Unit);
    for (; begin != end; ++begin)
        if (*begin == c) return begin;
    return nullptr;
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

template <class Unit>
bool same(const Unit* a, const Unit* b, std::size_t n) {
    return std::memcmp(a, b, n * sizeof(Unit)) == 0;
}

// Compares the first and the last unit at 16 or 8 places at once and looks at the rest where both agree.
template <class Unit>
const Unit* find_sequence(const Unit* begin, const Unit* end, const Unit* text, std::size_t n) {
    if (n == 0) return begin;
    if (static_cast<std::size_t>(end - begin) < n) return nullptr;
    if (n == 1) return find_first(begin, end, *text);
    const Unit* const last_start = end - n;
    const __m128i first = Lanes<Unit>::all(text[0]);
    const __m128i last = Lanes<Unit>::all(text[n - 1]);
    for (; static_cast<std::size_t>(last_start - begin) + 1 >= Lanes<Unit>::kUnits;
         begin += Lanes<Unit>::kUnits) {
        unsigned mask = mask_of(_mm_and_si128(Lanes<Unit>::equal(load(begin), first),
                                              Lanes<Unit>::equal(load(begin + n - 1), last)));
        while (mask != 0) {
            const unsigned bit = lowest(mask);
            const Unit* const p = begin + bit / sizeof(Unit);
            if (same(p + 1, text + 1, n - 2)) return p;
            mask &= ~(((1U << sizeof(Unit)) - 1) << bit);
        }
    }
    for (; begin <= last_start; ++begin)
        if (*begin == *text && same(begin, text, n)) return begin;
    return nullptr;
}

template <class Unit>
const Unit* ascii_end(const Unit* begin, const Unit* end) {
    for (; static_cast<std::size_t>(end - begin) >= Lanes<Unit>::kUnits; begin += Lanes<Unit>::kUnits)
        if (const unsigned mask = Lanes<Unit>::beyond_ascii(load(begin)))
            return begin + lowest(mask) / sizeof(Unit);
    while (begin != end && Lanes<Unit>::is_ascii(*begin))
        ++begin;
    return begin;
}

template <class Unit>
std::size_t prefix(const Unit* a, const Unit* b, std::size_t n) {
    std::size_t i = 0;
    for (; n - i >= Lanes<Unit>::kUnits; i += Lanes<Unit>::kUnits)
        if (const unsigned differ = mask_of(Lanes<Unit>::equal(load(a + i), load(b + i))) ^ 0xFFFFU)
            return i + lowest(differ) / sizeof(Unit);
    while (i < n && a[i] == b[i])
        ++i;
    return i;
}

} // namespace

std::size_t text_length(const char* text) noexcept { return length(text, SIZE_MAX); }
std::size_t text_length(const wchar_t* text) noexcept { return length(text, SIZE_MAX); }
std::size_t text_length(const char* text, std::size_t limit) noexcept { return length(text, limit); }
std::size_t text_length(const wchar_t* text, std::size_t limit) noexcept { return length(text, limit); }

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
