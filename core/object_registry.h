// The registered object classes.
#pragma once

#include "core/hash_map.h"
#include "core/windows_lean.h"
#include "qzobject.h"
#include "qzstring.h"

namespace qzr {

// One class. By module file: path and export_name are set, module and factory come with the first object. By
// loaded module: module and factory are set from the start, the texts are empty.
struct CRegistryEntry : HashLink {
    HINSTANCE module = nullptr;
    CXString path;
    CXString export_name;
    QZObjectFactory factory = nullptr;
};

// The functions of qzobject.h without their guards. No locks: callers serialise. Names are not null.
class ObjectRegistry {
public:
    ObjectRegistry() noexcept;
    ~ObjectRegistry();
    ObjectRegistry(const ObjectRegistry&) = delete;
    ObjectRegistry& operator=(const ObjectRegistry&) = delete;

    // False before start-up and from unload on, whether or not there is a registry to ask.
    static bool is_open() noexcept;

    int add(const char* name, const char* dllpath);
    int add(const char* name, HINSTANCE module);
    int remove(const char* name) noexcept;
    bool contains(const char* name) const noexcept;
    QZObjectFactory factory_of(const char* name); // loads the module when need be; null when there is none

private:
    static constexpr unsigned kBuckets = 117;

    HashMap<CRegistryEntry, kBuckets> entries_;
};

} // namespace qzr
