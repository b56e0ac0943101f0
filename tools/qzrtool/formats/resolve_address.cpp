#include "formats/resolve_address.h"

#include "system/encoding.h"
#include "system/failure.h"
#include "system/files.h"
#include "system/remote.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>

namespace tool {

namespace {

namespace fs = std::filesystem;

/// Takes HKCU\\KEY apart.
void locate_key(Address& address, std::wstring text) {
    if (text.find(L'\\') == text.npos) std::replace(text.begin(), text.end(), L'/', L'\\');
    while (text.ends_with(L'\\')) {
        text.pop_back();
    }
    const std::size_t end = std::min(text.find(L'\\'), text.size());
    const CXStringW hive(text.substr(0, end).c_str());
    address.machine = hive.CompareI(L"HKLM") == 0;
    if (!address.machine && hive.CompareI(L"HKCU") != 0)
        fail(address.shown + ": a key begins with HKCU\\ or HKLM\\");
    address.inside = text.substr(std::min(end + 1, text.size()));
}

/// Takes FILE!STORAGE apart; a file whose own name has the mark is meant by its whole name.
void locate_storage(Address& address, std::wstring text) {
    const std::size_t mark = text.rfind(L'!');
    std::error_code ignored;
    if (mark != text.npos && mark > 0 && !fs::exists(native_path(text), ignored)) {
        address.inside = text.substr(mark + 1);
        text.resize(mark);
    }
    address.file = fs::absolute(native_path(text));
}

const Kind* kind_by_contents(const Address& address) {
    std::error_code ignored;
    if (!fs::is_regular_file(address.file, ignored)) return nullptr;
    return kind_of_contents(read_file(address.file, address.shown));
}

/// A mark parts a storage only from a file that has storages.
void locate_unknown(Address& address, const std::wstring& text) {
    locate_storage(address, text);
    if (address.inside.empty() || kind_by_contents(address) == &kStorageKind) return;
    address.inside.clear();
    address.file = fs::absolute(native_path(text));
}

/// An address names a file that is worked on in a local copy.
void locate_remote(Address& address, const std::wstring& text) {
    const bool may_have_storages = address.kind == nullptr || address.kind->place == Place::storage;
    if (address.kind != nullptr && address.kind->place == Place::registry)
        fail(address.shown + ": a key of the registry has no address");
    const std::size_t path = text.find(L'/', text.find(L"//") + 2);
    const std::size_t mark = may_have_storages ? text.find(L'!', std::min(path, text.size())) : text.npos;
    address.url = text.substr(0, mark);
    if (mark != text.npos) {
        address.inside = text.substr(mark + 1);
        address.kind = &kStorageKind;
    }
    address.copy = std::make_shared<ScratchFile>();
    address.file = address.copy->path();
}

/// Who writes "-" means standard input or output, and would look for the tree there and not in a file.
void refuse_standard(const Kind& kind, const std::wstring& file) {
    const bool needs_file = kind.place == Place::file || kind.place == Place::storage;
    if (needs_file && file.substr(0, file.find(L'!')) == L"-")
        fail(std::string(kind.name) + ":- needs a file; one of that name is written .\\-");
}

/// Splits KIND:FILE. A single letter before the colon is a drive.
Address split(const std::wstring& argument) {
    Address address = {};
    std::wstring file = argument;
    const std::size_t colon = argument.find(L':');
    if (colon != std::wstring::npos && colon > 1 && !is_remote(argument)) {
        const std::string name = utf8(argument.substr(0, colon));
        address.kind = kind_named(name);
        if (address.kind == nullptr)
            fail("there is no kind of tree called \"" + printable(name) + "\" (" + kind_names() + ")");
        file = argument.substr(colon + 1);
    }
    if (file.empty()) fail("\"" + printable(utf8(argument)) + "\" names no file");
    if (address.kind != nullptr) refuse_standard(*address.kind, file);
    address.shown = without_passwords(printable(utf8(file)));
    if (is_remote(file)) {
        locate_remote(address, file);
    } else if (address.kind == nullptr) {
        locate_unknown(address, file);
    } else if (address.kind->place == Place::registry) {
        locate_key(address, file);
    } else if (address.kind->place == Place::storage) {
        locate_storage(address, file);
    } else {
        address.standard = address.kind->place == Place::file_or_standard && file == L"-";
        address.file = fs::absolute(native_path(file)); // loading may change the working directory
    }
    if (address.standard) address.shown = "standard input";
    return address;
}

const Kind* kind_by_extension(const Address& address) {
    const fs::path name = address.url.empty() ? address.file : fs::path(address.url);
    std::wstring extension = name.extension().wstring();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return kind_with_extension(utf8(extension));
}

[[noreturn]] void fail_unknown_kind(const Address& address) {
    fail(address.shown + ": which kind of tree? Write it in front, as in " + kTextKind.name + ":" +
         address.shown + " (" + kind_names() + ")");
}

} // namespace

Address source_address(const std::wstring& argument) {
    Address address = split(argument);
    if (address.standard || address.file.empty()) return address;
    fetch(address);
    std::error_code error;
    if (!fs::exists(address.file, error)) fail(address.shown + ": there is no such file");
    if (fs::is_directory(address.file, error)) fail(address.shown + ": is a directory");
    if (address.kind == nullptr) address.kind = kind_by_contents(address);
    if (address.kind == nullptr) address.kind = kind_by_extension(address);
    if (address.kind == nullptr) fail_unknown_kind(address);
    return address;
}

Address target_address(const std::wstring& argument) {
    Address address = split(argument);
    if (address.standard) address.shown = "standard output";
    if (address.kind == nullptr) address.kind = kind_by_extension(address);
    if (address.kind == nullptr) address.kind = kind_by_contents(address);
    if (address.kind == nullptr) fail_unknown_kind(address);
    if (address.kind->keeps_other_contents) fetch_if_there(address);
    return address;
}

Address compound_address(const std::wstring& argument) {
    const std::wstring prefix = L"stor:";
    return split(argument.starts_with(prefix) ? argument : prefix + argument);
}

} // namespace tool
