// Cutting text into the statements of the text form.
#pragma once

#include "string/multibyte.h"

#include <string_view>

namespace qzr {

bool is_text_space(char c); // blank, tab, line feed, vertical tab, form feed, carriage return

// Without the white space at both ends.
std::string_view trimmed(std::string_view text);

// Hands out the statements of a text in memory, which it does not own. Lines end with a line feed and are as
// long as they like; a zero byte ends a line too, and what follows it up to the line feed is dropped. Within
// a line "|" separates. A statement that begins with ";" makes the rest of its line a comment.
class StatementReader {
public:
    explicit StatementReader(std::string_view text);

    // The next statement, trimmed and never empty, or false at the end. It lies within the text.
    bool next(std::string_view& statement);

private:
    bool next_line();

    const char* at_; // in the current line
    const char* line_end_;
    const char* next_line_;
    const char* text_end_;
    const LeadBytes leads_;
};

} // namespace qzr
