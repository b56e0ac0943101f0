#include "variant/equality.h"

#include "variant/blob.h"
#include "variant/text.h"

#include <cmath>
#include <cstring>

namespace qzr {

namespace {

constexpr double kTolerance = 0.001;

// Written as "does not differ by more": coordinates that are no numbers do not differ.
bool close_to(double a, double b) { return !(std::fabs(a - b) > kTolerance); }

template <class T>
bool neither_less(T a, T b) {
    return !(a < b) && !(b < a);
}

bool is_empty(const tagRECT& r) { return r.left >= r.right || r.top >= r.bottom; }

// The edges belong to a real rectangle, so one of zero width is a line and not empty.
bool is_empty(const tagRRECT& r) { return r.left > r.right || r.top > r.bottom; }

} // namespace

bool equal_empty(const tagQZVARIANT&, const tagQZVARIANT&) { return true; }

bool equal_8_bits(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    return left.ucharVal == right.ucharVal;
}

bool equal_16_bits(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    return left.ushortVal == right.ushortVal;
}

bool equal_32_bits(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    return left.uintVal == right.uintVal;
}

bool equal_double(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    return neither_less(left.doubleVal, right.doubleVal);
}

bool equal_float(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    return neither_less(left.floatVal, right.floatVal);
}

bool equal_text(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    const char* a = or_empty(left.pszVal);
    const char* b = or_empty(right.pszVal);
    const std::size_t length = text_length(a);
    return length == text_length(b) && common_prefix(a, b, length) == length;
}

// The length counts units but is used as a number of bytes: of texts of equal length only the first half
// decides. Callers rely on it.
bool equal_wide_text(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    const wchar_t* a = or_empty(left.pwszVal);
    const wchar_t* b = or_empty(right.pwszVal);
    const std::size_t length = text_length(a);
    return length == text_length(b) && std::memcmp(a, b, length) == 0;
}

bool equal_size(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    return left.sizeVal.cx == right.sizeVal.cx && left.sizeVal.cy == right.sizeVal.cy;
}

bool equal_point(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    return left.pointVal.x == right.pointVal.x && left.pointVal.y == right.pointVal.y;
}

// The left size is read as if it were an integer one, so a copied size normally differs from its source.
// Callers rely on it.
bool equal_real_size(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    tagSIZE integers;
    std::memcpy(&integers, &left.rsizeVal, sizeof integers);
    return close_to(integers.cx, right.rsizeVal.cx) && close_to(integers.cy, right.rsizeVal.cy);
}

bool equal_real_point(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    return close_to(left.rpointVal.x, right.rpointVal.x) && close_to(left.rpointVal.y, right.rpointVal.y);
}

bool equal_rect(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    const tagRECT& a = left.rectVal;
    const tagRECT& b = right.rectVal;
    const bool same = a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
    return same || (is_empty(a) && is_empty(b));
}

bool equal_real_rect(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    const tagRRECT& a = left.rrectVal;
    const tagRRECT& b = right.rrectVal;
    const bool same = close_to(a.left, b.left) && close_to(a.top, b.top) && close_to(a.right, b.right) &&
                      close_to(a.bottom, b.bottom);
    return same || (is_empty(a) && is_empty(b));
}

bool equal_blob(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    return same_bytes(left.blobVal, right.blobVal);
}

bool equal_object(const tagQZVARIANT& left, const tagQZVARIANT& right) {
    return left.pUnkVal == right.pUnkVal;
}

} // namespace qzr
