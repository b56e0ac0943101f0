#include "param/text/statement_reader.h"

#include "string/scan.h"

namespace qzr {

namespace {

const char* find_byte_or_end(const char* begin, const char* end, char byte) {
    const char* const found = find_byte(begin, end, byte);
    return found != nullptr ? found : end;
}

} // namespace

// These six bytes are never the second one of a character, so trimming needs no stepping.
bool is_text_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && is_text_space(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_text_space(text.back()))
        text.remove_suffix(1);
    return text;
}

StatementReader::StatementReader(std::string_view text)
    : at_(text.data()),
      line_end_(text.data()),
      next_line_(text.data()),
      text_end_(text.data() + text.size()),
      leads_(lead_bytes()) {}

bool StatementReader::next(std::string_view& statement) {
    while (at_ != line_end_ || next_line()) {
        const char* const bar = mb_find(at_, line_end_, '|', leads_);
        const char* const end = bar != nullptr ? bar : line_end_;
        const std::string_view found = trimmed({at_, static_cast<std::size_t>(end - at_)});
        at_ = bar != nullptr ? bar + 1 : line_end_;
        if (found.empty()) continue;
        if (found.front() != ';') {
            statement = found;
            return true;
        }
        at_ = line_end_;
    }
    return false;
}

bool StatementReader::next_line() {
    while (next_line_ != text_end_) {
        if (*next_line_ == '\n') {
            ++next_line_;
            continue;
        }
        at_ = next_line_;
        const char* const feed = find_byte_or_end(at_, text_end_, '\n');
        next_line_ = feed != text_end_ ? feed + 1 : text_end_;
        line_end_ = find_byte_or_end(at_, feed, '\0');
        if (at_ != line_end_) return true;
    }
    return false;
}

} // namespace qzr
