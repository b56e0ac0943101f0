#include "string/ascii_case.h"

#include <algorithm>
#include <bit>

#include <emmintrin.h>

namespace qzr {
namespace {

template <class Unit>
struct Lanes;

template <>
struct Lanes<char> {
    static constexpr std::size_t kUnits = 16;
    static __m128i all(char c) { return _mm_set1_epi8(c); }
    static __m128i greater(__m128i a, __m128i b) { return _mm_cmpgt_epi8(a, b); }
    static __m128i equal(__m128i a, __m128i b) { return _mm_cmpeq_epi8(a, b); }
    static __m128i beyond_ascii(__m128i v) { return _mm_cmplt_epi8(v, _mm_setzero_si128()); }
};

template <>
struct Lanes<wchar_t> {
    static constexpr std::size_t kUnits = 8;
    static __m128i all(wchar_t c) { return _mm_set1_epi16(static_cast<short>(c)); }
    static __m128i greater(__m128i a, __m128i b) { return _mm_cmpgt_epi16(a, b); }
    static __m128i equal(__m128i a, __m128i b) { return _mm_cmpeq_epi16(a, b); }
    static __m128i beyond_ascii(__m128i v) {
        const __m128i high = _mm_and_si128(v, _mm_set1_epi16(static_cast<short>(0xFF80)));
        return _mm_xor_si128(_mm_cmpeq_epi16(high, _mm_setzero_si128()), _mm_set1_epi8(-1));
    }
};

template <class Unit>
__m128i load(const Unit* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// Flips the case bit of the letters from `first` on; all units are ASCII, so signed comparing is right.
template <class Unit>
__m128i flip_letters(__m128i v, Unit first) {
    const Unit before = static_cast<Unit>(first - 1);
    const Unit behind = static_cast<Unit>(first + 26);
    const __m128i letters = _mm_and_si128(Lanes<Unit>::greater(v, Lanes<Unit>::all(before)),
                                          Lanes<Unit>::greater(Lanes<Unit>::all(behind), v));
    return _mm_xor_si128(v, _mm_and_si128(letters, Lanes<Unit>::all(Unit{0x20})));
}

template <class Unit>
bool is_ascii(Unit c) {
    return static_cast<unsigned>(c) < 0x80;
}

template <class Unit>
Unit flip_letter(Unit c, Unit first) {
    return c >= first && c < first + 26 ? static_cast<Unit>(c ^ 0x20) : c;
}

// Maps one block and answers true, unless it holds a unit beyond ASCII.
template <class Unit>
bool map_block(Unit* at, Unit first) {
    const __m128i v = load(at);
    if (_mm_movemask_epi8(Lanes<Unit>::beyond_ascii(v)) != 0) return false;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(at), flip_letters(v, first));
    return true;
}

// The last block ends with the text and may hold units that were mapped before: they stay as they are.
template <class Unit>
Unit* map(Unit* begin, Unit* end, Unit first) {
    constexpr std::size_t kUnits = Lanes<Unit>::kUnits;
    const bool whole_block = static_cast<std::size_t>(end - begin) >= kUnits;
    while (static_cast<std::size_t>(end - begin) >= kUnits && map_block(begin, first))
        begin += kUnits;
    if (whole_block && static_cast<std::size_t>(end - begin) < kUnits && map_block(end - kUnits, first))
        return end;
    for (; begin != end && is_ascii(*begin); ++begin)
        *begin = flip_letter(*begin, first);
    return begin;
}

// Bits of the bytes in which two blocks of ASCII are alike without case.
template <class Unit>
unsigned alike(__m128i x, __m128i y) {
    const __m128i same = Lanes<Unit>::equal(flip_letters(x, Unit{'A'}), flip_letters(y, Unit{'A'}));
    const __m128i beyond = _mm_or_si128(Lanes<Unit>::beyond_ascii(x), Lanes<Unit>::beyond_ascii(y));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_andnot_si128(beyond, same)));
}

// The last block overlaps the one before it, whose units are known to be alike.
template <class Unit>
std::size_t prefix(const Unit* a, const Unit* b, std::size_t n) {
    constexpr std::size_t kUnits = Lanes<Unit>::kUnits;
    if (n >= kUnits) {
        for (std::size_t at = 0;; at = std::min(at + kUnits, n - kUnits)) {
            const unsigned good = alike<Unit>(load(a + at), load(b + at));
            if (good != 0xFFFFU) return at + static_cast<unsigned>(std::countr_one(good)) / sizeof(Unit);
            if (at == n - kUnits) return n;
        }
    }
    std::size_t i = 0;
    while (i < n && is_ascii(a[i]) && is_ascii(b[i]) &&
           flip_letter(a[i], Unit{'A'}) == flip_letter(b[i], Unit{'A'}))
        ++i;
    return i;
}

} // namespace

char* ascii_upper(char* begin, char* end) noexcept { return map(begin, end, 'a'); }
char* ascii_lower(char* begin, char* end) noexcept { return map(begin, end, 'A'); }
wchar_t* ascii_upper(wchar_t* begin, wchar_t* end) noexcept { return map(begin, end, L'a'); }
wchar_t* ascii_lower(wchar_t* begin, wchar_t* end) noexcept { return map(begin, end, L'A'); }

std::size_t common_ascii_prefix(const char* a, const char* b, std::size_t n) noexcept {
    return prefix(a, b, n);
}
std::size_t common_ascii_prefix(const wchar_t* a, const wchar_t* b, std::size_t n) noexcept {
    return prefix(a, b, n);
}

} // namespace qzr
