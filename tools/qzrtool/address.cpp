#include "address.h"

#include "diagnostics.h"
#include "encoding.h"
#include "files.h"
#include "kinds.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>

namespace tool {

namespace {

namespace fs = std::filesystem;

/// Under Wine the files of the Unix system lie on a drive of their own, so the script that starts this
/// program there says which: a path that begins with one slash belongs to it.
fs::path native_path(const std::wstring& path) {
    const wchar_t* root = _wgetenv(L"QZRTOOL_UNIX_ROOT");
    const bool rooted = path.size() > 1 && path[0] == L'/' && path[1] != L'/';
    return root != nullptr && rooted ? fs::path(root + path).make_preferred() : fs::path(path);
}

/// Splits KIND:FILE. A single letter before the colon is a drive.
Address split(const std::wstring& argument) {
    Address address = {nullptr, {}, {}};
    std::wstring file = argument;
    const std::size_t colon = argument.find(L':');
    if (colon != std::wstring::npos && colon > 1) {
        const std::string name = utf8(argument.substr(0, colon));
        address.kind = kind_named(name);
        if (address.kind == nullptr)
            fail("there is no kind of tree called \"" + printable(name) + "\" (" + kind_names() + ")");
        file = argument.substr(colon + 1);
    }
    if (file.empty()) fail("\"" + printable(utf8(argument)) + "\" names no file");
    address.file = fs::absolute(native_path(file)); // loading may change the working directory
    address.shown = printable(utf8(file));
    return address;
}

const Kind* kind_by_extension(const fs::path& file) {
    std::wstring extension = file.extension().wstring();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return kind_with_extension(utf8(extension));
}

const Kind* kind_by_contents(const Address& address) {
    std::error_code ignored;
    if (!fs::is_regular_file(address.file, ignored)) return nullptr;
    return kind_of_contents(read_file(address.file, address.shown));
}

[[noreturn]] void fail_unknown_kind(const Address& address) {
    fail(address.shown + ": which kind of tree? Write it in front, as in " + kTextKind.name + ":" +
         address.shown + " (" + kind_names() + ")");
}

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

Address source_address(const std::wstring& argument) {
    Address address = split(argument);
    std::error_code error;
    if (!fs::exists(address.file, error)) fail(address.shown + ": there is no such file");
    if (fs::is_directory(address.file, error)) fail(address.shown + ": is a directory");
    if (address.kind == nullptr) address.kind = kind_by_contents(address);
    if (address.kind == nullptr) address.kind = kind_by_extension(address.file);
    if (address.kind == nullptr) fail_unknown_kind(address);
    return address;
}

Address target_address(const std::wstring& argument) {
    Address address = split(argument);
    if (address.kind == nullptr) address.kind = kind_by_extension(address.file);
    if (address.kind == nullptr) address.kind = kind_by_contents(address);
    if (address.kind == nullptr) fail_unknown_kind(address);
    return address;
}

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
