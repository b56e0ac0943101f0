// Dialog templates with other texts.
#pragma once

#include "core/allocator.h"

#include <functional>

namespace qzr {

// Gives the text to show instead; null or an empty text keeps what stands there. Empty texts are not asked
// for.
using DialogTextTranslator = std::function<const wchar_t*(const wchar_t*)>;

// Copies a dialog template of the plain or the extended layout, with its caption and the texts of its
// controls replaced. Everything else is copied as it is: menu, class, font, identifiers of resources that
// stand for texts, creation data; items start on 4-byte boundaries.
//
// A template does not say how long it is; `size` is the most that may be read, and nothing in it is trusted.
// `copy` gets the result. @return false when the template is damaged. Throws CXMemException and what the
// translator throws.
bool translate_dialog_template(const void* data, std::size_t size, const DialogTextTranslator& translator,
                               Vector<std::byte>& copy);

// For callers that are given a template without a length: no template is longer.
constexpr std::size_t kLongestDialogTemplate = std::size_t{16} << 20;

} // namespace qzr
