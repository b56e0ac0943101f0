// Cuts the text form into statements and keeps their places, by the rules of the library's reader.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace tool {

enum class StatementKind {
    section,   // [\View\Grid]
    value,     // Name=i5, or a name alone
    directive, // #include "file"
    comment,   // ; up to the end of the line
};

struct Statement {
    StatementKind kind;
    std::size_t begin, end; // bytes in the text, without white space around
    unsigned line;          // from 1

    std::string_view in(std::string_view text) const { return text.substr(begin, end - begin); }
};

std::vector<Statement> cut_statements(std::string_view text);

/// @return the first position of an ASCII character that is not the second half of a double-byte one; npos
/// without
std::size_t find_ascii(std::string_view text, char wanted);

std::string_view trim_left(std::string_view text);
std::string_view trim_right(std::string_view text);
inline std::string_view trim(std::string_view text) { return trim_left(trim_right(text)); }

/// The parts of a value statement.
struct NameAndValue {
    std::string_view name;
    bool has_value;         // false for a name alone
    std::string_view value; // type letter and text
};
NameAndValue split_statement(std::string_view statement);

} // namespace tool
