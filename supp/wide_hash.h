// The hash of wide texts: hash * 257 + unit for each unit, which counts as an unsigned number, modulo 2^32.
// Dictionaries match texts by it alone, so its values decide which texts are the same and must never change.
#pragma once

#include "supp/wide_block.h"

#include <cstdint>
#include <cstring>

namespace qzr {

// The hash of a text, and what the hash of a text before it is multiplied by: so the hash of two texts, one
// behind the other, is known without putting them together.
struct WideHash {
    std::uint32_t hash = 0;
    std::uint32_t power = 1; // 257 to the power of the length

    friend constexpr WideHash operator+(const WideHash& before, const WideHash& behind) noexcept {
        return {before.hash * behind.power + behind.hash, before.power * behind.power};
    }
};

namespace detail {

constexpr std::uint32_t power_of_257(unsigned n) {
    std::uint32_t power = 1;
    for (; n != 0; --n)
        power *= 257;
    return power;
}

// The powers from the 15th down to 1, each as two signed halves, then zeroes: those from place 16 - n on
// weigh the first n units of a block and leave the rest out.
struct HashWeights {
    std::int16_t low[2 * kBlockUnits] = {};
    std::int16_t high[2 * kBlockUnits] = {};
    // For n units:
    std::uint32_t powers[kBlockUnits + 1] = {};
    std::uint32_t of_0x8000[kBlockUnits + 1] = {}; // the hash of units that all have this value

    constexpr HashWeights() {
        for (unsigned n = 0; n <= kBlockUnits; ++n) {
            powers[n] = power_of_257(n);
            if (n != 0) of_0x8000[n] = of_0x8000[n - 1] * 257 + 0x8000;
        }
        for (unsigned i = 0; i < kBlockUnits; ++i) {
            const std::uint32_t weight = powers[kBlockUnits - 1 - i];
            low[i] = static_cast<std::int16_t>(weight);
            high[i] = static_cast<std::int16_t>((weight - static_cast<std::uint32_t>(low[i])) >> 16);
        }
    }
};
inline constexpr HashWeights kHashWeights;

// The first n units of a block. The processor multiplies signed numbers and adds the products in pairs, so
// each unit is taken 0x8000 too small, and the sum put right at the end.
inline WideHash hash_of_block(const wchar_t* block, unsigned n) noexcept {
    const std::int16_t* const low_weights = kHashWeights.low + kBlockUnits - n;
    const std::int16_t* const high_weights = kHashWeights.high + kBlockUnits - n;
    __m128i low = _mm_setzero_si128();
    __m128i high = _mm_setzero_si128();
#pragma GCC unroll 2
    for (unsigned i = 0; i < kBlockUnits; i += 8) {
        const __m128i units = _mm_xor_si128(load_half_block(block + i), _mm_set1_epi16(-0x8000));
        low = _mm_add_epi32(low, _mm_madd_epi16(units, load_half_block(low_weights + i)));
        high = _mm_add_epi32(high, _mm_madd_epi16(units, load_half_block(high_weights + i)));
    }
    __m128i sums = _mm_add_epi32(low, _mm_slli_epi32(high, 16));
    sums = _mm_add_epi32(sums, _mm_shuffle_epi32(sums, _MM_SHUFFLE(1, 0, 3, 2)));
    sums = _mm_add_epi32(sums, _mm_shuffle_epi32(sums, _MM_SHUFFLE(2, 3, 0, 1)));
    return {static_cast<std::uint32_t>(_mm_cvtsi128_si32(sums)) + kHashWeights.of_0x8000[n],
            kHashWeights.powers[n]};
}

// Of texts that end near the end of a page. Wide texts may stand at odd addresses.
[[gnu::noinline]] inline WideHash hash_by_units(const wchar_t* text) noexcept {
    WideHash done;
    for (wchar_t unit; std::memcpy(&unit, text, sizeof unit), unit != 0; ++text)
        done = done + WideHash{unit, 257};
    return done;
}

} // namespace detail

// Takes 16 units at once: one by one, each multiplication waits for the one before, and where the text ends
// is guessed wrongly at almost every text. For 13 to 34 units this takes 15 ns instead of 24.
inline WideHash wide_hash(const wchar_t* text) noexcept {
    using namespace detail;
    WideHash done;
    for (; may_read_block(text); text += kBlockUnits) {
        const unsigned n = length_in_block(text);
        done = done + hash_of_block(text, n);
        if (n < kBlockUnits) return done;
    }
    return done + hash_by_units(text);
}

} // namespace qzr
