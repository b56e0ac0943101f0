// Translating texts: the exported functions and those for the hooks.
#include "core/name_hash.h"
#include "qzstring.h"
#include "qzsupp.h"
#include "string/scan.h"
#include "supp/translate.h"
#include "supp/translation_context.h"

#include <cstring>

namespace qzr {

namespace {

template <class Unit>
bool is_empty(const Unit* text) {
    return text == nullptr || *text == 0;
}

DictionaryEntry* entry_of(const wchar_t* text, const wchar_t* context) {
    const unsigned before = context != nullptr ? hash_wide(context) : 0;
    return translation().dictionary.find(hash_wide(text, before));
}

// The whole key is converted at once: a lead byte at the end of a context takes the first byte of the text.
DictionaryEntry* entry_of(const char* text, const char* context) {
    if (translation().dictionary.empty()) return nullptr;
    CXStringW key;
    hostMultiByteToUnicode(context != nullptr ? CXString(context) + text : CXString(text), key);
    return translation().dictionary.find(hash_wide(key.GetData()));
}

const wchar_t* translation_of(DictionaryEntry& entry, const wchar_t*) { return wide_translation(entry); }
const char* translation_of(DictionaryEntry& entry, const char*) { return narrow_translation(entry); }

template <class Unit>
const Unit* find_in_dictionary(const Unit* text, const Unit* context) {
    DictionaryEntry* const entry = entry_of(text, context);
    return entry != nullptr ? translation_of(*entry, text) : nullptr;
}

template <class Unit>
const Unit* translate_with_fallback(const Unit* text, const Unit* context) {
    if (is_empty(text)) return nullptr;
    if (translation().dictionary.empty()) return text;
    const Unit* found = find_in_dictionary(text, context);
    if (found == nullptr && !is_empty(context)) found = find_in_dictionary<Unit>(text, nullptr);
    return found != nullptr ? found : text;
}

// The text in a buffer as a string of its own, so that it ends.
template <class Text, class Unit>
Text text_in(const Unit* buffer, unsigned size) {
    const std::size_t length = text_length(buffer, size);
    Text text;
    Unit* const copy = text.GetBuffer(static_cast<int>(length));
    std::memcpy(copy, buffer, length * sizeof(Unit));
    copy[length] = 0;
    text.ReleaseBuffer();
    return text;
}

} // namespace

bool translation_enabled() noexcept { return Supp_IsTranslationEnable() != 0; }

bool dictionary_is_empty() noexcept { return translation().dictionary.empty(); }

const wchar_t* find_translation(const wchar_t* text, const wchar_t* context) {
    return find_in_dictionary(text, context);
}

const char* find_translation(const char* text, const char* context) {
    return find_in_dictionary(text, context);
}

const wchar_t* translate(const wchar_t* text, const wchar_t* context) {
    return translate_with_fallback(text, context);
}

const char* translate(const char* text, const char* context) {
    return translate_with_fallback(text, context);
}

unsigned translate_in_place(char* buffer, unsigned size) {
    if (buffer == nullptr || size == 0 || *buffer == 0) return 0;
    const CXString text = text_in<CXString>(buffer, size);
    const DictionaryEntry* const entry = entry_of(text.GetData(), nullptr);
    if (entry == nullptr || *entry->translation() == 0) return text.GetSize();
    return CXString(entry->translation()).CopyFit(buffer, size);
}

unsigned translate_in_place(wchar_t* buffer, unsigned size) {
    if (buffer == nullptr || size == 0 || *buffer == 0) return 0;
    const CXStringW text = text_in<CXStringW>(buffer, size);
    DictionaryEntry* const entry = entry_of(text.GetData(), nullptr);
    const wchar_t* const translated = entry != nullptr ? wide_translation(*entry) : L"";
    if (*translated == 0) return text.GetSize();
    return CXStringW(translated).CopyFit(buffer, size);
}

} // namespace qzr

const wchar_t* Supp_Translate(const wchar_t* text) { return qzr::translate(text); }

const wchar_t* Supp_Translate(const wchar_t* text, const wchar_t* context) {
    return qzr::translate(text, context);
}

const wchar_t* Supp_Translate(const char* text) {
    if (text == nullptr || *text == 0) return nullptr;
    return qzr::wide_translation(qzr::translation().dictionary.find_or_add(text));
}

unsigned long Supp_GetACP() { return qzr::translation().code_page.load(std::memory_order_relaxed); }

int Supp_IsTranslationEnable() { return qzr::translation().enabled.load(std::memory_order_relaxed); }

void Supp_SetTranslationEnable(int enable) {
    qzr::translation().enabled.store(enable, std::memory_order_relaxed);
}
