// A plug-in without the factory that callers expect in it. It counts how often it is loaded.
extern "C" __declspec(dllexport) int plugin_something_else() { return 1; }
