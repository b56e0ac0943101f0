// An object that lives on the test's stack and tells how many references are held.
#pragma once

#include "qzunknown.h"

class CountingObject : public IQZUnknown {
public:
    unsigned AddRef() override { return ++references; }
    unsigned Release() override {
        --references;
        if (on_release != nullptr) on_release(watched);
        return references;
    }
    int QueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        const bool known = iid == typeid(IQZUnknown);
        if (out != nullptr) *out = known ? this : nullptr;
        if (known && out != nullptr) ++references;
        return known ? 1 : 0;
    }

    unsigned references = 1;             // the test's own
    void (*on_release)(void*) = nullptr; // called by each Release
    void* watched = nullptr;             // with this
};
