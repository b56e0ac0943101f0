#include "param/text/value_text.h"

#include "param/text/value_text_rows.h"

#include <array>

namespace qzr {

constexpr ValueTextRow kValueTextRows[QZVT_COUNT] = {
    {'e', parse_empty, format_empty},
    {'f', parse_bool, format_bool},
    {'b', parse_byte, format_byte},
    {'w', parse_word, format_word},
    {'W', parse_unsigned_long, format_unsigned_long},
    {'i', parse_int, format_int},
    {'u', parse_unsigned, format_unsigned},
    {'l', parse_long, format_long},
    {'R', parse_double, format_double},
    {'r', parse_float, format_float},
    {'s', parse_text, format_text},
    {'z', parse_size, format_size},
    {'Z', parse_real_size, format_real_size},
    {'p', parse_point, format_point},
    {'P', parse_real_point, format_real_point},
    {'t', parse_rect, format_rect},
    {'T', parse_real_rect, format_real_rect},
    {'x', parse_blob, format_blob},
    {'\0', nullptr, nullptr},
    {'s', nullptr, format_wide_text},
};

namespace {

// From a letter to its type code, QZVT_COUNT for none. The first row of a letter is the one that parses.
constexpr auto kCodeByLetter = [] {
    std::array<unsigned char, 256> codes{};
    codes.fill(QZVT_COUNT);
    for (unsigned char code = QZVT_COUNT; code-- > 0;) {
        const char letter = kValueTextRows[code].letter;
        if (letter != '\0') codes[static_cast<unsigned char>(letter)] = code;
    }
    return codes;
}();

} // namespace

const ValueTextRow* value_text_row(char letter) {
    const unsigned char code = kCodeByLetter[static_cast<unsigned char>(letter)];
    return code < QZVT_COUNT ? &kValueTextRows[code] : nullptr;
}

bool append_value_text(const tagQZVARIANT& value, TextBuffer& out) {
    if (value.vt >= QZVT_COUNT || kValueTextRows[value.vt].letter == '\0') return false;
    const ValueTextRow& row = kValueTextRows[value.vt];
    out.append(row.letter);
    row.format(value, out);
    return true;
}

bool parse_value_text(std::string_view text, tagQZVARIANT& value) {
    if (text.empty()) return false;
    const ValueTextRow* const row = value_text_row(text.front());
    return row != nullptr && row->parse(text.substr(1), value);
}

} // namespace qzr
