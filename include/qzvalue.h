/// @file
/// Typed values in variants: qz::to_variant, qz::from_variant, qz::convert. Header-only.
///
/// Which type of variant stands for a C++ type:
/// - bool: QZVT_BOOL
/// - int, long, unsigned char, unsigned short, unsigned, unsigned long: the integer of that name
/// - float, double: QZVT_FLOAT, QZVT_DOUBLE
/// - std::string, CXString: QZVT_TEXT
/// - std::wstring, CXStringW: QZVT_WTEXT
/// - tagSIZE, tagPOINT, tagRECT, tagRSIZE, tagRPOINT, tagRRECT: QZVT_SIZE and so on
/// - qz::Bytes: QZVT_BLOB
/// - `CQZRef<I>`: QZVT_OBJECT
///
/// Other types, such as long long and char, are refused when the program is compiled: no variant holds them
/// whole.
#pragma once

#include "qzref.h"
#include "qztext.h"
#include "qzvariant.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace qz {

using Bytes = std::vector<unsigned char>; ///< the bytes of a blob

/// The parts that the functions below are made of.
namespace detail {

template <class T>
struct IsRef : std::false_type {};
template <class I>
struct IsRef<CQZRef<I>> : std::true_type {
    using Interface = I;
};

template <class T, class... Among>
inline constexpr bool kIsOneOf = (std::is_same_v<T, Among> || ...);

template <class T>
inline constexpr bool kIsNumber =
    kIsOneOf<T, unsigned char, unsigned short, int, unsigned, long, unsigned long, float, double>;
template <class T>
inline constexpr bool kIsText = kIsOneOf<T, std::string, CXString, std::wstring, CXStringW>;

/// A code for each type of the list above; QZVT_EMPTY for others.
template <class T>
constexpr unsigned short type_code() {
    if (kIsOneOf<T, bool>) return QZVT_BOOL;
    if (kIsOneOf<T, unsigned char>) return QZVT_UCHAR;
    if (kIsOneOf<T, unsigned short>) return QZVT_USHORT;
    if (kIsOneOf<T, unsigned long>) return QZVT_ULONG;
    if (kIsOneOf<T, int>) return QZVT_INT;
    if (kIsOneOf<T, unsigned>) return QZVT_UINT;
    if (kIsOneOf<T, long>) return QZVT_LONG;
    if (kIsOneOf<T, double>) return QZVT_DOUBLE;
    if (kIsOneOf<T, float>) return QZVT_FLOAT;
    if (kIsOneOf<T, std::string, CXString>) return QZVT_TEXT;
    if (kIsOneOf<T, std::wstring, CXStringW>) return QZVT_WTEXT;
    if (kIsOneOf<T, tagSIZE>) return QZVT_SIZE;
    if (kIsOneOf<T, tagRSIZE>) return QZVT_RSIZE;
    if (kIsOneOf<T, tagPOINT>) return QZVT_POINT;
    if (kIsOneOf<T, tagRPOINT>) return QZVT_RPOINT;
    if (kIsOneOf<T, tagRECT>) return QZVT_RECT;
    if (kIsOneOf<T, tagRRECT>) return QZVT_RRECT;
    if (kIsOneOf<T, Bytes>) return QZVT_BLOB;
    return IsRef<T>::value ? QZVT_OBJECT : QZVT_EMPTY;
}

/// Stops the compilation with a reason where a type has no place in variants.
template <class T>
constexpr void require_type() {
    static_assert(!kIsOneOf<T, std::string_view, std::wstring_view, const char*, const wchar_t*>,
                  "the text is a copy: ask for std::string or std::wstring");
    static_assert(type_code<T>() != QZVT_EMPTY,
                  "no type of variants holds this C++ type: name one of those that stand in qzvalue.h");
}

/// @return the number in another type, or nothing when that type does not hold it
template <class To, class From>
std::optional<To> same_number(From number) {
    if constexpr (std::is_integral_v<To> && std::is_integral_v<From>) { // 32 bits and less
        const long long wide = number;
        if (wide < static_cast<long long>(std::numeric_limits<To>::min())) return std::nullopt;
        if (wide > static_cast<long long>(std::numeric_limits<To>::max())) return std::nullopt;
        return static_cast<To>(number);
    } else if constexpr (std::is_integral_v<To>) {
        const double real = number;
        const bool fits = real >= static_cast<double>(std::numeric_limits<To>::min()) &&
                          real <= static_cast<double>(std::numeric_limits<To>::max());
        if (!fits || std::trunc(real) != real) return std::nullopt; // a NaN fits nowhere
        return static_cast<To>(real);
    } else {
        const double real = number;
        if (std::isfinite(real) && std::fabs(real) > static_cast<double>(std::numeric_limits<To>::max()))
            return std::nullopt;
        const To result = static_cast<To>(real);
        if (std::isnan(real) || !(static_cast<double>(result) < real || static_cast<double>(result) > real))
            return result;
        return std::nullopt;
    }
}

template <class T>
std::optional<T> number_in(const tagQZVARIANT& v) {
    switch (v.vt) {
    case QZVT_UCHAR:
        return same_number<T>(v.ucharVal);
    case QZVT_USHORT:
        return same_number<T>(v.ushortVal);
    case QZVT_ULONG:
        return same_number<T>(v.ulongVal);
    case QZVT_INT:
        return same_number<T>(v.intVal);
    case QZVT_UINT:
        return same_number<T>(v.uintVal);
    case QZVT_LONG:
        return same_number<T>(v.longVal);
    case QZVT_DOUBLE:
        return same_number<T>(v.doubleVal);
    case QZVT_FLOAT:
        return same_number<T>(v.floatVal);
    default:
        return std::nullopt;
    }
}

template <class Char>
const Char* text_or_empty(const Char* text) {
    static constexpr Char kEmpty[1] = {};
    return text != nullptr ? text : kEmpty;
}

/// Texts of the other width count when nothing is lost on the way.
template <class T>
std::optional<T> text_in(const tagQZVARIANT& v) {
    constexpr bool narrow = type_code<T>() == QZVT_TEXT;
    if (v.vt == QZVT_TEXT) {
        const char* const text = text_or_empty(v.pszVal);
        if constexpr (narrow)
            return T(text);
        else
            return T(CXStringW(text).GetData());
    }
    if (v.vt != QZVT_WTEXT) return std::nullopt;
    const wchar_t* const text = text_or_empty(v.pwszVal);
    if constexpr (narrow) {
        const CXString converted(text);
        if (CXStringW(converted.GetData()) != text) return std::nullopt;
        return T(converted.GetData());
    } else {
        return T(text);
    }
}

inline std::optional<Bytes> bytes_in(const tagQZVARIANT& v) {
    if (v.vt != QZVT_BLOB) return std::nullopt;
    if (v.blobVal.pBlobData == nullptr) return Bytes(v.blobVal.cbSize);
    const auto* const first = static_cast<const unsigned char*>(v.blobVal.pBlobData);
    return Bytes(first, first + v.blobVal.cbSize);
}

template <class T>
std::optional<T> geometry_in(const tagQZVARIANT& v) {
    if (v.vt != type_code<T>()) return std::nullopt;
    if constexpr (kIsOneOf<T, tagSIZE>)
        return v.sizeVal;
    else if constexpr (kIsOneOf<T, tagRSIZE>)
        return v.rsizeVal;
    else if constexpr (kIsOneOf<T, tagPOINT>)
        return v.pointVal;
    else if constexpr (kIsOneOf<T, tagRPOINT>)
        return v.rpointVal;
    else if constexpr (kIsOneOf<T, tagRECT>)
        return v.rectVal;
    else
        return v.rrectVal;
}

template <class R>
std::optional<R> object_in(const tagQZVARIANT& v) {
    if (v.vt != QZVT_OBJECT) return std::nullopt;
    R object = R::Query(v.pUnkVal);
    if (!object) return std::nullopt;
    return object;
}

} // namespace detail

