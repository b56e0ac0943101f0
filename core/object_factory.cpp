// The exported functions of the class registry. From unload on all of them answer 0.
#include "core/library.h"
#include "qzobject.h"

namespace {

qzr::ObjectRegistry* registry() { return qzr::ObjectRegistry::is_open() ? &qzr::library().objects : nullptr; }

const char* text_of(const char* name) { return name != nullptr ? name : ""; }

} // namespace

int RegisterObject(const char* name, const char* dllpath) {
    qzr::ObjectRegistry* const objects = registry();
    return objects != nullptr ? objects->add(text_of(name), text_of(dllpath)) : 0;
}

int RegisterObject(const char* name, HINSTANCE module) {
    qzr::ObjectRegistry* const objects = registry();
    return objects != nullptr ? objects->add(text_of(name), module) : 0;
}

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
