// Moving about in a stream of up to 4 GiB - 1 bytes with the signed 32-bit offsets of Seek.
#pragma once

#include "qzexception.h"
#include "qzstream.h"

#include <cstdint>
#include <limits>

namespace qzr {

inline unsigned position_of(IXStream& stream) { return stream.Seek(0, 1); }

// Goes to a position from the start, in several steps when it is beyond the reach of one.
inline void seek_to(IXStream& stream, unsigned position) {
    constexpr unsigned kReach = std::numeric_limits<int>::max();
    unsigned origin = 0;
    for (; position > kReach; position -= kReach, origin = 1)
        stream.Seek(static_cast<int>(kReach), origin);
    stream.Seek(static_cast<int>(position), origin);
}

// The bytes between the position, which stays, and the end.
inline unsigned bytes_to_end(IXStream& stream) {
    const unsigned position = position_of(stream);
    const unsigned end = stream.Seek(0, 2);
    seek_to(stream, position);
    return end > position ? end - position : 0;
}

} // namespace qzr
