// Moving a few bytes without a call: most names, texts and pieces of them are short, and the runtime's
// function has to find that out first.
#pragma once

#include <cstddef>
#include <cstring>
#include <emmintrin.h>

namespace qzr {

// Moves n bytes; the areas may overlap. Up to 32 bytes it is two loads and two stores, the loads first.
inline void move_bytes(void* to, const void* from, std::size_t n) noexcept {
    char* const target = static_cast<char*>(to);
    const char* const source = static_cast<const char*>(from);
    const auto move_ends = [=](auto end) {
        auto last = end;
        std::memcpy(&end, source, sizeof end);
        std::memcpy(&last, source + n - sizeof last, sizeof last);
        std::memcpy(target, &end, sizeof end);
        std::memcpy(target + n - sizeof last, &last, sizeof last);
    };
    if (n > 32) {
        std::memmove(target, source, n);
    } else if (n >= 16) {
        move_ends(__m128i{});
    } else if (n >= 8) {
        move_ends(std::size_t{});
    } else if (n >= 4) {
        move_ends(unsigned{});
    } else if (n >= 2) {
        move_ends(static_cast<unsigned short>(0));
    } else if (n == 1) {
        *target = *source;
    }
}

} // namespace qzr
