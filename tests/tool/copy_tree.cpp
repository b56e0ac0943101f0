// Copies a parameter tree from one place to another: copy_tree FROM TO. Each is live:FILE, text:FILE (both
// with full paths) or reg:KEY (below HKEY_CURRENT_USER, made when it is missing).
#include "qzcore.h"

#include <cstdio>
#include <string>

#include <windows.h>

namespace {

using Tree = CQZRef<IParam>;

struct Place {
    explicit Place(const std::wstring& address)
        : kind(address.substr(0, address.find(L':'))), name(address.substr(kind.size() + 1)) {}

    std::wstring kind;
    std::wstring name;
};

Tree open_key(const std::wstring& name) {
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, name.c_str(), 0, nullptr, 0, KEY_READ, nullptr, &key, nullptr);
    RegCloseKey(key);
    return Tree::Adopt(new_IParamCUReg(name.c_str()));
}

Tree open_tree(const Place& place) {
    if (place.kind == L"reg") return open_key(place.name);
    return Tree::Adopt(place.kind == L"live" ? new_IParamIniFile(place.name.c_str()) : new_MemParam());
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc != 3) return 2;
    const Place from(argv[1]), to(argv[2]);
    const Tree source = open_tree(from), target = open_tree(to);
    if (!source || !target) return 1;
    if (from.kind == L"text") Param_IniFile2Param(from.name.c_str(), source.Get());
    Param_CopyTo(source.Get(), target.Get());
    if (to.kind == L"text") Param_Param2IniFile(target.Get(), to.name.c_str());
    return 0;
}
