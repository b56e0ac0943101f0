// The range that an editing member names by position and count.
#pragma once

#include <algorithm>
#include <cstdint>

namespace qzr {

struct Range {
    std::uint64_t first;
    std::uint64_t last; // behind the range
};

// A position below 0 or past the end means the end; a negative count names what stands before the position.
inline Range range_of(std::int64_t length, int pos, int count) {
    const std::int64_t from = pos < 0 || pos >= length ? length : pos;
    const std::int64_t to = from + count;
    const auto clamp = [=](std::int64_t i) {
        return static_cast<std::uint64_t>(std::clamp<std::int64_t>(i, 0, length));
    };
    return {clamp(std::min(from, to)), clamp(std::max(from, to))};
}

} // namespace qzr
