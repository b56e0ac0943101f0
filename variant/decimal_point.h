// The one question asked of the process's locale.
#pragma once

#include <clocale>

namespace qzr {

inline bool decimal_point_is_dot() {
    const char* point = std::localeconv()->decimal_point;
    return point[0] == '.' && point[1] == 0;
}

} // namespace qzr
