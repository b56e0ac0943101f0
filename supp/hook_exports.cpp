// Hooks for applications.
#include "supp/hook_state.h"

#include "qzsupp.h"

using namespace qzr;

void* HookProc_Install(HINSTANCE module, const char* exporter, const char* function, void* replacement) {
    return hooks().patches.install(module, exporter, function, replacement);
}

// Always null: callers link to it and take the answer for "nothing was hooked". _DeInitResTranslation
// restores.
void* HookProc_UnInstall(HINSTANCE, const char*, const char*) { return nullptr; }

int _DeInitResTranslation(HINSTANCE module) {
    if (module == nullptr) return 0;
    hooks().patches.restore(module);
    return 1;
}
