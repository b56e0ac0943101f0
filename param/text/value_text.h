// Single values as text: a letter that names the type, then the value. The text form of trees and the files
// that hold single values share this table.
#pragma once

#include "param/text/text_buffer.h"
#include "qzvariant.h"

#include <string_view>

namespace qzr {

struct ValueTextRow {
    char letter; // 0 for a type that is never written

    // Reads the text behind the letter, which a zero must follow. value comes in empty, and stays so when the
    // text is refused; otherwise it owns what it holds. Null for a type that no letter leads to. Throws
    // CXMemException.
    bool (*parse)(std::string_view text, tagQZVARIANT& value);

    // Appends the text behind the letter. Null when the letter is 0. Throws as growing does.
    void (*format)(const tagQZVARIANT& value, TextBuffer& out);
};

// By type code. Wide text is written with the letter of narrow text and comes back as that.
extern const ValueTextRow kValueTextRows[QZVT_COUNT];

// The row that a letter leads to, case mattering; null for an unknown one.
const ValueTextRow* value_text_row(char letter);

// Appends a value's letter and text. Returns false, and appends nothing, for a type that is never written.
// Throws as growing does.
bool append_value_text(const tagQZVARIANT& value, TextBuffer& out);

// Reads a letter and what follows; a zero must follow the text. value comes in empty, and stays so when the
// text is refused. Throws CXMemException.
bool parse_value_text(std::string_view text, tagQZVARIANT& value);

} // namespace qzr
