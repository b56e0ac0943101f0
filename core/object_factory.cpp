// The exported functions of the class registry. From unload on all of them answer 0.
#include "core/library.h"
#include "qzobject.h"

namespace {

qzr::ObjectRegistry* registry() { return qzr::ObjectRegistry::is_open() ? &qzr::library().objects : nullptr; }

const char* text_of(const char* name) { return name != nullptr ? name : ""; }

// Registrars have static storage: what they throw would end the program before it begins. So every failure is
// a 0, and nobody is told the text of a missing file.
template <class From>
int add(const char* name, From from) noexcept {
    qzr::ObjectRegistry* const objects = registry();
    if (objects == nullptr) return 0;
    try {
        return objects->add(text_of(name), from);
    } catch (...) {
        return 0;
    }
}

} // namespace

int RegisterObject(const char* name, const char* dllpath) { return add(name, text_of(dllpath)); }

int RegisterObject(const char* name, HINSTANCE module) { return add(name, module); }

int UnregisterObject(const char* name) {
    qzr::ObjectRegistry* const objects = registry();
    return objects != nullptr ? objects->remove(text_of(name)) : 0;
}

int IsRegisterObject(const char* name) {
    const qzr::ObjectRegistry* const objects = registry();
    return objects != nullptr && objects->contains(text_of(name)) ? 1 : 0;
}

int CreateObject(const char* name, IQZUnknown* outer, const std::type_info& iid, IQZUnknown** out) {
    if (out == nullptr) return 0;
    *out = nullptr;
    qzr::ObjectRegistry* const objects = registry();
    if (objects == nullptr) return 0;
    const QZObjectFactory factory = objects->factory_of(text_of(name));
    return factory != nullptr ? factory(outer, iid, out) : 0;
}

int CreateObjectC(const char* name, IQZUnknown* outer, const std::type_info& iid, IQZUnknown** out) {
    return CreateObject(name, outer, iid, out);
}
