// Source texts and their translations. Wide texts are found by their hash alone; the texts are never
// compared.
#pragma once

#include "core/hash_map.h"
#include "supp/arena.h"

#include <atomic>

namespace qzr {

// An entry and, behind it in the same piece of memory, the source and the translation as narrow texts.
struct DictionaryEntry : HashLink {
    unsigned source_size = 0;             // bytes, with its zero
    std::atomic<wchar_t*> wide = nullptr; // the wide translation, once somebody asked for it

    const char* source() const noexcept { return reinterpret_cast<const char*>(this + 1); }
    const char* translation() const noexcept { return source() + source_size; }
};
static_assert(sizeof(DictionaryEntry) == 32, "every byte here is paid once per pair");

// Grows and never shrinks, so what it hands out stays. Finding and reading may go on in several threads,
// adding needs the dictionary to itself.
class Dictionary {
public:
    Dictionary() noexcept = default;
    ~Dictionary();
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;

    bool empty() const noexcept { return entries_.size() == 0; }
    DictionaryEntry* find(unsigned hash) const noexcept { return entries_.find(hash); }

    // Adds a pair of narrow texts, unless an entry has the source's hash already. Throws CXMemException.
    void add(const char* source, const char* translation);

    // The entry of a narrow text; when there is none, a new one that translates the text to itself. Throws
    // CXMemException.
    DictionaryEntry& find_or_add(const char* text);

    // While set, add() adds nothing, and what find_or_add() makes is not found again. It lives as long.
    void set_closed_to_entries(bool closed) noexcept { closed_to_entries_ = closed; }

private:
    DictionaryEntry* make(const char* source, const char* translation);

    HashMap<DictionaryEntry, 127> entries_;
    HashLink* outside_ = nullptr; // entries that were made while closed, chained by next
    bool closed_to_entries_ = false;
    Arena memory_;
};

// The wide translation, converted once in the code page of that time and kept; that of the source when it is
// empty. Throws CXMemException.
const wchar_t* wide_translation(DictionaryEntry& entry);

// The narrow one: the translation, or the source when it is empty.
const char* narrow_translation(const DictionaryEntry& entry) noexcept;

} // namespace qzr
