#include "trees/tree_path.h"

#include "system/encoding.h"

#include <utility>

namespace tool {

namespace {

/// @return the parts between the separators, at the boundaries of characters; empty ones are left out
std::vector<CXString> parts_of(const CXString& path, wchar_t separator) {
    std::vector<CXString> parts;
    const int length = static_cast<int>(path.GetLength());
    for (int start = 0; start < length;) {
        int end = path.Find(separator, start);
        if (end < 0) end = length;
        if (end > start) {
            CXString part;
            path.Extract(start, end - start, part);
            parts.push_back(part);
        }
        start = end + 1;
    }
    return parts;
}

struct SplitPath {
    std::vector<CXString> parts;
    bool ends_in_separator;
};

SplitPath split_path(const std::wstring& argument) {
    const CXString path = narrow(argument, "the path");
    const wchar_t separator = path.Find(L'\\') >= 0 ? L'\\' : L'/';
    const unsigned length = path.GetLength();
    return {parts_of(path, separator), length == 0 || path.GetAt(length - 1) == separator};
}

} // namespace

TreePath value_path(const std::wstring& argument) {
    SplitPath split = split_path(argument);
    TreePath path;
    if (!split.ends_in_separator) {
        path.value = split.parts.back();
        split.parts.pop_back();
    }
    path.sections = std::move(split.parts);
    return path;
}

std::vector<CXString> section_path(const std::wstring& argument) { return split_path(argument).parts; }

} // namespace tool
