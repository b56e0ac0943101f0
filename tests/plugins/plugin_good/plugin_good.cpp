// A plug-in as applications write them: one persistable class with its factory, registered as long as the
// plug-in is loaded.
#include "qzexception.h"
#include "qzobject.h"
#include "qzstream.h"
#include "qzunknown.h"

#include <windows.h>

#define PLUGIN_EXPORT extern "C" __declspec(dllexport)

namespace {

int live_objects = 0;

// A pair of numbers that saves itself.
class SamplePluginPair : public CQZUnknownImpl<IPersistXStream> {
public:
    SamplePluginPair() { ++live_objects; }
    ~SamplePluginPair() override { --live_objects; }

    const char* GetClassName() override { return "SamplePluginPair"; }
    unsigned GetSizeMax() override { return 12; }
    int Load(IXStream* stream) override {
        first_ = stream->ReadDWord();
        second_ = stream->ReadDouble();
        return 1;
    }
    int Save(IXStream* stream) override {
        stream->WriteDWord(first_);
        stream->WriteDouble(second_);
        return 1;
    }
    int InternalQueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        if (iid == typeid(IPersistX)) return AnswerQuery(this, out);
        return CQZUnknownImpl::InternalQueryInterface(iid, out);
    }

private:
    unsigned first_ = 7;
    double second_ = 0.5;
};

CQZObjectRegistrar registrar("SamplePluginPair", QZThisModule());

} // namespace

PLUGIN_EXPORT int SamplePluginPair(IQZUnknown* outer, const std::type_info& iid, IQZUnknown** out) {
    if (outer != nullptr) return 0;
    auto* const made = new class SamplePluginPair;
    const int found = made->QueryInterface(iid, out);
    made->Release();
    return found;
}

// A class whose name has the same hash as FullChartObject3, which nobody exports.
PLUGIN_EXPORT int SharpPageReaderA(IQZUnknown* outer, const std::type_info& iid, IQZUnknown** out) {
    return ::SamplePluginPair(outer, iid, out);
}

// Answers with a result of its own, and whether it was given an outer object.
PLUGIN_EXPORT int PluginResult(IQZUnknown* outer, const std::type_info&, IQZUnknown**) {
    return outer != nullptr ? 77 : 66;
}

PLUGIN_EXPORT int PluginThrows(IQZUnknown*, const std::type_info&, IQZUnknown**) { throw 42; }

PLUGIN_EXPORT int plugin_window_class(HWND window, char* name, int size) {
    return GetClassName(window, name, size); // the platform's
}

PLUGIN_EXPORT int plugin_live_objects() { return live_objects; }

// The plug-in's own notion of interfaces.
PLUGIN_EXPORT const std::type_info* plugin_id_of_unknown() { return &typeid(IQZUnknown); }
PLUGIN_EXPORT const std::type_info* plugin_id_of_stream() { return &typeid(IXStream); }

// The type of an exception as the plug-in sees it while it passes through.
PLUGIN_EXPORT int plugin_catches_memory_exception(void (*thrower)()) {
    try {
        thrower();
    } catch (const CXMemException&) {
        return 1;
    } catch (...) {
        return 0;
    }
    return -1;
}

PLUGIN_EXPORT void plugin_rethrows(void (*thrower)()) {
    try {
        thrower();
    } catch (const CXException&) {
        throw;
    }
}
