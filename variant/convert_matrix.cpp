#include "variant/convert_matrix.h"

#include "variant/record.h"

namespace qzr {

bool leave_zero(tagQZVARIANT&, const tagQZVARIANT&) { return true; }

bool copy_value(tagQZVARIANT& out, const tagQZVARIANT& src) {
    out = duplicate_of(src);
    return true;
}

namespace {

constexpr ConvertRow row_from_anything() {
    ConvertRow row{};
    row.fill(leave_zero);
    return row;
}

// Blobs and interfaces come from nothing but themselves.
constexpr ConvertRow row_from_itself(QZVariantType type) {
    ConvertRow row{};
    row[type] = copy_value;
    row[kInvalidSource] = leave_zero;
    return row;
}

constexpr ConvertRow kToEmpty = row_from_anything();
constexpr ConvertRow kToBlob = row_from_itself(QZVT_BLOB);
constexpr ConvertRow kToObject = row_from_itself(QZVT_OBJECT);

const ConvertRow* const kMatrix[QZVT_COUNT] = {
    &kToEmpty,  &kToBoolean, &kToUChar, &kToUShort, &kToULong,  &kToInt,      &kToUInt,
    &kToLong,   &kToDouble,  &kToFloat, &kToText,   &kToSize,   &kToRSize,    &kToPoint,
    &kToRPoint, &kToRect,    &kToRRect, &kToBlob,   &kToObject, &kToWideText,
};

// The pointer of an interface without a reference: the result owns nothing.
bool borrow_object(tagQZVARIANT& out, const tagQZVARIANT& src) {
    if (src.vt == QZVT_OBJECT) out.pUnkVal = src.pUnkVal;
    return src.vt == QZVT_OBJECT || src.vt >= QZVT_COUNT;
}

Convert conversion(unsigned short target, unsigned short source) {
    if (target == QZVT_OBJECT_REF) return borrow_object;
    if (target >= QZVT_COUNT) return nullptr;
    return (*kMatrix[target])[source < QZVT_COUNT ? source : kInvalidSource];
}

// out is all zero and stays so on failure.
bool convert(tagQZVARIANT& out, const tagQZVARIANT& src, unsigned short target) {
    const Convert function = conversion(target, src.vt);
    if (function == nullptr || !function(out, src)) return false;
    out.vt = target;
    return true;
}

} // namespace

} // namespace qzr

using namespace qzr;

int QZVariantChangeType(tagQZVARIANT* dst, const tagQZVARIANT* src, unsigned short vt) {
    const bool in_place = dst == src;
    tagQZVARIANT fresh = empty_record();
    bool converted;
    try {
        converted = convert(fresh, *src, vt);
    } catch (...) {
        if (!in_place) QZVariantClear(dst);
        throw;
    }
    // What dst held goes after the conversion: src may live in it. A failure empties another record, but
    // leaves one that was to be converted in place as it is.
    if (converted || !in_place) replace_value(*dst, fresh);
    return converted ? 1 : 0;
}
