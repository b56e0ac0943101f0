// A module that imports nothing.
extern "C" __declspec(dllexport) int hook_no_imports_answer() { return 42; }
