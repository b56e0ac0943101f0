#include "formats/text_file.h"

#include "formats/statements.h"
#include "system/failure.h"

#include <algorithm>

namespace tool {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kRoot = "[\\]|";

/// The library's one-line form: statements, each followed by "|".
std::string string_form(IParam& tree) {
    CXString text;
    if (Param_Param2String(&tree, text) == 0) throw CXMemException();
    return std::string(text.GetData());
}

} // namespace

IncludeDirectory::IncludeDirectory(const fs::path& file) : before_(fs::current_path()) {
    std::error_code ignored; // of a file without a directory of its own, such as a device
    fs::current_path(fs::absolute(file).parent_path(), ignored);
}

IncludeDirectory::~IncludeDirectory() {
    std::error_code ignored;
    fs::current_path(before_, ignored);
}

CQZRef<IParam> tree_of_text(const std::string& text) {
    auto tree = new_tree();
    CXString form(text.c_str());
    if (Param_String2Param(form, tree.Get()) == 0) throw CXMemException();
    return tree;
}

std::string text_of_tree(IParam& tree, bool compact) {
    const std::string form = string_form(tree);
    std::string text;
    text.reserve(form.size() + form.size() / 4);
    for (std::string_view rest = form; !rest.empty();) {
        const std::size_t end = std::min(find_ascii(rest, '|'), rest.size());
        const std::string_view statement = rest.substr(0, end);
        if (statement.starts_with('[')) {
            if (!text.empty()) text += compact ? "\r\n" : "\r\n\r\n";
            text += statement;
        } else {
            text += compact ? "\t| " : "\r\n\t";
            text += statement;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return text + "\r\n";
}

std::string value_statement(const CXString& name, const CQZVariant& value) {
    const auto scratch = new_tree();
    scratch->SetValue(name.GetData(), &value);
    const std::string form = string_form(*scratch);
    if (form.size() <= kRoot.size()) return {};
    return form.substr(kRoot.size(), form.size() - kRoot.size() - 1);
}

} // namespace tool
