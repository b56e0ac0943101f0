// Numbers as text under "C" rules, whatever the locale of the process: stored texts must not change with it,
// and no other thread ever sees the locale switched.
#pragma once

namespace qzr {

constexpr int kIntegerTextSize = 12; // "-2147483648" and the terminator
constexpr int kRealTextSize = 24;    // "-1.7976931348623e+308" and the terminator

// Decimal, zero-terminated. @return the length
int format_int(char* out, int value) noexcept;
int format_uint(char* out, unsigned value) noexcept;

// Fourteen significant digits as the runtime's _gcvt prints them: three exponent digits, "1.#INF", "-1.#IND";
// whether integral values end in a point ("3" or "3.") is the runtime's habit too. Zero-terminated. @return
// the length
int real_to_text14(char* out, double value) noexcept;

// The runtime's strtol and strtoul: white space, a sign, digits of base 10 or 16 (with or without "0x"); out
// of range saturates. `*end` (may be null) is where the number ends, `text` when there is none.
int text_to_int(const char* text, const char** end, int base) noexcept;
unsigned text_to_uint(const char* text, const char** end, int base) noexcept;

// The platform's strtod: white space, a sign, digits with a point, an exponent after e, E, d or D; neither
// hexadecimal nor names of infinities. Rounded exactly; too large is infinite, too small is 0. Throws
// CXMemException.
double text_to_real(const char* text, const char** end);

} // namespace qzr
