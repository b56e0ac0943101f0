#include "supp/dictionary_reader.h"

#include "string/scan.h"

#include <cstring>
#include <mbctype.h>
#include <mbstring.h>

namespace qzr {

namespace {

// Of single bytes the ASCII ones alone are white space. The platform is asked about double-byte characters:
// it knows their wide blanks.
bool is_space(const char* p, const LeadBytes& leads) {
    if (leads(*p)) return p[1] != 0 && _ismbcspace(mb_value(p, leads)) != 0;
    return *p == ' ' || (*p >= '\t' && *p <= '\r');
}

struct Range {
    const char* begin;
    const char* end;
};

Range trimmed(const char* text, const LeadBytes& leads) {
    Range range{text, text + text_length(text)};
    while (range.begin != range.end && is_space(range.begin, leads))
        range.begin = mb_next(range.begin, leads);
    while (range.begin != range.end) {
        const char* const last = mb_last(range.begin, range.end, leads);
        if (!is_space(last, leads)) break;
        range.end = last;
    }
    return range;
}

// What an escape stands for, or 0 when it is none.
char escaped(char c) {
    switch (c) {
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    default:
        return 0;
    }
}

} // namespace

void unescape_dictionary_text(char* text, const LeadBytes& leads) noexcept {
    const char* from = find_byte(text, text + text_length(text), '\\');
    if (from == nullptr) return;
    // With double-byte characters the one found may be the second half of a character.
    if (leads.any()) from = text;
    char* to = text + (from - text);
    while (*from != 0) {
        if (*from == '\\') {
            while (*from == '\\')
                ++from;
            if (*from == 0) break;
            if (const char control = escaped(*from)) {
                *to++ = control;
                ++from;
                continue;
            }
            *to++ = '\\';
        }
        const char* const next = mb_next(from, leads);
        while (from != next)
            *to++ = *from++;
    }
    *to = 0;
}

bool DictionaryReader::next() {
    if (!read_entry(source_)) return false;
    read_entry(translation_);
    return true;
}

void DictionaryReader::unescape() noexcept {
    unescape_dictionary_text(source_, leads_);
    unescape_dictionary_text(translation_, leads_);
}

// A line's length does not tell an empty one from the end of the file; positions do.
bool DictionaryReader::read_line() {
    const unsigned before = file_.GetPosition();
    if (before >= size_) return false;
    const int length = file_.ReadLine(line_, kMostLineBytes);
    line_[length] = 0;
    return length != 0 || file_.GetPosition() != before;
}

bool DictionaryReader::read_entry(Text& entry) {
    while (read_line())
        if (take_entry(entry)) return true;
    return false;
}

// Takes an entry from the line; false for lines that are none. The last character goes whatever it is.
bool DictionaryReader::take_entry(Text& entry) const noexcept {
    if (line_[0] == ';') return false;
    const Range range = trimmed(line_, leads_);
    if (range.begin == range.end || *range.begin != '"') return false;
    const char* const last = mb_last(range.begin, range.end, leads_);
    if (last == range.begin) return false;
    const auto length = static_cast<std::size_t>(last - (range.begin + 1));
    std::memcpy(entry, range.begin + 1, length);
    entry[length] = 0;
    return true;
}

} // namespace qzr
