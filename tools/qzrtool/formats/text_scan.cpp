#include "formats/text_scan.h"

#include "formats/text_checks.h"
#include "system/encoding.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace tool {

namespace {

namespace fs = std::filesystem;

constexpr unsigned kDeepestInclude = 16; // of the library's reader

CXString to_name(std::string_view bytes) { return CXString(std::string(bytes).c_str()); }

/// The sections named in [\View\Grid], empty ones left out.
std::vector<CXString> sections_in(std::string_view statement) {
    statement.remove_prefix(1);
    if (!statement.empty() && statement.back() == ']') statement.remove_suffix(1);
    std::vector<CXString> sections;
    while (!statement.empty()) {
        const std::size_t end = std::min(find_ascii(statement, '\\'), statement.size());
        if (end > 0) sections.push_back(to_name(statement.substr(0, end)));
        statement.remove_prefix(std::min(end + 1, statement.size()));
    }
    return sections;
}

/// The file that an include names: "." stands for the directory of the including file, other relative names
/// are taken from the working directory.
fs::path included_path(std::string_view name, const fs::path& including_file) {
    if (name.starts_with('"')) name = name.substr(1, name.find('"', 1) - 1);
    const CXStringW wide(to_name(name).GetData());
    const fs::path path(wide.GetData());
    return fs::absolute(name.starts_with('.') ? including_file.parent_path() / path : path)
        .lexically_normal();
}

bool read_whole(const fs::path& path, std::string& text) {
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored)) return false;
    std::ifstream file(path, std::ios::binary);
    if (!file) return false;
    std::ostringstream contents;
    contents << file.rdbuf();
    text = std::move(contents).str();
    return true;
}

} // namespace

bool reader_takes(std::string_view statement) {
    CXString text(("[\\]|" + std::string(statement)).c_str());
    const auto scratch = new_tree();
    Param_String2Param(text, scratch.Get());
    return !value_names(*scratch).empty() || !section_names(*scratch).empty();
}

TextScan::TextScan(const fs::path& path, const std::string& shown, std::string text, Diagnostics* diagnostics)
    : origin_(new_tree()), diagnostics_(diagnostics) {
    files_.push_back({fs::absolute(path).lexically_normal(), shown, std::move(text)});
    read_file_at(0, 0);
}

const TextScan::Entry* TextScan::effective(const TreePath& path) const {
    const auto section = find_section(*origin_, path.sections);
    if (!section) return nullptr;
    const auto index = find_value(*section, path.value);
    return index ? &entries_[static_cast<std::size_t>(index->intVal)] : nullptr;
}

bool TextScan::is_within(const std::vector<CXString>& section, const std::vector<CXString>& outer) const {
    if (section.size() < outer.size()) return false;
    const auto count = static_cast<std::ptrdiff_t>(outer.size());
    const std::vector<CXString> head(section.begin(), section.begin() + count);
    const auto node = find_section(*origin_, outer);
    return node && node == find_section(*origin_, head);
}

void TextScan::read_file_at(unsigned file, unsigned depth) {
    being_read_.push_back(file);
    warn_of_text(file);
    const std::string_view text = files_[file].text;
    for (const Statement& statement : cut_statements(text)) {
        Entry entry = {file, statement, section_, {}};
        const std::string_view words = statement.in(text);
        switch (statement.kind) {
        case StatementKind::section:
            read_section(entry, words);
            break;
        case StatementKind::value:
            read_value(entry, words);
            break;
        case StatementKind::directive:
            break;
        case StatementKind::comment:
            break;
        }
        entries_.push_back(entry);
        if (statement.kind == StatementKind::directive) read_directive(entry, words, depth);
    }
    being_read_.pop_back();
}

void TextScan::read_section(Entry& entry, std::string_view statement) {
    section_ = sections_in(statement);
    node_ = make_section(*origin_, section_);
    entry.section = section_;
}

void TextScan::read_value(Entry& entry, std::string_view statement) {
    const NameAndValue parts = split_statement(statement);
    if (!node_) {
        return warn(entry, "ignored, because it stands before the first section: " +
                               printable(utf8(to_name(statement))));
    }
    if (parts.has_value && !reader_takes(statement)) {
        return warn(entry, "ignored: " + why_not_taken(parts));
    }
    entry.name = to_name(parts.name.empty() ? "@" : parts.name);
    if (const std::string change = changed_in_reading(parts); !change.empty()) warn(entry, change);
    if (const auto earlier = find_value(*node_, entry.name)) warn_of_earlier(entry, earlier->intVal);
    const CQZVariant index(static_cast<int>(entries_.size()));
    node_->SetValue(entry.name.GetData(), &index);
}

void TextScan::warn_of_earlier(const Entry& entry, int earlier_index) {
    const Entry& earlier = entries_[static_cast<std::size_t>(earlier_index)];
    const std::string line = std::to_string(earlier.statement.line);
    if (earlier.name.CompareI(entry.name.GetData()) != 0) {
        warn(entry, "replaces " + printable(utf8(earlier.name)) + " of line " + line +
                        ": the hashes of the two names are equal, so they are one entry");
    } else if (earlier.file == entry.file) {
        warn(entry, "replaces the value of the same name of line " + line);
    }
}

void TextScan::read_directive(const Entry& entry, std::string_view statement, unsigned depth) {
    static constexpr std::string_view kInclude = "#include";
    CXString head = to_name(statement.substr(0, kInclude.size()));
    head.Lower();
    if (head != kInclude.data()) return warn(entry, "ignored: the only directive is #include");
    const std::string_view name = trim_left(statement.substr(kInclude.size()));
    if (name.empty()) return warn(entry, "ignored: #include names no file");
    if (depth == kDeepestInclude) return warn(entry, "ignored: files include each other more than 16 deep");
    include(entry, included_path(name, files_[entry.file].path), depth);
}

void TextScan::include(const Entry& entry, const fs::path& path, unsigned depth) {
    const std::string shown = printable(utf8(path.native()));
    std::error_code ignored;
    const bool open = std::any_of(being_read_.begin(), being_read_.end(), [&](unsigned file) {
        return fs::equivalent(files_[file].path, path, ignored);
    });
    if (open) return warn(entry, "ignored: " + shown + " is being read already");
    std::string text;
    if (!read_whole(path, text)) return warn(entry, "ignored: " + shown + " cannot be opened");
    files_.push_back({path, shown, std::move(text)});
    read_file_at(static_cast<unsigned>(files_.size() - 1), depth + 1);
}

void TextScan::warn_of_text(unsigned index) {
    File& file = files_[index];
    const std::string change = cut_at_zero(file.text);
    if (diagnostics_ != nullptr && !change.empty()) diagnostics_->warn(file.shown, change);
}

void TextScan::warn(const Entry& entry, const std::string& text) {
    if (diagnostics_ == nullptr) return;
    diagnostics_->warn(files_[entry.file].shown + ":" + std::to_string(entry.statement.line), text);
}

} // namespace tool
