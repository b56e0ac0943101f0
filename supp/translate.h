// The dictionary as the hooks and the window functions see it. Texts that are handed out live until unload.
//
// A key is a context directly followed by a text, both of one width; a null context counts as empty. Narrow
// keys are in the dictionary's code page. Of a wide context the hash is all that is needed.
#pragma once

#include "supp/wide_hash.h"

namespace qzr {

// The kinds of resources that have contexts; the number is part of the context.
enum class ResourceKind { dialog = 1, menu = 2, string_table = 3 };

bool translation_enabled() noexcept; // what Supp_IsTranslationEnable answers is not 0
bool dictionary_is_empty() noexcept;
bool translating() noexcept; // enabled, and a dictionary was loaded, be it an empty one

// The translation of exactly this key, or null when there is no entry. An entry without translation, or, for
// the wide form, with one that cannot be converted, gives its own source, which may be the whole key. Throw
// CXMemException.
const wchar_t* find_translation(const wchar_t* text, const WideHash& context = {});
const char* find_translation(const char* text, const char* context = nullptr);

// The translation in the context, or else that of the text alone, or else the text itself. Null for a null or
// empty text. Throw CXMemException.
const wchar_t* translate(const wchar_t* text);
const wchar_t* translate(const wchar_t* text, const WideHash& context);
const char* translate(const char* text, const char* context = nullptr);

// Replace a text in a buffer of `size` units by its translation, cut to what fits in whole characters. A text
// without an entry, or with an empty translation, stays. A text that lacks its zero ends with the buffer.
// Return the length of what stands there then; 0 for a null or empty buffer. Throw CXMemException.
unsigned translate_in_place(char* buffer, unsigned size);
unsigned translate_in_place(wchar_t* buffer, unsigned size);

} // namespace qzr
