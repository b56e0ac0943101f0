#include "formats/text_edit.h"

#include "formats/kinds.h"
#include "formats/text_file.h"
#include "formats/text_scan.h"
#include "system/encoding.h"
#include "system/failure.h"
#include "system/files.h"

#include <algorithm>
#include <optional>

namespace tool {

namespace {

using Entry = TextScan::Entry;

struct Range {
    std::size_t begin, end;
};

bool same_name(const CXString& a, const CXString& b) {
    const auto scratch = new_tree();
    const CQZVariant nothing;
    scratch->SetValue(a.GetData(), &nothing);
    return find_value(*scratch, b).has_value();
}

std::size_t line_start(std::string_view text, std::size_t at) {
    while (at > 0 && text[at - 1] != '\n') {
        --at;
    }
    return at;
}

/// @return the place behind the line feed, or the end of the text
std::size_t line_end(std::string_view text, std::size_t at) {
    const std::size_t feed = text.find('\n', at);
    return feed == text.npos ? text.size() : feed + 1;
}

bool only_separators(std::string_view text) { return text.find_first_not_of(" \t\r\n\v\f|") == text.npos; }

/// Makes edited versions of one text.
class TextEditor {
public:
    explicit TextEditor(const TextScan& scan) : scan_(scan), text_(scan.text()) {
        line_break_ =
            text_.find("\r\n") != std::string::npos || text_.find('\n') == std::string::npos ? "\r\n" : "\n";
    }

    /// Writes a new statement over the one that sets the value now; the name keeps its spelling.
    std::optional<std::string> replaced(const TreePath& path, const CQZVariant& value) const {
        const Entry* entry = scan_.effective(path);
        if (entry == nullptr || entry->file != 0) return std::nullopt;
        std::string result = text_;
        return result.replace(entry->statement.begin, entry->statement.end - entry->statement.begin,
                              value_statement(entry->name, value));
    }

    /// Adds a statement behind the last one of its section.
    std::optional<std::string> added(const TreePath& path, const std::string& statement) const {
        const Entry* last = nullptr;
        for (const Entry& entry : scan_.entries()) {
            const bool here =
                entry.file == 0 && is_content(entry) && entry.section.size() == path.sections.size();
            if (here && scan_.is_within(entry.section, path.sections)) last = &entry;
        }
        if (last == nullptr) return std::nullopt;
        std::string result = text_;
        if (!alone_on_line(last->statement)) return result.insert(last->statement.end, "\t| " + statement);
        const std::size_t end = line_end(text_, last->statement.end);
        const bool open_line = text_[end - 1] != '\n';
        return result.insert(end,
                             (open_line ? line_break_ : "") + indent_of(*last) + statement + line_break_);
    }

    /// Adds a section, and a statement in it when there is one, at the end.
    std::string appended(const std::string& text, const std::vector<CXString>& sections,
                         const std::string& statement) const {
        std::string result = text;
        if (!result.empty() && result.back() != '\n') result += line_break_;
        if (!result.empty()) result += line_break_;
        result += '[';
        for (const CXString& name : sections) {
            result += std::string("\\") + name.GetData();
        }
        if (sections.empty()) result += '\\';
        result += ']' + line_break_;
        return statement.empty() ? result : result + "\t" + statement + line_break_;
    }

    std::string without_value(const TreePath& path) const {
        return without([&](const Entry& entry) {
            return entry.statement.kind == StatementKind::value &&
                   entry.section.size() == path.sections.size() &&
                   scan_.is_within(entry.section, path.sections) && same_name(entry.name, path.value);
        });
    }

    std::string without_section(const std::vector<CXString>& sections) const {
        return without([&](const Entry& entry) {
            return is_content(entry) && scan_.is_within(entry.section, sections);
        });
    }

private:
    static bool is_content(const Entry& entry) {
        return entry.statement.kind == StatementKind::section || entry.statement.kind == StatementKind::value;
    }

