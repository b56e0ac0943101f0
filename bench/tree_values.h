// The values that trees are filled with, and their counterparts.
#pragma once

#include "qzparam.h"
#include "qzref.h"
#include "qzvariant.h"

#include <string>

namespace bench {

using Tree = CQZRef<IParam>;

inline Tree new_tree() { return Tree::Adopt(new_MemParam()); }

// Every kind of settings value in turn, the same in all three worlds.
inline CQZVariant library_value(unsigned i) {
    switch (i % 4) {
    case 0:
        return {static_cast<int>(i)};
    case 1:
        return {i * 0.25};
    case 2:
        return {("value " + std::to_string(i)).c_str()};
    default:
        return CQZVariant(static_cast<int>(i / 4 % 2), QZVT_BOOL);
    }
}

template <class V>
V standard_value(unsigned i) {
    switch (i % 4) {
    case 0:
        return static_cast<int>(i);
    case 1:
        return i * 0.25;
    case 2:
        return "value " + std::to_string(i);
    default:
        return i / 4 % 2 != 0;
    }
}

} // namespace bench
