// Dialog templates with other texts.
#pragma once

#include "core/windows_lean.h"
#include "supp/dialog_copy.h"

#include <functional>

namespace qzr {

struct DialogChanges {
    // Gives the text to show instead; null or an empty text keeps what stands there. Empty texts are not
    // asked for. The text lies in the template, unless that is at an odd address.
    std::function<const wchar_t*(const wchar_t* text)> text;
    // Gives the place of a control by its identifier, or by 0 the extent of the dialog itself, in dialog
    // units; null keeps it. May be empty.
    std::function<const RECT*(unsigned item)> place;
};

// Copies a dialog template of the plain or the extended layout, with the caption, the texts of its controls
// and places replaced. Everything else is copied as it is: menu, class, font, identifiers of resources that
// stand for texts, creation data; items start on 4-byte boundaries.
//
// A template does not say how long it is; `size` is the most that may be read, and nothing in it is trusted.
// `copy` gets the result. @return false when the template is damaged. Throws CXMemException and what the
// changes throw.
bool translate_dialog_template(const void* data, std::size_t size, const DialogChanges& changes,
                               DialogCopy& copy);

// For callers that are given a template without a length: no template is longer.
constexpr std::size_t kLongestDialogTemplate = std::size_t{16} << 20;

} // namespace qzr