    /// Whether no other statement stands on the line; a comment behind it does not count.
    bool alone_on_line(const Statement& statement) const {
        const auto same_line = [&](const Entry& entry) {
            return entry.file == 0 && entry.statement.line == statement.line && is_content(entry);
        };
        return std::count_if(scan_.entries().begin(), scan_.entries().end(), same_line) == 1;
    }

    std::string indent_of(const Entry& entry) const {
        if (entry.statement.kind == StatementKind::section) return "\t";
        const std::size_t start = line_start(text_, entry.statement.begin);
        return text_.substr(start, entry.statement.begin - start);
    }

    /// Cuts out the entries that are unwanted, and what stands between two of them.
    template <class Unwanted>
    std::string without(const Unwanted& unwanted) const {
        std::vector<Range> ranges;
        bool goes_on = false;
        for (const Entry& entry : scan_.entries()) {
            if (entry.file != 0) continue;
            if (unwanted(entry)) {
                if (!goes_on) ranges.push_back({entry.statement.begin, 0});
                ranges.back().end = entry.statement.end;
                goes_on = true;
            } else if (entry.statement.kind != StatementKind::comment) {
                goes_on = false;
            }
        }
        std::string result = text_;
        for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
            const Range whole = widened(*range);
            result.erase(whole.begin, whole.end - whole.begin);
        }
        return result;
    }

    /// Takes in the rest of the lines when nothing else stands on them, otherwise the separator that follows.
    Range widened(Range range) const {
        const std::string_view text = text_;
        const std::size_t start = line_start(text, range.begin);
        const std::size_t end = line_end(text, range.end);
        if (only_separators(text.substr(start, range.begin - start)) &&
            only_separators(text.substr(range.end, end - range.end))) {
            return {start, end};
        }
        const std::size_t next = text.substr(0, end).find_first_not_of(" \t|", range.end);
        return {range.begin, next == text.npos ? range.end : next};
    }

    const TextScan& scan_;
    const std::string& text_;
    std::string line_break_;
};

/// The edited versions of the text in the order of preference.
std::vector<std::string> candidates(const TextScan& scan, const Edit& edit) {
    const TextEditor editor(scan);
    const std::vector<CXString>& sections = edit.path.sections;
    switch (edit.action) {
    case Edit::set_value: {
        const std::string statement = value_statement(edit.path.value, edit.value);
        std::vector<std::string> texts;
        if (auto text = editor.replaced(edit.path, edit.value)) texts.push_back(std::move(*text));
        if (auto text = editor.added(edit.path, statement)) texts.push_back(std::move(*text));
        texts.push_back(editor.appended(scan.text(), sections, statement));
        return texts;
    }
    case Edit::remove_value:
        return {editor.without_value(edit.path)};
    case Edit::remove_section: {
        // The section above may have been there only because of this one.
        const std::string text = editor.without_section(sections);
        return {text, editor.appended(text, {sections.begin(), sections.end() - 1}, "")};
    }
    }
    return {};
}

[[noreturn]] void fail_not_changed(const Address& address, const TextScan& scan, const Edit& edit) {
    const Entry* entry = edit.action == Edit::remove_section ? nullptr : scan.effective(edit.path);
    if (entry != nullptr && entry->file != 0) {
        fail(address.shown + ": not changed: the value comes from " + scan.file_of(*entry).shown + ":" +
             std::to_string(entry->statement.line) + ", which is included");
    }
    fail(address.shown +
         ": not changed: its layout allows no change of this entry alone; convert it to a new file");
}

} // namespace

void edit_text_file(const Address& address, IParam& loaded, const Edit& edit) {
    refuse_lost_value(address, edit);
    apply(loaded, edit);
    const IncludeDirectory directory(address.file);
    const TextScan scan(address.file, address.shown, read_file(address.file, address.shown), nullptr);
    for (const std::string& text : candidates(scan, edit)) {
        if (!equal(*tree_of_text(text), loaded)) continue;
        replace_file(address.file, text, address.shown);
        return;
    }
    fail_not_changed(address, scan, edit);
}

} // namespace tool
