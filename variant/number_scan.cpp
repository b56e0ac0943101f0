#include "variant/number_scan.h"

#include "string/format.h"
#include "variant/decimal_point.h"

namespace qzr {

namespace {

bool scan_by_runtime(const char* text, const char* format, const wchar_t*, void* out) {
    return scan_text(text, format, out);
}
bool scan_by_runtime(const wchar_t* text, const char*, const wchar_t* format, void* out) {
    return scan_text(text, format, out);
}

template <class Char>
bool is_digit(Char c) {
    return c >= '0' && c <= '9';
}

// White space that is white space in every locale.
template <class Char>
const Char* skip_spaces(const Char* p) {
    while (*p == ' ' || (*p >= '\t' && *p <= '\r'))
        ++p;
    return p;
}

// A run of digits as an integer, at most as many as never overflow it. @return the place behind them
template <class Char>
const Char* read_digits(const Char* p, const Char* limit, unsigned long long& value) {
    for (; p != limit && is_digit(*p); ++p)
        value = value * 10 + static_cast<unsigned>(*p - '0');
    return p;
}

// Up to nine digits: what follows them does not matter, and no integer type overflows.
template <class Char>
bool plain_integer(const Char* text, bool& negative, unsigned& magnitude) {
    const Char* p = skip_spaces(text);
    negative = *p == '-';
    if (negative || *p == '+') ++p;
    unsigned long long value = 0;
    const Char* end = read_digits(p, p + 9, value);
    if (end == p || is_digit(*end)) return false;
    magnitude = static_cast<unsigned>(value);
    return true;
}

constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// A decimal fraction: digits / 10^places.
struct Decimal {
    bool negative;
    unsigned long long digits;
    unsigned places;
};

// Digits with a point, 15 at most: digits and power of ten are then exact in a double, and one division
// rounds right. A letter that could belong to the number, such as that of an exponent, is left to the
// scanner.
template <class Char>
bool plain_decimal(const Char* text, Decimal& out) {
    const Char* p = skip_spaces(text);
    out.negative = *p == '-';
    if (out.negative || *p == '+') ++p;
    const Char* const limit = p + 16; // a point among them
    out.digits = 0;
    out.places = 0;
    const Char* end = read_digits(p, p + 15, out.digits);
    if (end == p) return false;
    if (*end == '.') {
        const Char* const fraction = end + 1;
        end = read_digits(fraction, limit, out.digits);
        out.places = static_cast<unsigned>(end - fraction);
    }
    const auto next = static_cast<unsigned>(*end) | 0x20u; // letters in lower case
    return !is_digit(*end) && !(next >= 'a' && next <= 'z');
}

template <class Char>
bool scan_signed_number(const Char* text, int& out) {
    bool negative;
    unsigned magnitude;
    if (!plain_integer(text, negative, magnitude)) return scan_by_runtime(text, "%d", L"%d", &out);
    out = negative ? -static_cast<int>(magnitude) : static_cast<int>(magnitude);
    return true;
}

template <class Char>
bool scan_unsigned_number(const Char* text, unsigned& out) {
    bool negative;
    unsigned magnitude;
    if (!plain_integer(text, negative, magnitude) || negative)
        return scan_by_runtime(text, "%u", L"%u", &out);
    out = magnitude;
    return true;
}

template <class Char>
bool scan_double_number(const Char* text, double& out) {
    Decimal decimal;
    if (!decimal_point_is_dot() || !plain_decimal(text, decimal))
        return scan_by_runtime(text, "%lf", L"%lf", &out);
    const double value = static_cast<double>(decimal.digits) / kPowersOfTen[decimal.places];
    out = decimal.negative ? -value : value;
    return true;
}

// Digits below 2^24 over a power of ten up to 10^10, both exact in a float: rounding to a double first and to
// a float then cannot differ from rounding once.
template <class Char>
bool scan_float_number(const Char* text, float& out) {
    Decimal decimal;
    if (!decimal_point_is_dot() || !plain_decimal(text, decimal) || decimal.digits >= 1u << 24 ||
        decimal.places > 10)
        return scan_by_runtime(text, "%f", L"%f", &out);
    const double value = static_cast<double>(decimal.digits) / kPowersOfTen[decimal.places];
    out = static_cast<float>(decimal.negative ? -value : value);
    return true;
}

} // namespace

bool scan_int(const char* text, int& out) { return scan_signed_number(text, out); }
bool scan_int(const wchar_t* text, int& out) { return scan_signed_number(text, out); }
bool scan_unsigned(const char* text, unsigned& out) { return scan_unsigned_number(text, out); }
bool scan_unsigned(const wchar_t* text, unsigned& out) { return scan_unsigned_number(text, out); }
bool scan_double(const char* text, double& out) { return scan_double_number(text, out); }
bool scan_double(const wchar_t* text, double& out) { return scan_double_number(text, out); }
bool scan_float(const char* text, float& out) { return scan_float_number(text, out); }
bool scan_float(const wchar_t* text, float& out) { return scan_float_number(text, out); }

} // namespace qzr
