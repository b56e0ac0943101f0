// Finding the end of a line in bytes that lie in memory, 16 at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstring>

#include <emmintrin.h>

namespace qzr {

inline __m128i equal_units(__m128i block, char c) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(c)); }
inline __m128i equal_units(__m128i block, wchar_t c) {
    return _mm_cmpeq_epi16(block, _mm_set1_epi16(static_cast<short>(c)));
}

// The number of characters before the first that is one of Stops, at most count. They may lie at odd
// addresses.
template <class Char, Char... Stops>
std::size_t line_run(const unsigned char* from, std::size_t count) {
    static_assert(sizeof...(Stops) > 0, "without a stop every line goes to the end");
    constexpr std::size_t kBlock = sizeof(__m128i) / sizeof(Char);
    std::size_t i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        __m128i block;
        std::memcpy(&block, from + i * sizeof(Char), sizeof block);
        __m128i stops = _mm_setzero_si128();
        ((stops = _mm_or_si128(stops, equal_units(block, Stops))), ...);
        const auto mask = static_cast<unsigned>(_mm_movemask_epi8(stops));
        if (mask != 0) return i + static_cast<unsigned>(std::countr_zero(mask)) / sizeof(Char);
    }
    for (; i < count; ++i) {
        Char c;
        std::memcpy(&c, from + i * sizeof(Char), sizeof c);
        if (((c == Stops) || ...)) return i;
    }
    return count;
}

} // namespace qzr
