// Creating dialogs.
#include "supp/hook_state.h"
#include "supp/resource_context.h"

namespace qzr {

namespace {

// A dialog resource and its translated copy, which the system reads while it creates the dialog.
class NamedDialog {
public:
    NamedDialog(HINSTANCE module, const char* name) noexcept {
        HRSRC const found = unhooked(Hook::find_resource_a, ::FindResourceA)(module, name, kType<LPCSTR>);
        if (found == nullptr) return;
        try {
            CXStringW text;
            translate(found, module, wide_resource_name(name, text));
        } catch (...) {
            translated_ = false;
        }
    }
    NamedDialog(HINSTANCE module, const wchar_t* name) noexcept {
        HRSRC const found = unhooked(Hook::find_resource_w, ::FindResourceW)(module, name, kType<LPCWSTR>);
        if (found == nullptr) return;
        try {
            translate(found, module, name);
        } catch (...) {
            translated_ = false;
        }
    }

    // Null when there is no template or no copy of it.
    LPCDLGTEMPLATEW get() const noexcept {
        return translated_ ? reinterpret_cast<LPCDLGTEMPLATEW>(copy_.data()) : nullptr;
    }

private:
    template <class Text>
    static inline const Text kType = reinterpret_cast<Text>(RT_DIALOG);

    void translate(HRSRC found, HINSTANCE module, const wchar_t* name) {
        const DialogSource source(module, name);
        translated_ = translate_dialog(dialog_bytes(module, found), &source, copy_);
    }

    Vector<std::byte> copy_;
    bool translated_ = false;
};

// A translated copy of a template from memory, or that template itself: one that is damaged is the system's
// business, one that the resource functions have served is translated.
class IndirectDialog {
public:
    explicit IndirectDialog(LPCDLGTEMPLATEW original) noexcept : used_(original) {
        if (original == nullptr || !translation_enabled() || hooks().templates.holds(original)) return;
        if (translate_dialog(dialog_bytes(original), nullptr, copy_))
            used_ = reinterpret_cast<LPCDLGTEMPLATEW>(copy_.data());
    }

    LPCDLGTEMPLATEW get() const noexcept { return used_; }

private:
    Vector<std::byte> copy_;
    LPCDLGTEMPLATEW used_;
};

} // namespace

HWND WINAPI hooked::create_dialog_param_a(HINSTANCE module, LPCSTR name, HWND parent, DLGPROC procedure,
                                          LPARAM parameter) {
    if (!translation_enabled())
        return unhooked(Hook::create_dialog_param_a, ::CreateDialogParamA)(module, name, parent, procedure,
                                                                           parameter);
    const NamedDialog dialog(module, name);
    if (dialog.get() == nullptr) return nullptr;
    auto* const create = unhooked(Hook::create_dialog_indirect_param_a, ::CreateDialogIndirectParamA);
    return create(module, dialog.get(), parent, procedure, parameter);
}

HWND WINAPI hooked::create_dialog_param_w(HINSTANCE module, LPCWSTR name, HWND parent, DLGPROC procedure,
                                          LPARAM parameter) {
    if (!translation_enabled())
        return unhooked(Hook::create_dialog_param_w, ::CreateDialogParamW)(module, name, parent, procedure,
                                                                           parameter);
    const NamedDialog dialog(module, name);
    if (dialog.get() == nullptr) return nullptr;
    auto* const create = unhooked(Hook::create_dialog_indirect_param_w, ::CreateDialogIndirectParamW);
    return create(module, dialog.get(), parent, procedure, parameter);
}

// Without a template the answer is 0, where the system says -1; callers rely on it.
INT_PTR WINAPI hooked::dialog_box_param_a(HINSTANCE module, LPCSTR name, HWND parent, DLGPROC procedure,
                                          LPARAM parameter) {
    if (!translation_enabled())
        return unhooked(Hook::dialog_box_param_a, ::DialogBoxParamA)(module, name, parent, procedure,
                                                                     parameter);
    const NamedDialog dialog(module, name);
    if (dialog.get() == nullptr) return 0;
    auto* const show = unhooked(Hook::dialog_box_indirect_param_a, ::DialogBoxIndirectParamA);
    return show(module, dialog.get(), parent, procedure, parameter);
}

INT_PTR WINAPI hooked::dialog_box_param_w(HINSTANCE module, LPCWSTR name, HWND parent, DLGPROC procedure,
                                          LPARAM parameter) {
    if (!translation_enabled())
        return unhooked(Hook::dialog_box_param_w, ::DialogBoxParamW)(module, name, parent, procedure,
                                                                     parameter);
    const NamedDialog dialog(module, name);
    if (dialog.get() == nullptr) return 0;
    auto* const show = unhooked(Hook::dialog_box_indirect_param_w, ::DialogBoxIndirectParamW);
    return show(module, dialog.get(), parent, procedure, parameter);
}

INT_PTR WINAPI hooked::dialog_box_indirect_param_a(HINSTANCE module, LPCDLGTEMPLATEA original, HWND parent,
                                                   DLGPROC procedure, LPARAM parameter) {
    const IndirectDialog dialog(original);
    auto* const show = unhooked(Hook::dialog_box_indirect_param_a, ::DialogBoxIndirectParamA);
    return show(module, dialog.get(), parent, procedure, parameter);
}

INT_PTR WINAPI hooked::dialog_box_indirect_param_w(HINSTANCE module, LPCDLGTEMPLATEW original, HWND parent,
                                                   DLGPROC procedure, LPARAM parameter) {
    const IndirectDialog dialog(original);
    auto* const show = unhooked(Hook::dialog_box_indirect_param_w, ::DialogBoxIndirectParamW);
    return show(module, dialog.get(), parent, procedure, parameter);
}

HWND WINAPI hooked::create_dialog_indirect_param_a(HINSTANCE module, LPCDLGTEMPLATEA original, HWND parent,
                                                   DLGPROC procedure, LPARAM parameter) {
    const IndirectDialog dialog(original);
    auto* const create = unhooked(Hook::create_dialog_indirect_param_a, ::CreateDialogIndirectParamA);
    return create(module, dialog.get(), parent, procedure, parameter);
}

HWND WINAPI hooked::create_dialog_indirect_param_w(HINSTANCE module, LPCDLGTEMPLATEW original, HWND parent,
                                                   DLGPROC procedure, LPARAM parameter) {
    const IndirectDialog dialog(original);
    auto* const create = unhooked(Hook::create_dialog_indirect_param_w, ::CreateDialogIndirectParamW);
    return create(module, dialog.get(), parent, procedure, parameter);
}

} // namespace qzr
