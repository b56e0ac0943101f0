// Booleans, integers and reals.
#include "param/text/value_text_fields.h"
#include "param/text/value_text_rows.h"
#include "string/number_text.h"

namespace qzr {

namespace {

// Both sides of the byte notation are odd, and kept because stored files hold such texts: digits from 11 on
// are written as "L" to "P" and ten as ":", and none of them is ever read back.
char byte_digit(unsigned nibble) { return static_cast<char>(nibble <= 10 ? '0' + nibble : 'A' + nibble); }

// The digits of other writers, and our own.
bool is_byte_digit(char c) {
    return (c >= '0' && c <= ':') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f') ||
           (c >= 'L' && c <= 'P');
}

template <class T>
bool parse_one(std::string_view text, tagQZVARIANT& value, unsigned short vt, T tagQZVARIANT::*field) {
    T number{};
    if (!FieldReader(text).next(number)) return false;
    value.vt = vt;
    value.*field = number;
    return true;
}

} // namespace

// A number stops at the limits, so that none beyond them wraps around to 0 or 1.
bool parse_bool(std::string_view text, tagQZVARIANT& value) {
    if (text.empty()) return false;
    int truth = -1;
    switch (text.front()) {
    case 'Y':
    case 'y':
        truth = 1;
        break;
    case 'N':
    case 'n':
        truth = 0;
        break;
    default:
        if (text.front() >= '0' && text.front() <= '9') truth = text_to_int(text.data(), nullptr, 10);
        break;
    }
    if (truth != 0 && truth != 1) return false;
    value.vt = QZVT_BOOL;
    value.boolVal = truth;
    return true;
}

void format_bool(const tagQZVARIANT& value, TextBuffer& out) { out.append(value.boolVal == 1 ? '1' : '0'); }

// The two digits are looked at and forgotten: every byte is read as 0. Callers rely on it.
bool parse_byte(std::string_view text, tagQZVARIANT& value) {
    if (text.size() < 2 || !is_byte_digit(text[0]) || !is_byte_digit(text[1])) return false;
    value.vt = QZVT_UCHAR;
    return true;
}

void format_byte(const tagQZVARIANT& value, TextBuffer& out) {
    out.append(byte_digit(value.ucharVal / 16U));
    out.append(byte_digit(value.ucharVal % 16U));
}

bool parse_word(std::string_view text, tagQZVARIANT& value) {
    unsigned long number = 0;
    if (!FieldReader(text).next(number) || number >= 0x10000) return false;
    value.vt = QZVT_USHORT;
    value.ushortVal = static_cast<unsigned short>(number);
    return true;
}

bool parse_unsigned_long(std::string_view text, tagQZVARIANT& value) {
    return parse_one(text, value, QZVT_ULONG, &tagQZVARIANT::ulongVal);
}
bool parse_int(std::string_view text, tagQZVARIANT& value) {
    return parse_one(text, value, QZVT_INT, &tagQZVARIANT::intVal);
}
bool parse_unsigned(std::string_view text, tagQZVARIANT& value) {
    return parse_one(text, value, QZVT_UINT, &tagQZVARIANT::uintVal);
}
bool parse_long(std::string_view text, tagQZVARIANT& value) {
    return parse_one(text, value, QZVT_LONG, &tagQZVARIANT::longVal);
}
bool parse_double(std::string_view text, tagQZVARIANT& value) {
    return parse_one(text, value, QZVT_DOUBLE, &tagQZVARIANT::doubleVal);
}

bool parse_float(std::string_view text, tagQZVARIANT& value) {
    double number = 0;
    if (!FieldReader(text).next(number)) return false;
    value.vt = QZVT_FLOAT;
    value.floatVal = static_cast<float>(number);
    return true;
}

void format_word(const tagQZVARIANT& value, TextBuffer& out) {
    append_number(out, static_cast<unsigned>(value.ushortVal));
}
void format_unsigned_long(const tagQZVARIANT& value, TextBuffer& out) { append_number(out, value.ulongVal); }
void format_int(const tagQZVARIANT& value, TextBuffer& out) { append_number(out, value.intVal); }
void format_unsigned(const tagQZVARIANT& value, TextBuffer& out) { append_number(out, value.uintVal); }
void format_long(const tagQZVARIANT& value, TextBuffer& out) { append_number(out, value.longVal); }
void format_double(const tagQZVARIANT& value, TextBuffer& out) { append_number(out, value.doubleVal); }
void format_float(const tagQZVARIANT& value, TextBuffer& out) {
    append_number(out, static_cast<double>(value.floatVal));
}

} // namespace qzr
