#include "param/registry/reg_param.h"

#include "param/registry/reg_value.h"

#include <utility>

namespace qzr {

namespace {

void delete_values(const RegKey& key) {
    const NameEnum names = key.value_names();
    while (const char* const name = next_name(names))
        key.delete_value(name);
}

struct KeyLevel {
    KeyLevel(RegKey opened, const char* text)
        : key(std::move(opened)), children(key.key_names()), name(text) {}

    RegKey key;
    NameEnum children;
    const char* name; // in the level above, which keeps it alive
};

enum class SubKeys { kKeep, kDelete };

// Deletes the values in a key and in everything below it, and the keys below it where that is wanted, links
// as links: what they lead to is not this tree's, and may be above it.
void empty_key(RegKey top, SubKeys sub_keys) {
    Vector<KeyLevel> levels;
    levels.emplace_back(std::move(top), nullptr);
    while (!levels.empty()) {
        if (const char* const name = next_name(levels.back().children)) {
            RegKey child = levels.back().key.open_unless_link(name);
            if (child)
                levels.emplace_back(std::move(child), name);
            else if (sub_keys == SubKeys::kDelete)
                levels.back().key.delete_link(name);
            continue;
        }
        delete_values(levels.back().key);
        const char* const name = levels.back().name;
        levels.pop_back();
        if (sub_keys == SubKeys::kDelete && !levels.empty()) levels.back().key.delete_key(name);
    }
}

IParam* open_root(HKEY root, const wchar_t* path) {
    RegKey key = RegKey::open_below(root, path);
    return key ? new CRegistryParam(std::move(key)) : nullptr;
}

} // namespace

IParam* CRegistryParam::CreateSubParam(const char* name) {
    bool existed = false;
    RegKey key = key_.create(name, existed);
    if (!key) return nullptr;
    auto node = CQZRef<IParam>::Adopt(new CRegistryParam(std::move(key)));
    if (existed && key_.open_unless_link(name)) node->Clear();
    return node.Detach();
}

IParam* CRegistryParam::OpenSubParam(const char* name, int create) {
    RegKey key = key_.open(name);
    if (key) return new CRegistryParam(std::move(key));
    return create != 0 ? CreateSubParam(name) : nullptr;
}

void CRegistryParam::DeleteSubParam(const char* name) {
    RegKey child = key_.open_unless_link(name);
    if (!child) return key_.delete_link(name);
    empty_key(std::move(child), SubKeys::kDelete);
    key_.delete_key(name);
}

void CRegistryParam::DeleteAllSubParams() {
    const NameEnum names = key_.key_names();
    while (const char* const name = next_name(names))
        DeleteSubParam(name);
}

CTEnum<const char*>* CRegistryParam::EnumSubParams() { return key_.key_names().Detach(); }

int CRegistryParam::GetValue(const char* name, tagQZVARIANT* out) {
    return read_reg_value(key_, name, *out) ? 1 : 0;
}

void CRegistryParam::SetValue(const char* name, const tagQZVARIANT* value) {
    write_reg_value(key_, name, *value);
}

void CRegistryParam::DeleteValue(const char* name) { key_.delete_value(name); }

void CRegistryParam::DeleteAllValues() { delete_values(key_); }

CTEnum<const char*>* CRegistryParam::EnumValues() { return key_.value_names().Detach(); }

// The sub-keys stay, empty: programs that watch or hold them go on.
void CRegistryParam::Clear() {
    const NameEnum names = key_.key_names();
    while (const char* const name = next_name(names)) {
        RegKey child = key_.open_unless_link(name);
        if (child) empty_key(std::move(child), SubKeys::kKeep);
    }
    delete_values(key_);
}

} // namespace qzr

extern "C" IParam* new_IParamCUReg(const wchar_t* subKey) {
    return qzr::open_root(HKEY_CURRENT_USER, subKey);
}

extern "C" IParam* new_IParamLMReg(const wchar_t* subKey) {
    return qzr::open_root(HKEY_LOCAL_MACHINE, subKey);
}
