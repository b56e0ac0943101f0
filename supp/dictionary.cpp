#include "supp/dictionary.h"

#include "qzstring.h"
#include "supp/wide_hash.h"

namespace qzr {

namespace {

unsigned hash_of_narrow(const char* text) {
    CXStringW key;
    hostMultiByteToUnicode(text, key);
    return wide_hash(key.GetData()).hash;
}

} // namespace

Dictionary::~Dictionary() {
    for (const WideText& text : outside_)
        mem_free(text.load(std::memory_order_relaxed));
}

DictionaryEntry Dictionary::insert(unsigned hash, const char* source, const char* translation) {
    table_.make_room();
    return table_.add(hash, texts_.add(source, translation));
}

void Dictionary::add(const char* source, const char* translation) {
    const unsigned hash = hash_of_narrow(source);
    if (!closed_to_entries_ && !find(hash)) insert(hash, source, translation);
}

DictionaryEntry Dictionary::find_or_add(const char* text) {
    const unsigned hash = hash_of_narrow(text);
    if (const DictionaryEntry known = find(hash)) return known;
    if (!closed_to_entries_) return insert(hash, text, text);
    const unsigned pair = texts_.add(text, text);
    return {pair, &outside_.emplace_front()};
}

const wchar_t* Dictionary::convert(unsigned pair, WideText& wide) const {
    CXStringW text;
    hostMultiByteToUnicode(texts_.translation(pair), text);
    if (*text.GetData() == 0) hostMultiByteToUnicode(texts_.source(pair), text);
    if (*text.GetData() == 0) return L"";
    auto* const made = reinterpret_cast<wchar_t*>(
        mem_dup(text.GetData(), (std::size_t{text.GetSize()} + 1) * sizeof(wchar_t)));
    wchar_t* first = nullptr;
    if (wide.compare_exchange_strong(first, made, std::memory_order_acq_rel)) return made;
    mem_free(made);
    return first;
}

const char* Dictionary::narrow_translation(const DictionaryEntry& entry) const noexcept {
    return has_translation(entry) ? texts_.translation(entry.pair) : texts_.source(entry.pair);
}

} // namespace qzr
