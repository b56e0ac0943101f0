// A live tree over keys that others wrote: values of every type and length, names of any units. Each value
// reads as a plain reader reads it and is stored again byte by byte; what is deleted is gone.
#include "fuzz/target.h"

#include "qzstring.h"
#include "qzvariant.h"
#include "support/registry_tree.h"
#include "support/tree_names.h"

#include <cstring>
#include <memory>
#include <sstream>
#include <utility>

namespace {

using Tree = CQZRef<IParam>;
using Key = std::shared_ptr<HKEY__>;
using namespace std::string_literals;

// An input is a list of values: KEY 0 NAME 0 TYPE LENGTH DATA, with a path below the tree's root first, and
// one byte for the type and one for the length.
std::string value(const std::string& key, const std::string& name, char type, const std::string& data) {
    return key + '\0' + name + '\0' + type + static_cast<char>(data.size()) + data;
}

std::vector<std::string> seeds() {
    return {value("", "int", 3, "\5\0\0\0\x2A\0\0\0"s) + value("", "text", 1, "t\0x\0\0\0"s) +
                value("a", "", 3, "\x11\0\0\0\3\0\0\0abc"s) + value("", "multi", 7, "a\0\0\0b\0"s),
            value("a\\b", "cut", 3, "\x10\0\0\0\1"s) + value("a\\c", "dword", 4, "\x12\0\0\0"s),
            value("", "\xF1\xFF\\", 1, "\x34\x12x"s) + value("\xD4\xF8", "r", 3, "\x0C\0\0\0"s)};
}

std::vector<std::string> pieces() {
    std::vector<std::string> all =
        fuzz::parts("\xFF\xFF\xFF\xFF~\xD8~\\~a\\b\\c~\0\0\3\4\0\0\0\0"s,
                    {value("", std::string(513, 'n'), 1, "x"), value(std::string(255, 'k'), "", 2, "x")});
    for (char tag = 0; tag <= 20; ++tag)
        all.push_back(value("", "t", 3, tag + "\0\0\0\4\0\0\0abcdefgh"s));
    return all;
}

// High bytes stand for what the system's code page lacks, halves of surrogate pairs among it.
std::wstring wide(const std::string& bytes) {
    std::wstring units;
    for (const char c : bytes)
        units += static_cast<wchar_t>(static_cast<unsigned char>(c) * (c < 0 ? 0x101 : 1));
    return units;
}

// @return whether a tree lists all of it as it is named
bool make(HKEY top, const std::string& input) {
    bool plain = true;
    std::istringstream in(input);
    for (std::string path, name; std::getline(in, path, '\0') && std::getline(in, name, '\0');) {
        const int type = in.get();
        std::string data(static_cast<unsigned char>(in.get()), '\0');
        in.read(data.data(), static_cast<std::streamsize>(data.size()));
        HKEY key = nullptr;
        RegCreateKeyExW(top, wide(path).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        RegSetValueExW(key, wide(name).c_str(), 0, static_cast<DWORD>(type),
                       reinterpret_cast<const BYTE*>(data.data()), static_cast<DWORD>(data.size()));
        RegCloseKey(key);
        for (const char c : path + name)
            plain = plain && c > 0;
        plain = plain && name.size() <= 512;
    }
    return plain;
}

struct Data {
    DWORD type = REG_NONE;
    std::string bytes;
};

Data data_of(HKEY key, const std::string& name) {
    Data data{REG_NONE, std::string(1000, '\0')};
    DWORD size = 1000;
    if (RegQueryValueExA(key, name.c_str(), nullptr, &data.type, reinterpret_cast<BYTE*>(data.bytes.data()),
                         &size) != ERROR_SUCCESS)
        size = 0;
    data.bytes.resize(size);
    return data;
}

// The bytes that are stored when the value is written again; empty when these are no value.
std::string kept_of(const Data& data) {
    constexpr unsigned kSizes[] = {0, 4, 1, 2, 4, 4, 4, 4, 8, 4, ~0u, 8, 16, 8, 16, 16, 32};
    const std::string& bytes = data.bytes;
    if (data.type == REG_SZ) return std::string(bytes.size() < 2 ? "" : bytes.c_str()) + '\0';
    unsigned head[2] = {}; // the tag, and how many bytes a blob has
    std::memcpy(head, bytes.data(), std::min(bytes.size(), sizeof head));
    unsigned long long size = sizeof head[0];
    if (head[0] == QZVT_BLOB)
        size = sizeof head + 1ULL * head[1];
    else
        size += head[0] < std::size(kSizes) ? kSizes[head[0]] : ~0u;
    return size <= bytes.size() ? bytes.substr(0, size) : "";
}

void check_value(HKEY key, IParam& node, const std::string& name) {
    const Data before = data_of(key, name);
    const std::string kept = kept_of(before);
    CQZVariant read;
    const bool found = node.GetValue(name.c_str(), &read) != 0;
    fuzz::require(found == !kept.empty() && (found || read.vt == QZVT_EMPTY), "is a value or is none");
    if (!found) return;
    node.SetValue(name.c_str(), &read);
    const Data after = data_of(key, name);
    fuzz::require(after.type == (before.type == REG_SZ ? REG_SZ : REG_BINARY) && after.bytes == kept,
                  "changed by a round trip");
}

void check_tree(const Key& top, const Tree& root) {
    std::vector<std::pair<Key, Tree>> nodes = {{top, root}};
    while (!nodes.empty()) {
        const auto [key, node] = nodes.back();
        nodes.pop_back();
        for (const std::string& name : take_names(node->EnumValues()))
            check_value(key.get(), *node, name);
        for (const std::string& name : take_names(node->EnumSubParams())) {
            const Tree child = Tree::Adopt(node->OpenSubParam(name.c_str(), 0));
            HKEY opened = nullptr;
            RegOpenKeyExA(key.get(), name.c_str(), 0, KEY_ALL_ACCESS, &opened);
            fuzz::require(static_cast<bool>(child) == (opened != nullptr), "opens or does not");
            if (child) nodes.emplace_back(Key(opened, RegCloseKey), child);
        }
    }
}

void run(const std::string& input) {
    const RegistryTree tree;
    const bool plain = make(tree.key, input);
    const Tree root = tree.root();
    check_tree(Key(tree.key, [](HKEY) {}), root); // the tree closes it
    root->Clear();
    root->DeleteAllSubParams();
    DWORD keys = 0, values = 0;
    RegQueryInfoKeyW(tree.key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr, nullptr,
                     nullptr, nullptr);
    fuzz::require(!plain || (values == 0 && keys == 0), "something is left");
}

} // namespace

const fuzz::Target fuzz::kRegistry{
    .name = "registry", .run = run, .seeds = seeds, .pieces = pieces, .longest = 2048};
