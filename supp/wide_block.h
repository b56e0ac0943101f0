// Looking at wide texts 16 units at once.
#pragma once

#include <bit>
#include <cstdint>

#include <emmintrin.h>

namespace qzr {

inline constexpr unsigned kBlockUnits = 16;

inline __m128i load_half_block(const void* units) noexcept {
    return _mm_loadu_si128(static_cast<const __m128i*>(units));
}

// Units before the zero, 16 at most.
inline unsigned length_in_block(const wchar_t* block) noexcept {
    const __m128i zero = _mm_setzero_si128();
    const __m128i zeroes = _mm_packs_epi16(_mm_cmpeq_epi16(load_half_block(block), zero),
                                           _mm_cmpeq_epi16(load_half_block(block + 8), zero));
    return static_cast<unsigned>(
        std::countr_zero(static_cast<unsigned>(_mm_movemask_epi8(zeroes)) | 1U << kBlockUnits));
}

// What lies behind a text may be read, but not in the next page.
inline bool may_read_block(const wchar_t* text) noexcept {
    constexpr std::uintptr_t kPage = 4096;
    return reinterpret_cast<std::uintptr_t>(text) % kPage <= kPage - kBlockUnits * sizeof(wchar_t);
}

} // namespace qzr
