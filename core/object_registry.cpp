#include "core/object_registry.h"

#include "core/system_error.h"

namespace qzr {

namespace {

QZObjectFactory find_export(HINSTANCE module, const char* name) {
    return reinterpret_cast<QZObjectFactory>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// The full path, by the system's standard search order. Throws the system's message when there is no such
// file.
CXString find_module_file(const char* dllpath) {
    char found[512];
    const DWORD length = SearchPathA(nullptr, dllpath, nullptr, sizeof found, found, nullptr);
    if (length == 0 || length >= sizeof found) throw system_message();
    return CXString(found);
}

} // namespace

ObjectRegistry::ObjectRegistry() noexcept { open_ = true; }

ObjectRegistry::~ObjectRegistry() {
    open_ = false;
    entries_.set_closing();
    entries_.take_all([](CRegistryEntry* entry) { block_delete(entry); });
}

int ObjectRegistry::add(const char* name, const char* dllpath) {
    const unsigned hash = hash_text(name);
    if (entries_.find(hash) != nullptr) return 1;
    BlockPtr<CRegistryEntry> entry(block_new<CRegistryEntry>());
    entry->path = find_module_file(dllpath);
    entry->export_name = CXString(name);
    entries_.insert(entry.get(), hash);
    static_cast<void>(entry.release());
    return 1;
}

int ObjectRegistry::add(const char* name, HINSTANCE module) {
    const unsigned hash = hash_text(name);
    if (entries_.find(hash) != nullptr) return 1;
    const QZObjectFactory factory = find_export(module, name);
    if (factory == nullptr) return 0;
    BlockPtr<CRegistryEntry> entry(block_new<CRegistryEntry>());
    entry->module = module;
    entry->factory = factory;
    entries_.insert(entry.get(), hash);
    static_cast<void>(entry.release());
    return 1;
}

int ObjectRegistry::remove(const char* name) noexcept {
    CRegistryEntry* const entry = entries_.find(hash_text(name));
    if (entry == nullptr) return 0;
    entries_.remove(entry);
    block_delete(entry);
    return 1;
}

bool ObjectRegistry::contains(const char* name) const noexcept {
    return entries_.find(hash_text(name)) != nullptr;
}

// The module is never unloaded, since objects of it may live anywhere.
QZObjectFactory ObjectRegistry::load_factory(unsigned hash) {
    CRegistryEntry* entry = entries_.find(hash);
    const HINSTANCE module = LoadLibraryA(entry->path);
    if (module == nullptr) return nullptr;
    entry = entries_.find(hash); // a module may register and unregister while it is being loaded
    if (entry != nullptr && entry->module == nullptr) {
        entry->module = module;
        entry->factory = find_export(module, entry->export_name);
    }
    return entry != nullptr ? entry->factory : nullptr;
}

} // namespace qzr
