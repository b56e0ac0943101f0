// Points, sizes and rectangles: integer and real forms of each become one another, and nothing else does.
#include "variant/convert_matrix.h"
#include "variant/real_to_integer.h"

namespace qzr {

namespace {

// An integer rectangle ends one past its last pixel, a real one on it: those edges move by one. The step
// wraps at the ends of the range.
int one_more(int edge) { return static_cast<int>(static_cast<unsigned>(edge) + 1u); }
int one_less(int edge) { return static_cast<int>(static_cast<unsigned>(edge) - 1u); }

bool round_size(tagQZVARIANT& out, const tagQZVARIANT& src) {
    out.sizeVal = {round_to_int(src.rsizeVal.cx), round_to_int(src.rsizeVal.cy)};
    return true;
}

bool widen_size(tagQZVARIANT& out, const tagQZVARIANT& src) {
    out.rsizeVal = {static_cast<double>(src.sizeVal.cx), static_cast<double>(src.sizeVal.cy)};
    return true;
}

bool round_point(tagQZVARIANT& out, const tagQZVARIANT& src) {
    out.pointVal = {round_to_int(src.rpointVal.x), round_to_int(src.rpointVal.y)};
    return true;
}

bool widen_point(tagQZVARIANT& out, const tagQZVARIANT& src) {
    out.rpointVal = {static_cast<double>(src.pointVal.x), static_cast<double>(src.pointVal.y)};
    return true;
}

bool round_rect(tagQZVARIANT& out, const tagQZVARIANT& src) {
    const tagRRECT& r = src.rrectVal;
    out.rectVal = {round_to_int(r.left), round_to_int(r.top), one_more(round_to_int(r.right)),
                   one_more(round_to_int(r.bottom))};
    return true;
}

bool widen_rect(tagQZVARIANT& out, const tagQZVARIANT& src) {
    const tagRECT& r = src.rectVal;
    out.rrectVal = {static_cast<double>(r.left), static_cast<double>(r.top),
                    static_cast<double>(one_less(r.right)), static_cast<double>(one_less(r.bottom))};
    return true;
}

constexpr ConvertRow geometry_row(QZVariantType integer, Convert from_integer, QZVariantType real,
                                  Convert from_real) {
    ConvertRow row{};
    row[integer] = from_integer;
    row[real] = from_real;
    row[kInvalidSource] = leave_zero;
    return row;
}

} // namespace

constexpr ConvertRow kToSize = geometry_row(QZVT_SIZE, copy_value, QZVT_RSIZE, round_size);
constexpr ConvertRow kToRSize = geometry_row(QZVT_SIZE, widen_size, QZVT_RSIZE, copy_value);
constexpr ConvertRow kToPoint = geometry_row(QZVT_POINT, copy_value, QZVT_RPOINT, round_point);
constexpr ConvertRow kToRPoint = geometry_row(QZVT_POINT, widen_point, QZVT_RPOINT, copy_value);
constexpr ConvertRow kToRect = geometry_row(QZVT_RECT, copy_value, QZVT_RRECT, round_rect);
constexpr ConvertRow kToRRect = geometry_row(QZVT_RECT, widen_rect, QZVT_RRECT, copy_value);

} // namespace qzr
