#include "dictionary/wld_file.h"

#include "system/encoding.h"
#include "system/files.h"

#include <algorithm>
#include <cstdlib>

namespace tool {

namespace {

constexpr std::size_t kMostLineBytes = 8192;
constexpr std::string_view kSpace = " \t\n\v\f\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(kSpace) + 1 - first);
}

std::string_view last_character(std::string_view text, const CodePage& page) {
    std::string_view last = text;
    while (!text.empty()) {
        last = text.substr(0, page.character_size(text));
        text.remove_prefix(last.size());
    }
    return last;
}

WldLine line_of(std::string_view piece, const CodePage& page) {
    WldLine line = {};
    const std::string_view seen = piece.substr(0, piece.find('\0'));
    line.has_zero = seen.size() != piece.size();
    line.text = trimmed(seen);
    line.kind = WldLineKind::skipped;
    if (!seen.empty() && seen[0] == ';') {
        line.kind = WldLineKind::comment;
    } else if (line.text.empty()) {
        line.kind = WldLineKind::blank;
    } else if (line.text.size() > 1 && line.text[0] == '"') {
        const std::string_view last = last_character(line.text, page);
        line.kind = WldLineKind::entry;
        line.closed = last == "\"";
        line.entry = line.text.substr(1, line.text.size() - last.size() - 1);
    }
    return line;
}

std::vector<WldPair> pairs_of(const std::vector<WldLine>& lines, const CodePage& page) {
    std::vector<WldPair> pairs;
    bool is_source = true;
    for (const WldLine& line : lines) {
        if (line.kind != WldLineKind::entry) continue;
        if (is_source) {
            const std::string_view before = pairs.empty() ? std::string_view() : pairs.back().raw_translation;
            pairs.push_back({line.number, 0, line.entry, before, unescaped(line.entry, page), {}});
        } else {
            pairs.back().translation_line = line.number;
            pairs.back().raw_translation = line.entry;
        }
        is_source = !is_source;
    }
    for (WldPair& pair : pairs)
        pair.translation = unescaped(pair.raw_translation, page);
    return pairs;
}

// Language and contexts are found whatever the code page: the one is ASCII, the others end in two bytes.
unsigned page_number(const std::string& bytes, unsigned asked_for) {
    if (asked_for != 0) return asked_for;
    const CodePage system(0);
    const std::vector<WldLine> lines = wld_lines(bytes, system);
    const std::vector<WldPair> pairs = pairs_of(lines, system);
    if (const auto language = language_of(pairs)) return code_page_of_language(*language).value_or(0);
    return has_contexts(pairs) ? kPageOfContexts : 0;
}

} // namespace

std::vector<WldLine> wld_lines(std::string_view bytes, const CodePage& page) {
    std::vector<WldLine> lines;
    unsigned number = 1;
    bool continues = false;
    while (!bytes.empty()) {
        const std::size_t end = std::min({bytes.find('\n'), kMostLineBytes, bytes.size()});
        lines.push_back(line_of(bytes.substr(0, end), page));
        lines.back().number = number;
        lines.back().continues = continues;
        continues = end == kMostLineBytes;
        const bool at_line_feed = !continues && end < bytes.size();
        bytes.remove_prefix(end + at_line_feed);
        number += at_line_feed;
    }
    return lines;
}

std::optional<unsigned> language_of(const std::vector<WldPair>& pairs) {
    std::optional<unsigned> language;
    for (const WldPair& pair : pairs)
        if (pair.is_language())
            language = static_cast<unsigned>(std::atoi(std::string(pair.raw_translation).c_str()));
    return language;
}

bool has_contexts(const std::vector<WldPair>& pairs) {
    return std::any_of(pairs.begin(), pairs.end(),
                       [](const WldPair& pair) { return begins_with_context(pair.raw_source); });
}

WldFile::WldFile(const std::wstring& argument, unsigned code_page)
    : path_(std::filesystem::absolute(native_path(argument))),
      shown_(printable(utf8(argument))),
      bytes_(read_file(path_, shown_)),
      page_(page_number(bytes_, code_page)),
      lines_(wld_lines(bytes_, page_)),
      pairs_(pairs_of(lines_, page_)) {}

std::string wld_lines_of(std::string_view raw_source, std::string_view raw_translation) {
    const auto quoted = [](std::string_view text) { return "\"" + std::string(text) + "\"\r\n"; };
    return quoted(raw_source) + quoted(raw_translation) + "\r\n";
}

} // namespace tool
