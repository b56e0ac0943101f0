#include "variant/record.h"

using namespace qzr;

namespace {

tagQZVARIANT duplicate_or_clear(const tagQZVARIANT& source, tagQZVARIANT& target) {
    try {
        return duplicate_of(source);
    } catch (...) {
        QZVariantClear(&target);
        throw;
    }
}

} // namespace

void QZVariantInit(tagQZVARIANT* v) { set_empty(*v); }

void QZVariantClear(tagQZVARIANT* v) { replace_value(*v, empty_record()); }

void QZVariantCopy(tagQZVARIANT* dst, const tagQZVARIANT* src) {
    // Kept as callers know it: the target is cleared first, so a record copied onto itself ends up empty.
    if (dst == src) {
        QZVariantClear(dst);
        return;
    }
    if (!owns_something(*src)) {
        replace_value(*dst, *src);
        return;
    }
    replace_value(*dst, duplicate_or_clear(*src, *dst));
}
