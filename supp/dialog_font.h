// The font for windows with translated texts. Templates keep their own: translated copies are not changed.
#pragma once

#include "core/windows_lean.h"

#include <mutex>

namespace qzr {

struct DialogFont {
    wchar_t face[LF_FACESIZE] = {};
    WORD points = 0;
    HFONT handle = nullptr; // the system's own, on systems with double-byte characters only
};

// Chosen when somebody asks for the first time: the system's fonts cannot be asked for while it loads the
// library.
class DialogFontChoice {
public:
    const DialogFont& get();

private:
    std::once_flag chosen_;
    DialogFont font_;
};

const DialogFont& dialog_font(); // of the process

} // namespace qzr
