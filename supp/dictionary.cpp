#include "supp/dictionary.h"

#include "core/name_hash.h"
#include "qzstring.h"
#include "string/scan.h"

#include <cstring>

namespace qzr {

namespace {

unsigned hash_of_narrow(const char* text) {
    CXStringW key;
    hostMultiByteToUnicode(text, key);
    return hash_wide(key.GetData());
}

// The wide texts come from the default heap one by one, as any thread may make them.
void free_wide_text(const HashLink* link) noexcept {
    mem_free(static_cast<const DictionaryEntry*>(link)->wide.load(std::memory_order_relaxed));
}

} // namespace

Dictionary::~Dictionary() {
    entries_.take_all(free_wide_text);
    for (const HashLink* link = outside_; link != nullptr; link = link->next)
        free_wide_text(link);
}

DictionaryEntry* Dictionary::make(const char* source, const char* translation) {
    const std::size_t source_size = text_length(source) + 1;
    const std::size_t translation_size = text_length(translation) + 1;
    void* const place = memory_.take(sizeof(DictionaryEntry) + source_size + translation_size);
    auto* const entry = new (place) DictionaryEntry;
    entry->source_size = static_cast<unsigned>(source_size);
    char* const texts = reinterpret_cast<char*>(entry + 1);
    std::memcpy(texts, source, source_size);
    std::memcpy(texts + source_size, translation, translation_size);
    return entry;
}

void Dictionary::add(const char* source, const char* translation) {
    const unsigned hash = hash_of_narrow(source);
    if (closed_to_entries_ || entries_.find(hash) != nullptr) return;
    entries_.insert(make(source, translation), hash);
}

DictionaryEntry& Dictionary::find_or_add(const char* text) {
    const unsigned hash = hash_of_narrow(text);
    if (DictionaryEntry* const known = entries_.find(hash)) return *known;
    DictionaryEntry* const entry = make(text, text);
    if (closed_to_entries_) {
        entry->next = std::exchange(outside_, entry);
    } else {
        entries_.insert(entry, hash);
    }
    return *entry;
}

const wchar_t* wide_translation(DictionaryEntry& entry) {
    if (const wchar_t* const known = entry.wide.load(std::memory_order_acquire)) return known;
    CXStringW text;
    hostMultiByteToUnicode(entry.translation(), text);
    if (*text.GetData() == 0) hostMultiByteToUnicode(entry.source(), text);
    if (*text.GetData() == 0) return L"";
    auto* const made = reinterpret_cast<wchar_t*>(
        mem_dup(text.GetData(), (std::size_t{text.GetSize()} + 1) * sizeof(wchar_t)));
    wchar_t* first = nullptr;
    if (entry.wide.compare_exchange_strong(first, made, std::memory_order_acq_rel)) return made;
    mem_free(made);
    return first;
}

const char* narrow_translation(const DictionaryEntry& entry) noexcept {
    return *entry.translation() != 0 ? entry.translation() : entry.source();
}

} // namespace qzr
