#include "dictionary/wld_po.h"

#include "system/encoding.h"
#include "system/failure.h"

#include <charconv>

namespace tool {

namespace {

constexpr std::string_view kLanguageField = "X-Wld-Language: ";

// --- writing

std::string in_quotes(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        switch (c) {
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        case '"':
        case '\\':
            out += '\\';
            [[fallthrough]];
        default:
            out += c;
        }
    }
    return out + "\"";
}

std::string statement(const char* keyword, std::string_view text) {
    return keyword + (" " + in_quotes(text)) + "\n";
}

// --- reading

enum class Field { none, context, source, plural, translation, other };

class Reader {
public:
    explicit Reader(const std::string& shown) : shown_(shown) {}

    void read(std::string_view text) {
        if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
        while (!text.empty()) {
            ++line_;
            const std::size_t end = std::min(text.find('\n'), text.size());
            read_line(trimmed(text.substr(0, end)));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        finish_entry();
    }

    PoFile take() { return std::move(file_); }

private:
    static std::string_view trimmed(std::string_view line) {
        const std::size_t first = line.find_first_not_of(" \t\r");
        if (first == line.npos) return {};
        return line.substr(first, line.find_last_not_of(" \t\r") + 1 - first);
    }

    [[noreturn]] void fail_here(const std::string& what) const {
        fail(shown_ + ":" + std::to_string(line_) + ": " + what);
    }

    void read_line(std::string_view line) {
        if (line.empty()) return;
        if (line[0] == '#') return read_comment(line);
        if (line[0] != '"') line = read_keyword(line);
        append(line);
    }

    // A comment behind a translation belongs to the next entry.
    void read_comment(std::string_view line) {
        if (field_ == Field::translation || field_ == Field::other) finish_entry();
        if (line.starts_with("#,") && line.find("fuzzy") != line.npos) entry_.fuzzy = true;
    }

    std::string_view read_keyword(std::string_view line) {
        static constexpr struct {
            std::string_view word;
            Field field;
        } kKeywords[] = {
            {"msgctxt", Field::context}, {"msgid_plural", Field::plural},
            {"msgid", Field::source},    {"msgstr[0]", Field::translation},
            {"msgstr[", Field::other},   {"msgstr", Field::translation},
        };
        for (const auto& keyword : kKeywords) {
            if (!line.starts_with(keyword.word)) continue;
            begin_field(keyword.field);
            const std::size_t quote = line.find('"');
            if (quote == line.npos) fail_here("a quoted text is missing");
            return line.substr(quote);
        }
        fail_here("neither a comment nor a part of an entry: " + printable(first_characters(line, 40)));
    }

    void begin_field(Field field) {
        const bool behind_translation = field_ == Field::translation || field_ == Field::other;
        const bool begins_entry = field == Field::context || field == Field::source;
        if (behind_translation && begins_entry) finish_entry();
        if (field == Field::source) entry_.line = line_;
        if (field == Field::context) entry_.context.emplace();
        if (field == Field::translation && field_ == Field::none) fail_here("a translation without source");
        field_ = field;
    }

    std::string* target() {
        switch (field_) {
        case Field::context:
            return &*entry_.context;
        case Field::source:
            return &entry_.source;
        case Field::translation:
            return &entry_.translation;
        default:
            return nullptr;
        }
    }

    void append(std::string_view text) {
        if (field_ == Field::none) fail_here("a text that belongs to nothing");
        if (text.size() < 2 || text.back() != '"') fail_here("the closing quote is missing");
        text = text.substr(1, text.size() - 2);
        std::string resolved;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '"') fail_here("a quote within the text");
            resolved += text[i] == '\\' ? escape(text, ++i) : text[i];
        }
        if (std::string* const to = target()) *to += resolved;
    }

    char escape(std::string_view text, std::size_t at) const {
        if (at >= text.size()) fail_here("the closing quote is missing");
        switch (text[at]) {
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        case '"':
        case '\\':
            return text[at];
        default:
            fail_here("unknown escape \\" + printable(text.substr(at, 1)));
        }
    }

    void finish_entry() {
        if (field_ == Field::none) return;
        if (entry_.source.empty() && !entry_.context) {
            read_header();
        } else {
            file_.entries.push_back(std::move(entry_));
        }
        entry_ = {};
        field_ = Field::none;
    }

    void read_header() {
        const std::size_t at = entry_.translation.find(kLanguageField);
        if (at == std::string::npos) return;
        const char* const begin = entry_.translation.data() + at + kLanguageField.size();
        unsigned language = 0;
        const auto result =
            std::from_chars(begin, entry_.translation.data() + entry_.translation.size(), language);
        if (result.ec == std::errc()) file_.language = language;
    }

    const std::string& shown_;
    unsigned line_ = 0;
    Field field_ = Field::none;
    PoEntry entry_;
    PoFile file_;
};

} // namespace

std::string po_text(const PoFile& file) {
    std::string text = "msgid \"\"\nmsgstr \"\"\n\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
                       "\"Content-Transfer-Encoding: 8bit\\n\"\n";
    if (file.language)
        text += in_quotes(std::string(kLanguageField) + std::to_string(*file.language) + "\n") + "\n";
    for (const PoEntry& entry : file.entries) {
        text += "\n";
        if (entry.context) text += statement("msgctxt", *entry.context);
        text += statement("msgid", entry.source) + statement("msgstr", entry.translation);
    }
    return text;
}

PoFile read_po(std::string_view text, const std::string& shown) {
    Reader reader(shown);
    reader.read(text);
    return reader.take();
}

} // namespace tool
