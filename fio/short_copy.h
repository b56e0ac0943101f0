// Copying few bytes.
#pragma once

#include <cstddef>
#include <cstring>

#include <emmintrin.h>

namespace qzr {

// std::memcpy. The call to the runtime's takes 10 ns more than 64 bytes do here, a quarter of a read of so
// many from a mapped file.
inline void copy_maybe_short(void* to, const void* from, std::size_t count) {
    constexpr std::size_t kBlock = sizeof(__m128i);
    if (count < kBlock || count > 4 * kBlock) {
        std::memcpy(to, from, count);
        return;
    }
    const auto load = [from](std::size_t at) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(static_cast<const char*>(from) + at));
    };
    const auto store = [to](std::size_t at, __m128i block) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(static_cast<char*>(to) + at), block);
    };
    // Blocks from both ends, which overlap in the middle.
    const std::size_t last = count - kBlock;
    const std::size_t second = last < kBlock ? 0 : kBlock;
    const __m128i blocks[] = {load(0), load(second), load(last - second), load(last)};
    store(0, blocks[0]);
    store(second, blocks[1]);
    store(last - second, blocks[2]);
    store(last, blocks[3]);
}

} // namespace qzr
