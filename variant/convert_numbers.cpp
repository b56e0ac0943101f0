// Booleans, integers and reals: from one another, and from text.
#include "variant/convert_matrix.h"
#include "variant/foreign_text.h"
#include "variant/number_scan.h"
#include "variant/real_to_integer.h"
#include "variant/text.h"

#include <bit>
#include <type_traits>

namespace qzr {

namespace {

using V = tagQZVARIANT;

template <auto Member>
using ValueOf = std::remove_reference_t<decltype(std::declval<V&>().*Member)>;

// Between numbers that C++ converts with a defined result.
template <auto To, auto From>
bool cast(V& out, const V& src) {
    out.*To = static_cast<ValueOf<To>>(src.*From);
    return true;
}

// The lowest bytes of whatever integer the source holds.
bool low_byte(V& out, const V& src) { return cast<&V::ucharVal, &V::ucharVal>(out, src); }
bool low_word(V& out, const V& src) { return cast<&V::ushortVal, &V::ushortVal>(out, src); }
bool all_32_bits(V& out, const V& src) { return cast<&V::uintVal, &V::uintVal>(out, src); }
bool from_byte(V& out, const V& src) { return cast<&V::uintVal, &V::ucharVal>(out, src); }
bool from_word(V& out, const V& src) { return cast<&V::uintVal, &V::ushortVal>(out, src); }
bool byte_to_word(V& out, const V& src) { return cast<&V::ushortVal, &V::ucharVal>(out, src); }

template <auto From>
bool not_zero(V& out, const V& src) {
    out.boolVal = src.*From != 0 ? 1 : 0;
    return true;
}

// Less or greater, not unequal: a NaN is false.
template <auto From>
bool below_or_above_zero(V& out, const V& src) {
    out.boolVal = src.*From < 0 || src.*From > 0 ? 1 : 0;
    return true;
}

template <auto From>
bool cut_to_int(V& out, const V& src) {
    out.intVal = real_to_int(src.*From);
    return true;
}

// By way of 64 bits, so that values from 2^31 on keep theirs.
template <auto From>
bool cut_to_unsigned(V& out, const V& src) {
    out.uintVal = static_cast<unsigned>(real_to_int64(src.*From));
    return true;
}

bool text_to_int(V& out, const V& src) { return scan_int(or_empty(src.pszVal), out.intVal); }
bool wide_text_to_int(V& out, const V& src) { return scan_int(or_empty(src.pwszVal), out.intVal); }
bool wide_text_to_unsigned(V& out, const V& src) { return scan_unsigned(or_empty(src.pwszVal), out.uintVal); }
bool text_to_double(V& out, const V& src) { return scan_double(or_empty(src.pszVal), out.doubleVal); }
bool wide_text_to_double(V& out, const V& src) { return scan_double(or_empty(src.pwszVal), out.doubleVal); }
bool text_to_float(V& out, const V& src) { return scan_float(or_empty(src.pszVal), out.floatVal); }
bool wide_text_to_float(V& out, const V& src) { return scan_float(or_empty(src.pwszVal), out.floatVal); }

// Narrow text is handed to the wide scanner as it lies in memory: each two bytes count as one unit, so "7" is
// 7 and "12" is no number. Callers rely on it. The copy ends in whole zero units.
bool text_to_unsigned_by_wide_scanner(V& out, const V& src) {
    const char* text = or_empty(src.pszVal);
    const std::size_t size = text_length(text) + 1;
    Vector<wchar_t> units(size / sizeof(wchar_t) + 2);
    std::memcpy(units.data(), text, size);
    return scan_unsigned(units.data(), out.uintVal);
}

// The double's bits are taken for the address of a text. Nobody converts reals to unsigned long and expects
// the number; the routing stays as callers found it, but reads no memory that cannot be read.
bool double_as_text_address(V& out, const V& src) {
    char text[4096];
    copy_foreign_text(std::bit_cast<unsigned long long>(src.doubleVal), text, sizeof text);
    return scan_unsigned(text, out.uintVal);
}

// Conversions from the number types, in the order of their codes: empty, boolean, unsigned char, unsigned
// short, unsigned long, int, unsigned int, long, double, float.
using NumberColumns = std::array<Convert, QZVT_FLOAT + 1>;

constexpr NumberColumns to_integer(Convert from_double, Convert from_float) {
    return {leave_zero,  all_32_bits, from_byte,   from_word,   all_32_bits,
            all_32_bits, all_32_bits, all_32_bits, from_double, from_float};
}

template <auto To>
constexpr NumberColumns kToReal = {
    leave_zero,
    cast<To, &V::boolVal>,
    cast<To, &V::ucharVal>,
    cast<To, &V::ushortVal>,
    cast<To, &V::ulongVal>,
    cast<To, &V::intVal>,
    cast<To, &V::uintVal>,
    cast<To, &V::longVal>,
    cast<To, &V::doubleVal>,
    cast<To, &V::floatVal>,
};

// Geometry, blobs and interfaces never become numbers, and a source of an invalid code counts as zero.
constexpr ConvertRow number_row(const NumberColumns& numbers, Convert text = nullptr,
                                Convert wide_text = nullptr) {
    ConvertRow row{};
    for (std::size_t i = 0; i < numbers.size(); ++i)
        row[i] = numbers[i];
    row[QZVT_TEXT] = text;
    row[QZVT_WTEXT] = wide_text;
    row[kInvalidSource] = leave_zero;
    return row;
}

} // namespace

constexpr ConvertRow kToBoolean =
    number_row({leave_zero, all_32_bits, not_zero<&V::ucharVal>, not_zero<&V::ushortVal>,
                not_zero<&V::ulongVal>, not_zero<&V::intVal>, not_zero<&V::uintVal>, not_zero<&V::longVal>,
                below_or_above_zero<&V::doubleVal>, below_or_above_zero<&V::floatVal>});

constexpr ConvertRow kToUChar = number_row(
    {leave_zero, low_byte, low_byte, low_byte, low_byte, low_byte, low_byte, low_byte, nullptr, nullptr});

constexpr ConvertRow kToUShort = number_row(
    {leave_zero, low_word, byte_to_word, low_word, low_word, low_word, low_word, low_word, nullptr, nullptr});

constexpr ConvertRow kToULong = number_row(to_integer(double_as_text_address, nullptr));

constexpr ConvertRow kToInt = number_row(to_integer(cut_to_int<&V::doubleVal>, cut_to_int<&V::floatVal>),
                                         text_to_int, wide_text_to_int);
constexpr ConvertRow kToLong = kToInt;

constexpr ConvertRow kToUInt =
    number_row(to_integer(cut_to_unsigned<&V::doubleVal>, cut_to_unsigned<&V::floatVal>),
               text_to_unsigned_by_wide_scanner, wide_text_to_unsigned);

constexpr ConvertRow kToDouble = number_row(kToReal<&V::doubleVal>, text_to_double, wide_text_to_double);
constexpr ConvertRow kToFloat = number_row(kToReal<&V::floatVal>, text_to_float, wide_text_to_float);

} // namespace qzr
