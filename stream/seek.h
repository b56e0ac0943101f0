// Seeking in a stream that never moves past its end: the rule of memory and empty streams.
#pragma once

#include "qzexception.h"
#include "qzstream.h"

#include <algorithm>
#include <cstdint>

namespace qzr {

[[noreturn]] inline void throw_bad_origin(const wchar_t* name) {
    throw CXFileException(QZERR_SEEK_ORIGIN, QZOP_SEEK, name);
}

// The new position: no less than 0, then no more than the size. Positions and sizes count as signed numbers,
// so in a stream of 2 GiB and more, whose size is negative, every seek ends at the end.
inline unsigned seek_within(IXStream& stream, int offset, unsigned origin) {
    const unsigned size = stream.GetSize();
    std::int64_t base = 0;
    switch (origin) {
    case 0:
        break;
    case 1:
        base = static_cast<int>(stream.GetPosition());
        break;
    case 2:
        base = static_cast<int>(size);
        break;
    default:
        throw_bad_origin(stream.GetName());
    }
    const std::int64_t target = std::max<std::int64_t>(base + offset, 0);
    return target > static_cast<int>(size) ? size : static_cast<unsigned>(target);
}

} // namespace qzr
