// The texts inside variants: blocks of the library's allocator, where null is a legal empty text.
#pragma once

#include "core/allocator.h"
#include "string/scan.h"

namespace qzr {

inline const char* or_empty(const char* text) { return text != nullptr ? text : ""; }
inline const wchar_t* or_empty(const wchar_t* text) { return text != nullptr ? text : L""; }

// A copy for a variant to own; null for null. Throws CXMemException.
inline char* duplicate_text(const char* text) {
    return text != nullptr ? mem_dup(text, text_length(text) + 1) : nullptr;
}
inline wchar_t* duplicate_text(const wchar_t* text) {
    if (text == nullptr) return nullptr;
    return reinterpret_cast<wchar_t*>(mem_dup(text, (text_length(text) + 1) * sizeof(wchar_t)));
}

} // namespace qzr
