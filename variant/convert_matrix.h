// The conversion matrix: for every target type a row of functions, one for every source type. A null means
// that there is no such conversion. docs/variants.md shows the whole.
#pragma once

#include "variant/type_table.h"

#include <array>

namespace qzr {

// Puts src's value into out, which is all zero; the caller then sets the type. What out owns at return is
// new.
// @return false when the value does not convert (a text that is no number)
using Convert = bool (*)(tagQZVARIANT& out, const tagQZVARIANT& src);

// The column of all invalid source codes.
inline constexpr std::size_t kInvalidSource = QZVT_COUNT;

using ConvertRow = std::array<Convert, QZVT_COUNT + 1>;

// convert_numbers.cpp
extern const ConvertRow kToBoolean, kToUChar, kToUShort, kToULong, kToInt, kToUInt, kToLong, kToDouble,
    kToFloat;
// convert_text.cpp
extern const ConvertRow kToText, kToWideText;
// convert_geometry.cpp
extern const ConvertRow kToSize, kToRSize, kToPoint, kToRPoint, kToRect, kToRRect;

// Conversions that several rows share: nothing to do, out's zeroes are the value ...
bool leave_zero(tagQZVARIANT& out, const tagQZVARIANT& src);
// ... and an independent copy of a source of the same type.
bool copy_value(tagQZVARIANT& out, const tagQZVARIANT& src);

} // namespace qzr
