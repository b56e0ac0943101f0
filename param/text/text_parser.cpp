#include "param/text/text_parser.h"

#include "param/memory/mem_param.h"
#include "param/text/included_files.h"
#include "param/text/statement_reader.h"
#include "param/text/text_files.h"
#include "param/text/value_text.h"
#include "qzparam.h"
#include "qzref.h"
#include "string/multibyte.h"

#include <deque>
#include <utility>

namespace qzr {

namespace {

constexpr std::size_t kDeepestInclude = 16; // the outermost text is 0

constexpr std::string_view kInclude = "#include";

// A text that is being read.
struct Source {
    Source(std::string_view text, std::wstring from) : path(std::move(from)), statements(text) {}
    Source(FileContent file, std::wstring from)
        : content(std::move(file)), path(std::move(from)), statements(*content) {}

    FileContent content; // of an included file; the reader points into it
    std::wstring path;   // empty for a text that comes from no file
    StatementReader statements;
};

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool begins_with_include(std::string_view statement) {
    if (statement.size() < kInclude.size()) return false;
    for (std::size_t i = 0; i < kInclude.size(); ++i) {
        if (lower(statement[i]) != kInclude[i]) return false;
    }
    return true;
}

std::string_view up_to(const char* end, std::string_view text) {
    return end != nullptr ? text.substr(0, static_cast<std::size_t>(end - text.data())) : text;
}

const char* find_in(std::string_view text, char c, const LeadBytes& leads) {
    return mb_find(text.data(), text.data() + text.size(), c, leads);
}

// The name behind "#include": with or without quotes, of which the closing one may be missing. Empty when the
// word only begins like the directive.
std::string_view included_name(std::string_view rest, const LeadBytes& leads) {
    if (rest.empty() || (rest.front() != '"' && !is_text_space(rest.front()))) return {};
    rest = trimmed(rest);
    if (rest.empty() || rest.front() != '"') return rest;
    rest.remove_prefix(1);
    return up_to(find_in(rest, '"', leads), rest);
}

// The path within "[...]": the closing bracket may be missing.
std::string_view section_path(std::string_view statement, const LeadBytes& leads) {
    statement.remove_prefix(1);
    const char* const end = statement.data() + statement.size();
    const char* const bracket = mb_find_last(statement.data(), end, ']', leads);
    if (bracket != nullptr && bracket + 1 == end) statement.remove_suffix(1);
    return statement;
}

class TextParser {
public:
    explicit TextParser(IParam& root)
        : root_(CQZRef<IParam>::Share(&root)), files_(dynamic_cast<CMemParam*>(&root) != nullptr) {}

    void run(std::string_view text, const std::wstring& path) {
        sources_.emplace_back(text, path);
        while (!sources_.empty()) {
            std::string_view statement;
            if (sources_.back().statements.next(statement)) {
                take(statement);
            } else {
                sources_.pop_back();
            }
        }
    }

private:
    void take(std::string_view statement) {
        switch (statement.front()) {
        case '#':
            if (begins_with_include(statement))
                include(included_name(statement.substr(kInclude.size()), leads_));
            break;
        case '[':
            open_section(section_path(statement, leads_));
            break;
        default:
            if (node_) store(statement);
            break;
        }
    }

    // A file that is missing, or is being read already, is passed over.
    void include(std::string_view name) {
        if (sources_.size() > kDeepestInclude || files_.exhausted()) return;
        std::wstring path = named_file(name, sources_.back().path);
        if (path.empty() || is_being_read(path)) return;
        FileContent content = files_.open(path);
        if (content) sources_.emplace_back(std::move(content), std::move(path));
    }

    bool is_being_read(const std::wstring& path) const {
        for (const Source& source : sources_) {
            if (same_file(source.path, path)) return true;
        }
        return false;
    }

    // Empty components do not count, so the "\" in front may be missing and "[\]" is the root. A child that
    // the tree refuses ends the reading: its values would be lost.
    void open_section(std::string_view path) {
        node_ = root_;
        while (!path.empty()) {
            const std::string_view name = up_to(find_in(path, '\\', leads_), path);
            path.remove_prefix(name.size() < path.size() ? name.size() + 1 : name.size());
            if (name.empty()) continue;
            scratch_.assign(name);
            node_ = CQZRef<IParam>::Adopt(node_->OpenSubParam(scratch_.c_str(), 1));
            if (!node_) throw CXMemException();
        }
    }

    // The statement is copied once, and its name and value end where zeroes are put into the copy.
    void store(std::string_view statement) {
        scratch_.assign(statement);
        const char* const equals = find_in(scratch_, '=', leads_);
        if (equals == nullptr) {
            tagQZVARIANT zero{};
            zero.vt = QZVT_INT;
            node_->SetValue(scratch_.c_str(), &zero);
            return;
        }
        const std::size_t at = static_cast<std::size_t>(equals - scratch_.data());
        const std::size_t name_size = trimmed(std::string_view(scratch_).substr(0, at)).size();
        const std::string_view value = trimmed(std::string_view(scratch_).substr(at + 1));
        scratch_[name_size] = '\0';
        store_value(value);
    }

    // The statement ends where its value does, so the value is followed by the copy's own zero.
    void store_value(std::string_view text) {
        if (text.empty()) return;
        const ValueTextRow* const row = value_text_row(text.front());
        if (row == nullptr) return;
        if (row == &kValueTextRows[QZVT_TEXT]) {
            store_text(text.substr(1));
            return;
        }
        CQZVariant value;
        if (row->parse(text.substr(1), value)) node_->SetValue(scratch_.c_str(), &value);
    }

    // The tree copies what it is given, so the text need not be copied for it first.
    void store_text(std::string_view text) {
        tagQZVARIANT borrowed{};
        borrowed.vt = QZVT_TEXT;
        borrowed.pszVal = scratch_.data() + (text.data() - scratch_.data());
        node_->SetValue(scratch_.c_str(), &borrowed);
    }

    CQZRef<IParam> root_;
    CQZRef<IParam> node_;        // of the section being read; nothing before the first one
    std::deque<Source> sources_; // innermost last; stays in place while growing
    IncludedFiles files_;
    std::string scratch_;
    const LeadBytes leads_ = lead_bytes();
};

} // namespace

void read_text_form(std::string_view text, const std::wstring& path, IParam& root) {
    TextParser(root).run(text, path);
}

} // namespace qzr