/// Reads a variant as T, without loss or not at all:
///
/// - a number of any type, where T holds that very number: the long 5 is an int and a double, 2.5 is no int,
///   300 is no unsigned char, and the double 0.1 is no float;
/// - a text of either width, where nothing is lost between the code pages;
/// - an object that answers for I as `CQZRef<I>`;
/// - everything else, booleans and geometry included, of exactly the type that T stands for.
///
/// A blob without bytes reads as zeroes. To have "12" as 12 ask qz::convert.
/// @return the value, or nothing. Throws CXMemException, and what an object's QueryInterface throws.
template <class T>
std::optional<T> from_variant(const tagQZVARIANT& v) {
    detail::require_type<T>();
    if constexpr (detail::kIsNumber<T>) {
        return detail::number_in<T>(v);
    } else if constexpr (detail::kIsText<T>) {
        return detail::text_in<T>(v);
    } else if constexpr (std::is_same_v<T, bool>) {
        if (v.vt != QZVT_BOOL) return std::nullopt;
        return v.boolVal != 0;
    } else if constexpr (std::is_same_v<T, Bytes>) {
        return detail::bytes_in(v);
    } else if constexpr (detail::IsRef<T>::value) {
        return detail::object_in<T>(v);
    } else {
        return detail::geometry_in<T>(v);
    }
}

