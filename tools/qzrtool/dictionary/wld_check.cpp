#include "dictionary/wld_check.h"

#include "system/encoding.h"

#include <algorithm>
#include <cwctype>
#include <unordered_map>

namespace tool {

namespace {

// A problem found, until all are sorted by line.
struct Problem {
    unsigned line;
    std::string text;
};

using Problems = std::vector<Problem>;

std::string in_quotes(std::wstring_view text) {
    constexpr std::size_t kMostShown = 40;
    const std::string shown = printable(utf8(text));
    const std::string_view first = first_characters(shown, kMostShown);
    return "\"" + std::string(first) + (first.size() < shown.size() ? "...\"" : "\"");
}

// --- lines

void check_line(const WldFile& file, const WldLine& line, Problems& problems) {
    const auto tell = [&](const std::string& text) { problems.push_back({line.number, text}); };
    if (line.has_zero) tell("nothing is read behind the zero byte");
    if (line.continues && line.kind == WldLineKind::entry)
        tell("the rest of a line that is too long is taken for an entry of its own and shifts the pairs");
    else if (line.continues)
        tell("longer than 8192 bytes; the rest of the line is left out");
    else if (line.kind == WldLineKind::skipped)
        tell(line.text == "\"" ? "skipped: a quote alone"
                               : "skipped, because it does not begin with a quote: " +
                                     in_quotes(file.page().decode_anyway(line.text)) +
                                     "; the pairs shift if it is meant to be an entry");
    if (line.kind == WldLineKind::entry && !line.closed)
        tell("does not end in a quote; its last character is dropped");
}

// --- texts

void check_bytes(const WldFile& file, unsigned line, const std::string& bytes, Problems& problems) {
    if (file.page().decode(bytes)) return;
    problems.push_back(
        {line, "has bytes that are no characters of code page " + std::to_string(file.page().number())});
}

// The conversions of a format in their order, "%%" left out: "s", "ld", "*d".
std::vector<std::wstring> format_specifiers(std::wstring_view text) {
    constexpr std::wstring_view kFlags = L"-+ #0123456789.";
    constexpr std::wstring_view kSizes = L"*hlLwI64";
    constexpr std::wstring_view kConversions = L"diouxXeEfgGcCsSp";
    std::vector<std::wstring> found;
    for (std::size_t i = 0; (i = text.find(L'%', i)) != text.npos;) {
        ++i;
        if (i < text.size() && text[i] == L'%') {
            ++i;
            continue;
        }
        std::size_t at = std::min(text.find_first_not_of(kFlags, i), text.size());
        std::wstring specifier;
        while (at < text.size() && kSizes.find(text[at]) != kSizes.npos)
            specifier += text[at++];
        if (at < text.size() && kConversions.find(text[at]) != kConversions.npos) {
            found.push_back(specifier + text[at]);
            i = at + 1;
        }
    }
    return found;
}

std::string shown_specifiers(const std::vector<std::wstring>& specifiers) {
    std::string text;
    for (const std::wstring& specifier : specifiers)
        text += (text.empty() ? "%" : " %") + utf8(specifier);
    return text.empty() ? "none" : text;
}

// A mark is one "&" with a character behind it; "&&" is the character itself.
int accelerator_marks(std::wstring_view text) {
    int marks = 0;
    for (std::size_t i = 0; (i = text.find(L'&', i)) != text.npos; i += 2)
        marks += i + 1 < text.size() && text[i + 1] != L'&' && text[i + 1] != L' ';
    return marks;
}

void check_translation(const WldPair& pair, const Key& key, const std::wstring& translation,
                       Problems& problems) {
    constexpr std::size_t kMostMenuUnits = 511;
    constexpr std::size_t kMostWindowUnits = 1023;
    const auto tell = [&](const std::string& text) { problems.push_back({pair.translation_line, text}); };
    const auto source_formats = format_specifiers(key.text);
    const auto formats = format_specifiers(translation);
    if (source_formats != formats)
        tell("has the format specifiers " + shown_specifiers(formats) + ", its source " +
             shown_specifiers(source_formats));
    const int wanted = accelerator_marks(key.text);
    const int marks = accelerator_marks(translation);
    if (wanted <= 1 && marks != wanted)
        tell(marks == 0   ? "has no accelerator mark (&), its source has one"
             : marks == 1 ? "has an accelerator mark (&), its source has none"
                          : "has several accelerator marks (&); && is the character");
    if ((key.text.find(L'\t') == key.text.npos) != (translation.find(L'\t') == translation.npos))
        tell("only one of source and translation has a tab, which parts a menu's text from its shortcut");
    const bool is_menu = key.context.find(L"#2#") != key.context.npos;
    const std::size_t most = is_menu ? kMostMenuUnits : kMostWindowUnits;
    if (translation.size() > most)
        tell("is " + std::to_string(translation.size()) + " characters long; " +
             (is_menu ? "menus show " : "windows and message boxes show ") + std::to_string(most));
}

void check_pair(const WldFile& file, const WldPair& pair, Problems& problems) {
    const auto tell = [&](const std::string& text) { problems.push_back({pair.line, text}); };
    check_bytes(file, pair.line, pair.source, problems);
    if (pair.raw_source.empty()) tell("an empty source is never looked up");
    if (pair.translation_line == 0) {
        tell("has no translation line; it gets the translation of the pair before it");
        return;
    }
    check_bytes(file, pair.translation_line, pair.translation, problems);
    const std::wstring source = file.source(pair);
    const Key key = take_apart(source);
    if (key.context.empty() && begins_with_context(pair.source))
        tell("has a context in bytes of code page 1251, and is read in " +
             std::to_string(file.page().number()));
    if (!pair.translation.empty()) {
        if (!pair.is_language()) check_translation(pair, key, file.translation(pair), problems);
    } else {
        problems.push_back({pair.translation_line, key.context.empty()
                                                       ? "empty: the source is shown"
                                                       : "empty: the source is shown, with its context"});
    }
}

// --- pairs among each other

void check_hashes(const WldFile& file, Problems& problems) {
    std::unordered_map<unsigned, const WldPair*> known;
    known.reserve(file.pairs().size());
    for (const WldPair& pair : file.pairs()) {
        const std::wstring source = file.source(pair);
        const auto [first, is_new] = known.try_emplace(hash_of(source), &pair);
        if (is_new || (pair.is_language() && first->second->is_language())) continue;
        const std::string line = std::to_string(first->second->line);
        const std::wstring other = file.source(*first->second);
        problems.push_back({pair.line, other == source
                                           ? "dropped: line " + line + " has the same source"
                                           : "dropped: its hash equals that of " + in_quotes(other) +
                                                 " in line " + line + ", whose translation it gets"});
    }
}

void check_language(const WldFile& file, Problems& problems) {
    const auto language = language_of(file.pairs());
    unsigned line = 0;
    for (const WldPair& pair : file.pairs())
        if (pair.is_language()) line = pair.translation_line != 0 ? pair.translation_line : pair.line;
    if (!language) {
        // With contexts a file is loaded behind a small one that names the language.
        if (has_contexts(file.pairs())) return;
        problems.push_back(
            {0, "names no language (QZ_WLD_LANG_ID); texts are read in the system's code page"});
    } else if (!code_page_of_language(*language)) {
        problems.push_back({line, std::to_string(*language) + " is no language that the system knows"});
    }
}

} // namespace

void check_dictionary(const WldFile& file, const WldReport& report) {
    Problems problems;
    check_language(file, problems);
    for (const WldLine& line : file.lines())
        check_line(file, line, problems);
    for (const WldPair& pair : file.pairs())
        check_pair(file, pair, problems);
    check_hashes(file, problems);
    std::stable_sort(problems.begin(), problems.end(),
                     [](const Problem& a, const Problem& b) { return a.line < b.line; });
    for (const Problem& problem : problems)
        report(problem.line, problem.text);
}

} // namespace tool
