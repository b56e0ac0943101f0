// A module that does not need the library to load, and calls it from a static destructor at the end of the
// process, when the library has already shut down.
#include "late_calls.h"

#include <cstdio>

namespace {

struct AtTheEnd {
    ~AtTheEnd() {
        if (calls.create == nullptr) return;
        IQZUnknown* made = nullptr;
        const int answers[] = {
            calls.unregister("SamplePluginPair"),
            calls.is_registered("CLSID_OFSERVICECONTAINER"),
            calls.register_by_path("later", "kernel32.dll"),
            calls.register_by_module("CreateObjectC", GetModuleHandleA("qzrcore.dll")),
            calls.create("CLSID_OFSERVICECONTAINER", nullptr, typeid(IQZUnknown), &made),
        };
        std::printf("late:");
        for (const int answer : answers)
            std::printf(" %d", answer);
        std::puts(made == nullptr ? " nothing" : " an object");
        std::fflush(stdout);
    }

    LateCalls calls = {};
};

AtTheEnd at_the_end;

} // namespace

extern "C" __declspec(dllexport) void plugin_call_late(const LateCalls& calls) { at_the_end.calls = calls; }
