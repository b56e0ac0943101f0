#include "supp/hook_install.h"

#include "string/resource_text.h"
#include "supp/hook_state.h"

namespace qzr {

namespace {

// The modules through which applications load their user interface.
constexpr const char* kModules[] = {"mfc80u.dll", "mfc42d",   "mfco42d", "mfc42",    "tqx42",   "comdlg32",
                                    "mfc70d",     "mfco70d",  "mfc70",   "mfco70",   "mfc71",   "mfco71",
                                    "mfc80",      "mfc100ud", "mfc100u", "mfc110ud", "mfc110u", "mfc120ud",
                                    "mfc120u",    "mfc130ud", "mfc130u", "mfc140ud", "mfc140u"};

constexpr const char* kExtraModuleNames[kExtraModules] = {"mfc80u.dll", "mfc80ud.dll", "mfc90ud.dll",
                                                          "mfc90u.dll"};

void fill_extra_modules() {
    for (unsigned i = 0; i < kExtraModules; ++i) {
        std::atomic<HMODULE>& module = hooks().extra_modules[i];
        if (module.load() == nullptr) module.store(GetModuleHandleA(kExtraModuleNames[i]));
    }
}

// Strings that load themselves go through the library's own imports, which are never patched.
constexpr StringLoaders kTranslatingLoaders = {
    [](void* module, unsigned id, char* buffer, int size) {
        return hooked::load_string_a(static_cast<HINSTANCE>(module), id, buffer, size);
    },
    [](void* module, unsigned id, wchar_t* buffer, int size) {
        return hooked::load_string_w(static_cast<HINSTANCE>(module), id, buffer, size);
    }};

} // namespace

int install_hooks(HINSTANCE module) {
    if (module == nullptr) return 0;
    fill_extra_modules();
    library().string_loaders.store(&kTranslatingLoaders);
    const auto rows = hook_rows();
    for (unsigned i = 0; i < kHooks; ++i)
        hooks().unhooked.set(
            i, hooks().patches.install(module, rows[i].exporter, rows[i].function, rows[i].replacement));
    return 1;
}

void install_default_hooks() {
    fill_extra_modules();
    library().string_loaders.store(&kTranslatingLoaders);
    for (const char* const name : kModules)
        install_hooks(GetModuleHandleA(name));
    for (const auto& module : hooks().extra_modules)
        install_hooks(module.load());
}

} // namespace qzr
