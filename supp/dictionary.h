// Source texts and their translations. Wide texts are found by their hash alone; the texts are never
// compared.
#pragma once

#include "supp/dictionary_table.h"
#include "supp/text_pairs.h"

#include <forward_list>

namespace qzr {

// Grows and never shrinks, so the texts it hands out stay. Finding and reading may go on in several threads,
// adding needs the dictionary to itself.
class Dictionary {
public:
    Dictionary() noexcept = default;
    ~Dictionary();
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;

    bool empty() const noexcept { return table_.size() == 0; }
    DictionaryEntry find(unsigned hash) const noexcept { return table_.find(hash); }

    // Adds a pair of narrow texts, unless an entry has the source's hash already. Throws CXMemException.
    void add(const char* source, const char* translation);

    // The entry of a narrow text; when there is none, a new one that translates the text to itself. Throws
    // CXMemException.
    DictionaryEntry find_or_add(const char* text);

    // The wide translation, converted once in the code page of that time and kept; that of the source when it
    // is empty. Throws CXMemException.
    const wchar_t* wide_translation(const DictionaryEntry& entry) const {
        const wchar_t* const known = entry.wide->load(std::memory_order_acquire);
        return known != nullptr ? known : convert(entry.pair, *entry.wide);
    }

    // The narrow one: the translation, or the source when it is empty.
    const char* narrow_translation(const DictionaryEntry& entry) const noexcept;
    bool has_translation(const DictionaryEntry& entry) const noexcept { // that is not empty
        return *texts_.translation(entry.pair) != 0;
    }

    // While set, add() adds nothing, and what find_or_add() makes is not found again. It lives as long.
    void set_closed_to_entries(bool closed) noexcept { closed_to_entries_ = closed; }

private:
    DictionaryEntry insert(unsigned hash, const char* source, const char* translation);
    const wchar_t* convert(unsigned pair, WideText& wide) const;

    DictionaryTable table_;
    TextPairs texts_;
    std::forward_list<WideText, HeapAllocator<WideText>> outside_; // of what was made while closed
    bool closed_to_entries_ = false;
};

} // namespace qzr
