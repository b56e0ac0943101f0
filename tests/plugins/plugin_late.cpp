// A module that does not need the library to load, and calls it from a static destructor at the end of the
// process, when the library has already shut down.
#include <cstdio>

namespace {

struct LateCall {
    ~LateCall() {
        if (unregister == nullptr) return;
        const int first = unregister("SamplePluginPair");
        const int known = is_registered("CLSID_OFSERVICECONTAINER");
        std::printf("late: unregister %d, is registered %d\n", first, known);
        std::fflush(stdout);
    }

    int (*unregister)(const char*) = nullptr;
    int (*is_registered)(const char*) = nullptr;
};

LateCall late;

} // namespace

extern "C" __declspec(dllexport) void plugin_call_late(int (*unregister)(const char*),
                                                       int (*is_registered)(const char*)) {
    late.unregister = unregister;
    late.is_registered = is_registered;
}
