// The registered object classes.
#pragma once

#include "core/hash_map.h"
#include "core/name_hash.h"
#include "core/windows_lean.h"
#include "qzobject.h"
#include "qzstring.h"

namespace qzr {

// One class. By module file: path and export_name are set, module and factory come with the first object. By
// loaded module: module and factory are set from the start, the texts are empty.
struct CRegistryEntry : HashLink {
    HINSTANCE module = nullptr;
    QZObjectFactory factory = nullptr;
    CXString path;
    CXString export_name;
};

// The functions of qzobject.h without their guards. No locks: callers serialise. Names are not null.
class ObjectRegistry {
public:
    ObjectRegistry() noexcept;
    ~ObjectRegistry();
    ObjectRegistry(const ObjectRegistry&) = delete;
    ObjectRegistry& operator=(const ObjectRegistry&) = delete;

    // False before start-up and from unload on, whether or not there is a registry to ask.
    static bool is_open() noexcept { return open_; }

    // Throw CXMemException, and the former the system's message for a file that is not there; nothing is
    // registered then.
    int add(const char* name, const char* dllpath);
    int add(const char* name, HINSTANCE module);
    int remove(const char* name) noexcept;
    bool contains(const char* name) const noexcept;

    // Loads the module when need be; null when there is none. The module is recorded before its export is
    // looked up and is all that later calls look at: a module that lacks its export stays without a factory.
    QZObjectFactory factory_of(const char* name) {
        const unsigned hash = hash_text(name);
        const CRegistryEntry* const entry = entries_.find(hash);
        if (entry == nullptr || entry->module != nullptr) [[likely]]
            return entry != nullptr ? entry->factory : nullptr;
        return load_factory(hash);
    }

private:
    QZObjectFactory load_factory(unsigned hash);

    static constexpr unsigned kBuckets = 117;

    // Stands outside the registry, because modules still unregister their classes when it is gone.
    static constinit inline bool open_ = false;

    HashMap<CRegistryEntry, kBuckets> entries_;
};

} // namespace qzr
