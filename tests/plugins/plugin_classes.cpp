// A plug-in with object classes, each a factory exported under the class's name.
#include "qzunknown.h"

#define PLUGIN_API extern "C" __attribute__((dllexport))

namespace {

int live = 0;

class Sample final : public CQZUnknownImpl<IQZUnknown> {
public:
    Sample() { ++live; }
    ~Sample() override { --live; }
};

int make_sample(const std::type_info& iid, IQZUnknown** out) {
    auto* const sample = new Sample;
    const int result = sample->QueryInterface(iid, out);
    sample->Release();
    return result;
}

} // namespace

PLUGIN_API int plugin_live_objects() { return live; }

// Two classes whose names have the same hash; only this one is exported.
PLUGIN_API int SharpPageReaderA(IQZUnknown*, const std::type_info& iid, IQZUnknown** out) {
    return make_sample(iid, out);
}

// Answers with a result of its own, and whether it was given an outer object.
PLUGIN_API int PluginResult(IQZUnknown* outer, const std::type_info&, IQZUnknown**) {
    return outer != nullptr ? 77 : 66;
}

PLUGIN_API int PluginThrows(IQZUnknown*, const std::type_info&, IQZUnknown**) { throw 42; }
