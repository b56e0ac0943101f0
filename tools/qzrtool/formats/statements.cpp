#include "formats/statements.h"

#include <algorithm>
#include <cctype>
#include <mbctype.h>

namespace tool {

namespace {

bool is_space(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

StatementKind kind_of(std::string_view statement) {
    switch (statement.front()) {
    case '[':
        return StatementKind::section;
    case '#':
        return StatementKind::directive;
    case ';':
        return StatementKind::comment;
    default:
        return StatementKind::value;
    }
}

/// @return the place of the first statement at or after from
std::size_t skip_separators(std::string_view line, std::size_t from) {
    while (from < line.size() && (is_space(line[from]) || line[from] == '|')) {
        ++from;
    }
    return from;
}

void cut_line(std::string_view line, std::size_t offset, unsigned number, std::vector<Statement>& out) {
    for (std::size_t at = skip_separators(line, 0); at < line.size(); at = skip_separators(line, at)) {
        std::string_view rest = line.substr(at);
        const std::size_t length =
            rest.front() == ';' ? rest.size() : std::min(find_ascii(rest, '|'), rest.size());
        const std::string_view statement = trim_right(rest.substr(0, length));
        out.push_back({kind_of(statement), offset + at, offset + at + statement.size(), number});
        at += length;
    }
}

} // namespace

std::size_t find_ascii(std::string_view text, char wanted) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == wanted) return i;
        if (_ismbblead(static_cast<unsigned char>(text[i])) != 0) ++i;
    }
    return std::string_view::npos;
}

std::string_view trim_left(std::string_view text) {
    while (!text.empty() && is_space(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

std::string_view trim_right(std::string_view text) {
    while (!text.empty() && is_space(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::vector<Statement> cut_statements(std::string_view text) {
    std::vector<Statement> statements;
    unsigned number = 0;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        cut_line(text.substr(start, end - start), start, ++number, statements);
        start = end + 1;
    }
    return statements;
}

NameAndValue split_statement(std::string_view statement) {
    const std::size_t equals = find_ascii(statement, '=');
    if (equals == std::string_view::npos) return {statement, false, {}};
    return {trim_right(statement.substr(0, equals)), true, trim_left(statement.substr(equals + 1))};
}

} // namespace tool
