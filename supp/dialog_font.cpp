#include "supp/dialog_font.h"

#include "core/win_handle.h"
#include "qzsupp.h"
#include "supp/translation_context.h"

#include <cstdlib>
#include <cwchar>

namespace qzr {

namespace {

int screen_dots_per_inch() {
    constexpr int kUsual = 96;
    const ScreenDc screen(GetDC(nullptr));
    return screen ? GetDeviceCaps(screen.get(), LOGPIXELSY) : kUsual;
}

DialogFont named(const wchar_t* face, WORD points, HFONT handle = nullptr) {
    DialogFont font;
    std::wcsncpy(font.face, face, LF_FACESIZE - 1);
    font.points = points;
    font.handle = handle;
    return font;
}

DialogFont choose() {
    if (GetSystemMetrics(SM_DBCSENABLED) == 0) return named(L"MS Shell Dlg", 8);
    HGDIOBJ stock = GetStockObject(DEFAULT_GUI_FONT);
    if (stock == nullptr) stock = GetStockObject(SYSTEM_FONT);
    LOGFONTW description = {};
    if (stock == nullptr || GetObjectW(stock, sizeof description, &description) == 0)
        return named(L"System", 10, static_cast<HFONT>(stock));
    const int points = MulDiv(std::abs(description.lfHeight), 72, screen_dots_per_inch());
    return named(description.lfFaceName, static_cast<WORD>(points), static_cast<HFONT>(stock));
}

} // namespace

const DialogFont& DialogFontChoice::get() {
    std::call_once(chosen_, [this] { font_ = choose(); });
    return font_;
}

const DialogFont& dialog_font() { return translation().font.get(); }

} // namespace qzr

HFONT Supp_GetFont() { return qzr::dialog_font().handle; }

void Supp_SetDialogFont(HWND) {}

void Supp_SetDialogPos(HWND, HWND, unsigned) {}