/// Converts a variant by the library's own rules, those of QZVariantChangeType: "12abc" is the int 12, 2.9
/// the int 2, 300 the unsigned char 44, true the text "Yes", and an empty variant zero or the empty text.
/// docs/variants.md has all of them.
/// @return the value, or nothing where there is no such conversion. Throws CXMemException.
template <class T>
std::optional<T> convert(const tagQZVARIANT& v) {
    detail::require_type<T>();
    CQZVariant converted;
    if (QZVariantChangeType(&converted, &v, detail::type_code<T>()) == 0) return std::nullopt;
    return from_variant<T>(converted);
}

// Booleans first: to a variant they would be integers. A template, so that nothing else becomes one.
/// @return the value as a variant of its type, by the list above. Throws CXMemException.
///@{
template <class T, std::enable_if_t<std::is_same_v<T, bool>, int> = 0>
CQZVariant to_variant(T value) {
    return CQZVariant(value ? 1 : 0, QZVT_BOOL);
}
template <class T, std::enable_if_t<detail::kIsNumber<T>, int> = 0>
CQZVariant to_variant(T value) {
    return CQZVariant(value);
}
inline CQZVariant to_variant(const tagSIZE& value) { return CQZVariant(value); }
inline CQZVariant to_variant(const tagRSIZE& value) { return CQZVariant(value); }
inline CQZVariant to_variant(const tagPOINT& value) { return CQZVariant(value); }
inline CQZVariant to_variant(const tagRPOINT& value) { return CQZVariant(value); }
inline CQZVariant to_variant(const tagRECT& value) { return CQZVariant(value); }
inline CQZVariant to_variant(const tagRRECT& value) { return CQZVariant(value); }
inline CQZVariant to_variant(const char* text) { return CQZVariant(text); }
inline CQZVariant to_variant(const wchar_t* text) { return CQZVariant(text); }
inline CQZVariant to_variant(const CXString& text) { return CQZVariant(text); }
inline CQZVariant to_variant(const CXStringW& text) { return CQZVariant(text); }
inline CQZVariant to_variant(const tagQZVARIANT& value) { return CQZVariant(value); }
template <class I>
CQZVariant to_variant(const CQZRef<I>& object) {
    return CQZVariant(static_cast<IQZUnknown*>(object.Get()));
}
///@}

/// The same for texts, std::string and std::wstring included. Throws std::invalid_argument for a zero in
/// the text, which the variant would cut there.
///@{
inline CQZVariant to_variant(std::string_view text) { return CQZVariant(string_of(text)); }
inline CQZVariant to_variant(std::wstring_view text) { return CQZVariant(string_of(text)); }
inline CQZVariant to_variant(const std::string& text) { return to_variant(std::string_view(text)); }
inline CQZVariant to_variant(const std::wstring& text) { return to_variant(std::wstring_view(text)); }
///@}

/// @return a blob with a copy of the bytes. Throws CXMemException, also for 4 GiB and more.
inline CQZVariant to_variant(const void* bytes, std::size_t size) {
    if (size > std::numeric_limits<unsigned>::max()) throw CXMemException();
    // The record is copied from; its bytes are not touched.
    const tagQZBLOB blob = {static_cast<unsigned>(size), const_cast<void*>(bytes)};
    return CQZVariant(blob);
}
inline CQZVariant to_variant(const Bytes& bytes) { return to_variant(bytes.data(), bytes.size()); } ///< same

} // namespace qz
