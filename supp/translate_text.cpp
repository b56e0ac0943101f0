// Translating texts: the exported functions and those for the hooks.
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

DictionaryEntry entry_of(const wchar_t* text, const WideHash& context = {}) {
    return translation().dictionary.find((context + wide_hash(text)).hash);
}

// The whole key is converted at once: a lead byte at the end of a context takes the first byte of the text.
DictionaryEntry entry_of(const char* text, const char* context = nullptr) {
    if (translation().dictionary.empty()) return {};
    CXStringW key;
    hostMultiByteToUnicode(context != nullptr ? CXString(context) + text : CXString(text), key);
    return translation().dictionary.find(wide_hash(key.GetData()).hash);
}

const wchar_t* wide_of(const DictionaryEntry& entry, const wchar_t* otherwise) {
    return entry ? translation().dictionary.wide_translation(entry) : otherwise;
}
const char* narrow_of(const DictionaryEntry& entry, const char* otherwise) {
    return entry ? translation().dictionary.narrow_translation(entry) : otherwise;
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

bool translating() noexcept {
    return translation_enabled() && translation().any_file.load(std::memory_order_relaxed);
}

const wchar_t* find_translation(const wchar_t* text, const WideHash& context) {
    return wide_of(entry_of(text, context), nullptr);
}

const char* find_translation(const char* text, const char* context) {
    return narrow_of(entry_of(text, context), nullptr);
}

const wchar_t* translate(const wchar_t* text) {
    return is_empty(text) ? nullptr : wide_of(entry_of(text), text);
}

const wchar_t* translate(const wchar_t* text, const WideHash& context) {
    if (is_empty(text)) return nullptr;
    const Dictionary& dictionary = translation().dictionary;
    const WideHash hash = wide_hash(text);
    DictionaryEntry entry = dictionary.find((context + hash).hash);
    if (!entry) entry = dictionary.find(hash.hash);
    return wide_of(entry, text);
}

const char* translate(const char* text, const char* context) {
    if (is_empty(text)) return nullptr;
    DictionaryEntry entry = entry_of(text, context);
    if (!entry && !is_empty(context)) entry = entry_of(text);
    return narrow_of(entry, text);
}

unsigned translate_in_place(char* buffer, unsigned size) {
    if (buffer == nullptr || size == 0 || *buffer == 0) return 0;
    const CXString text = text_in<CXString>(buffer, size);
    const DictionaryEntry entry = entry_of(text.GetData());
    if (!entry || !translation().dictionary.has_translation(entry)) return text.GetSize();
    return CXString(narrow_of(entry, nullptr)).CopyFit(buffer, size);
}

unsigned translate_in_place(wchar_t* buffer, unsigned size) {
    if (buffer == nullptr || size == 0 || *buffer == 0) return 0;
    const CXStringW text = text_in<CXStringW>(buffer, size);
    const wchar_t* const translated = wide_of(entry_of(text.GetData()), L"");
    if (*translated == 0) return text.GetSize();
    return CXStringW(translated).CopyFit(buffer, size);
}

} // namespace qzr

const wchar_t* Supp_Translate(const wchar_t* text) { return qzr::translate(text); }

const wchar_t* Supp_Translate(const wchar_t* text, const wchar_t* context) {
    return qzr::translate(text, context != nullptr ? qzr::wide_hash(context) : qzr::WideHash());
}

const wchar_t* Supp_Translate(const char* text) {
    if (text == nullptr || *text == 0) return nullptr;
    qzr::Dictionary& dictionary = qzr::translation().dictionary;
    return dictionary.wide_translation(dictionary.find_or_add(text));
}

unsigned long Supp_GetACP() { return qzr::translation().code_page.load(std::memory_order_relaxed); }

int Supp_IsTranslationEnable() { return qzr::translation().enabled.load(std::memory_order_relaxed); }

void Supp_SetTranslationEnable(int enable) {
    qzr::translation().enabled.store(enable, std::memory_order_relaxed);
}
