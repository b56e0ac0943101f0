// The hooks as applications see them.
#include "supp/hook_install.h"
#include "supp/hook_state.h"

#include "qzsupp.h"

using namespace qzr;

int Supp_InitResTranslation(HINSTANCE module) { return install_hooks(module); }

int _InitResTranslation(HINSTANCE module) { return install_hooks(module); }

int _DeInitResTranslation(HINSTANCE module) {
    if (module == nullptr) return 0;
    hooks().patches.restore(module);
    return 1;
}

void* HookProc_Install(HINSTANCE module, const char* exporter, const char* function, void* replacement) {
    return hooks().patches.install(module, exporter, function, replacement);
}

// Always null: callers link to it and take the answer for "nothing was hooked". _DeInitResTranslation
// restores.
void* HookProc_UnInstall(HINSTANCE, const char*, const char*) { return nullptr; }

int _LoadStringNotTrans(HINSTANCE module, unsigned id, char* buffer, int size) {
    return unhooked(Hook::load_string_a, ::LoadStringA)(module, id, buffer, size);
}

int LoadStringNotTransW(HINSTANCE module, unsigned id, wchar_t* buffer, int size) {
    return unhooked(Hook::load_string_w, ::LoadStringW)(module, id, buffer, size);
}

int MessageBoxInternalA(void* parameters, int wide) {
    if (wide != 0) return MessageBoxIndirectW(static_cast<const MSGBOXPARAMSW*>(parameters));
    return unhooked(Hook::message_box_indirect_a,
                    ::MessageBoxIndirectA)(static_cast<const MSGBOXPARAMSA*>(parameters));
}
