// Creating dialogs.
#include "supp/hook_state.h"
#include "supp/translate.h"

namespace qzr {

namespace {

// The resource functions of either width.
HRSRC find_dialog(HINSTANCE module, const char* name) {
    return unhooked(Hook::find_resource_a, ::FindResourceA)(module, name,
                                                            reinterpret_cast<LPCSTR>(RT_DIALOG));
}
HRSRC find_dialog(HINSTANCE module, const wchar_t* name) {
    return unhooked(Hook::find_resource_w, ::FindResourceW)(module, name,
                                                            reinterpret_cast<LPCWSTR>(RT_DIALOG));
}

// A dialog resource and its translated copy, which the system reads while it creates the dialog.
class NamedDialog {
public:
    template <class Unit>
    NamedDialog(HINSTANCE module, const Unit* name) noexcept {
        HRSRC const found = find_dialog(module, name);
        if (found == nullptr) return;
        try {
            const DialogSource source(module, name);
            translated_ = translate_dialog(dialog_bytes(module, found), &source, copy_);
        } catch (...) {
            translated_ = false;
        }
    }

    // Null when there is no template or no copy of it.
    LPCDLGTEMPLATEW get() const noexcept {
        return translated_ ? reinterpret_cast<LPCDLGTEMPLATEW>(copy_.data()) : nullptr;
    }

private:
    DialogCopy copy_;
    bool translated_ = false;
};

// A translated copy of a template from memory, or that template itself: one that is damaged is the system's
// business, one that the resource functions have served is translated.
class IndirectDialog {
public:
    explicit IndirectDialog(LPCDLGTEMPLATEW original) noexcept : used_(original) {
        if (original == nullptr || !translating() || hooks().templates.holds(original)) return;
        if (translate_dialog(dialog_bytes(original), nullptr, copy_))
            used_ = reinterpret_cast<LPCDLGTEMPLATEW>(copy_.data());
    }

    LPCDLGTEMPLATEW get() const noexcept { return used_; }

private:
    DialogCopy copy_;
    LPCDLGTEMPLATEW used_;
};

// A dialog by the name of its template: `named` does it as it is, `indirect` from a translated copy. With a
// dictionary the answer without a template is 0, where the system's function says -1; callers rely on it.
template <class Named, class Indirect, class Unit>
auto run_named(Named* named, Indirect* indirect, HINSTANCE module, const Unit* name, HWND parent,
               DLGPROC procedure, LPARAM parameter) {
    if (!translating()) return named(module, name, parent, procedure, parameter);
    const NamedDialog dialog(module, name);
    if (dialog.get() == nullptr) return decltype(named(module, name, parent, procedure, parameter)){};
    return indirect(module, dialog.get(), parent, procedure, parameter);
}

template <class Indirect>
auto run_indirect(Indirect* indirect, HINSTANCE module, LPCDLGTEMPLATEW original, HWND parent,
                  DLGPROC procedure, LPARAM parameter) {
    const IndirectDialog dialog(original);
    return indirect(module, dialog.get(), parent, procedure, parameter);
}

// The functions that the hooks replaced.
auto* create_a() noexcept { return unhooked(Hook::create_dialog_param_a, ::CreateDialogParamA); }
auto* create_w() noexcept { return unhooked(Hook::create_dialog_param_w, ::CreateDialogParamW); }
auto* show_a() noexcept { return unhooked(Hook::dialog_box_param_a, ::DialogBoxParamA); }
auto* show_w() noexcept { return unhooked(Hook::dialog_box_param_w, ::DialogBoxParamW); }
auto* create_indirect_a() noexcept {
    return unhooked(Hook::create_dialog_indirect_param_a, ::CreateDialogIndirectParamA);
}
auto* create_indirect_w() noexcept {
    return unhooked(Hook::create_dialog_indirect_param_w, ::CreateDialogIndirectParamW);
}
auto* show_indirect_a() noexcept {
    return unhooked(Hook::dialog_box_indirect_param_a, ::DialogBoxIndirectParamA);
}
auto* show_indirect_w() noexcept {
    return unhooked(Hook::dialog_box_indirect_param_w, ::DialogBoxIndirectParamW);
}

} // namespace

HWND WINAPI hooked::create_dialog_param_a(HINSTANCE module, LPCSTR name, HWND parent, DLGPROC procedure,
                                          LPARAM parameter) {
    return run_named(create_a(), create_indirect_a(), module, name, parent, procedure, parameter);
}

HWND WINAPI hooked::create_dialog_param_w(HINSTANCE module, LPCWSTR name, HWND parent, DLGPROC procedure,
                                          LPARAM parameter) {
    return run_named(create_w(), create_indirect_w(), module, name, parent, procedure, parameter);
}

INT_PTR WINAPI hooked::dialog_box_param_a(HINSTANCE module, LPCSTR name, HWND parent, DLGPROC procedure,
                                          LPARAM parameter) {
    return run_named(show_a(), show_indirect_a(), module, name, parent, procedure, parameter);
}

INT_PTR WINAPI hooked::dialog_box_param_w(HINSTANCE module, LPCWSTR name, HWND parent, DLGPROC procedure,
                                          LPARAM parameter) {
    return run_named(show_w(), show_indirect_w(), module, name, parent, procedure, parameter);
}

INT_PTR WINAPI hooked::dialog_box_indirect_param_a(HINSTANCE module, LPCDLGTEMPLATEA original, HWND parent,
                                                   DLGPROC procedure, LPARAM parameter) {
    return run_indirect(show_indirect_a(), module, original, parent, procedure, parameter);
}

INT_PTR WINAPI hooked::dialog_box_indirect_param_w(HINSTANCE module, LPCDLGTEMPLATEW original, HWND parent,
                                                   DLGPROC procedure, LPARAM parameter) {
    return run_indirect(show_indirect_w(), module, original, parent, procedure, parameter);
}

HWND WINAPI hooked::create_dialog_indirect_param_a(HINSTANCE module, LPCDLGTEMPLATEA original, HWND parent,
                                                   DLGPROC procedure, LPARAM parameter) {
    return run_indirect(create_indirect_a(), module, original, parent, procedure, parameter);
}

HWND WINAPI hooked::create_dialog_indirect_param_w(HINSTANCE module, LPCDLGTEMPLATEW original, HWND parent,
                                                   DLGPROC procedure, LPARAM parameter) {
    return run_indirect(create_indirect_w(), module, original, parent, procedure, parameter);
}

} // namespace qzr
