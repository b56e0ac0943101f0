// Message boxes of narrow text.
#include "qzstring.h"
#include "supp/hook_state.h"
#include "supp/translate.h"

namespace qzr {

namespace {

constexpr unsigned kTextBytes = 1024; // with the zero; longer texts are cut, translated or not

class BoxText {
public:
    // A null text counts as `missing`.
    void translate(const char* text, const char* missing) {
        CXString(text != nullptr ? text : missing).CopyFit(bytes_, kTextBytes);
        translate_in_place(bytes_, kTextBytes);
        shown_ = bytes_;
    }

    // As translate(), but the text may be the number of a string resource. The system would load it
    // untranslated; one that is not there is left to it.
    void translate_or_load(HINSTANCE module, const char* text, const char* missing) {
        if (text == nullptr || !IS_INTRESOURCE(text)) return translate(text, missing);
        const auto id = static_cast<UINT>(reinterpret_cast<ULONG_PTR>(text));
        shown_ = hooked::load_string_a(module, id, bytes_, kTextBytes - 1) > 0 ? bytes_ : text;
    }

    const char* get() const noexcept { return shown_; }

private:
    char bytes_[kTextBytes] = {}; // its last byte is never written
    const char* shown_ = nullptr;
};

struct BoxTexts {
    BoxText text;
    BoxText caption;

    // False when the caller's own texts are to be shown.
    bool translate(const char* own_text, const char* own_caption) noexcept {
        return attempt([&] {
            text.translate(own_text, "");
            caption.translate(own_caption, kNoCaption);
        });
    }
    bool translate(const MSGBOXPARAMSA& box) noexcept {
        return attempt([&] {
            text.translate_or_load(box.hInstance, box.lpszText, "");
            caption.translate_or_load(box.hInstance, box.lpszCaption, kNoCaption);
        });
    }

private:
    static constexpr char kNoCaption[] = "Error";

    template <class Action>
    static bool attempt(Action action) noexcept {
        if (!translation_enabled()) return false;
        try {
            action();
            return true;
        } catch (...) {
            return false;
        }
    }
};

} // namespace

int WINAPI hooked::message_box_a(HWND owner, LPCSTR text, LPCSTR caption, UINT style) {
    auto* const show = unhooked(Hook::message_box_a, ::MessageBoxA);
    BoxTexts texts;
    if (!texts.translate(text, caption)) return show(owner, text, caption, style);
    return show(owner, texts.text.get(), texts.caption.get(), style);
}

int WINAPI hooked::message_box_ex_a(HWND owner, LPCSTR text, LPCSTR caption, UINT style, WORD language) {
    auto* const show = unhooked(Hook::message_box_ex_a, ::MessageBoxExA);
    BoxTexts texts;
    if (!texts.translate(text, caption)) return show(owner, text, caption, style, language);
    return show(owner, texts.text.get(), texts.caption.get(), style, language);
}

int WINAPI hooked::message_box_indirect_a(const MSGBOXPARAMSA* box) {
    auto* const show = unhooked(Hook::message_box_indirect_a, ::MessageBoxIndirectA);
    BoxTexts texts;
    if (box == nullptr || !texts.translate(*box)) return show(box);
    MSGBOXPARAMSA translated = *box;
    translated.lpszText = texts.text.get();
    translated.lpszCaption = texts.caption.get();
    return show(&translated);
}

} // namespace qzr
