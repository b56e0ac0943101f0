// The state of translation, one per process.
#pragma once

#include "core/library.h"
#include "supp/dialog_font.h"
#include "supp/dialog_layout.h"
#include "supp/dictionary.h"

namespace qzr {

// Built when the library loads, empty; see core/library.h.
struct TranslationContext {
    bool loaded = false;                      // by the first dictionary
    std::atomic<bool> any_file = false;       // entries or sizes may have come, if only from a part of a file
    std::atomic<int> enabled = 1;             // the switch of the hooks
    std::atomic<unsigned long> code_page = 0; // 0 stands for the system's ANSI code page
    Dictionary dictionary;
    DialogLayouts dialogs;
    DialogFontChoice font;
};

inline TranslationContext& translation() noexcept { return *library().translation; }

} // namespace qzr
