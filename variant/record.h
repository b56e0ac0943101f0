// Changing whole variant records without leaking or freeing twice.
#pragma once

#include "variant/type_table.h"

namespace qzr {

// Gives up what the record owns; its bytes stay as they are. Lets pass what a Release throws.
inline void release_value(const tagQZVARIANT& v) {
    if (owns_something(v)) kVariantTypes[v.vt].release(v);
}

// An independent copy, which the caller owns. Throws CXMemException.
inline tagQZVARIANT duplicate_of(const tagQZVARIANT& source) {
    tagQZVARIANT fresh = source;
    if (owns_something(fresh)) kVariantTypes[fresh.vt].duplicate(fresh);
    return fresh;
}

// Moves fresh into v. The old value goes last: fresh may have been made from it, and an object that is
// released by this may look at v.
inline void replace_value(tagQZVARIANT& v, const tagQZVARIANT& fresh) {
    if (!owns_something(v)) {
        v = fresh;
        return;
    }
    const tagQZVARIANT old = v;
    v = fresh;
    release_value(old);
}

} // namespace qzr
