// The counted block behind both string classes, and the operations whose rules are the same in both widths. A
// string holds a pointer to the first unit of its text; the header lies directly before it.
//
// Behind the text area, and outside its capacity, every block has one more zero unit: a text that was cut to
// the full capacity still ends there.
#pragma once

#include "core/allocator.h"
#include "qzexception.h"
#include "string/scan.h"

#include <climits>
#include <cstdint>
#include <cstring>

namespace qzr {

struct TextBlock {
    int count;    // strings that share the block; kLockedCount: handed out for writing, one owner
    int length;   // informational: what the last operation asked for; nobody reads it
    int capacity; // bytes of the text area, in both widths
};
static_assert(sizeof(TextBlock) == 12);

constexpr int kLockedCount = -1;

// The text of every string without a block. Its count makes it look locked, so it is copied and never shared.
template <class Unit>
struct EmptyText {
    TextBlock header;
    Unit text[1];
};
template <class Unit>
inline constinit const EmptyText<Unit> kEmptyText{{kLockedCount, 0, 0}, {0}};

template <class Unit>
Unit* empty_text() noexcept {
    return const_cast<Unit*>(kEmptyText<Unit>.text);
}

template <class Unit>
bool is_empty_text(const Unit* text) noexcept {
    return text == kEmptyText<Unit>.text;
}

template <class Unit>
TextBlock* header_of(Unit* text) noexcept {
    return reinterpret_cast<TextBlock*>(reinterpret_cast<char*>(text) - sizeof(TextBlock));
}
template <class Unit>
const TextBlock* header_of(const Unit* text) noexcept {
    return reinterpret_cast<const TextBlock*>(reinterpret_cast<const char*>(text) - sizeof(TextBlock));
}

template <class Unit>
std::size_t block_size(std::size_t capacity) noexcept {
    return sizeof(TextBlock) + capacity + sizeof(Unit);
}

// A block for `units` units with count 1. The text area is not filled. Throws CXMemException, also for blocks
// beyond 2 GiB.
template <class Unit>
Unit* new_text(std::uint64_t units) {
    constexpr std::uint64_t kMost = (INT_MAX - sizeof(TextBlock)) / sizeof(Unit) - 1;
    if (units > kMost) throw CXMemException();
    const std::size_t capacity = static_cast<std::size_t>(units) * sizeof(Unit);
    auto* const block = static_cast<TextBlock*>(block_alloc(block_size<Unit>(capacity)));
    *block = {1, 0, static_cast<int>(capacity)};
    Unit* const text = reinterpret_cast<Unit*>(block + 1);
    text[units] = 0;
    return text;
}

// Clears the text area from unit `from` on.
template <class Unit>
void zero_rest(Unit* text, std::size_t from) noexcept {
    std::memset(text + from, 0, static_cast<std::size_t>(header_of(text)->capacity) - from * sizeof(Unit));
}

template <class Unit>
void copy_units(Unit* to, const Unit* from, std::size_t units) noexcept {
    if (units != 0) std::memcpy(to, from, units * sizeof(Unit));
}

// A block of `units` units whose text is a copy of `length` of them; the rest is zero.
template <class Unit>
Unit* new_text_copy(const Unit* from, std::size_t length, std::uint64_t units) {
    Unit* const text = new_text<Unit>(units);
    header_of(text)->length = static_cast<int>(length);
    copy_units(text, from, length);
    zero_rest(text, length);
    return text;
}

// Gives up one reference and points the string at the empty text. A locked block has one owner.
template <class Unit>
void release_text(Unit*& text) noexcept {
    Unit* const old = text;
    if (is_empty_text(old)) return;
    text = empty_text<Unit>();
    TextBlock* const block = header_of(old);
    if (block->count > 1) {
        --block->count;
        return;
    }
    block_free(block, block_size<Unit>(static_cast<std::size_t>(block->capacity)));
}

// Puts a new block in the place of the old one. What pointed into the old text must have been read before.
template <class Unit>
void replace_text(Unit*& text, Unit* fresh) noexcept {
    release_text(text);
    text = fresh;
}

template <class Unit>
bool is_private(const Unit* text) noexcept {
    return header_of(text)->count < 2;
}

template <class Unit>
std::size_t capacity_units(const Unit* text) noexcept {
    return static_cast<std::size_t>(header_of(text)->capacity) / sizeof(Unit);
}

// Makes the text private with room for at least n units. A longer text is cut only when it has to move.
template <class Unit>
void reserve_text(Unit*& text, std::uint64_t n) {
    if (is_private(text) && n <= capacity_units(text)) return;
    Unit* const fresh = new_text<Unit>(n);
    std::size_t kept = text_length(text);
    if (kept > n) kept = static_cast<std::size_t>(n);
    copy_units(fresh, text, kept);
    zero_rest(fresh, kept);
    header_of(fresh)->length = static_cast<int>(n);
    replace_text(text, fresh);
}

// One edit: of a text of `length` units, `removed` units at `at` give way to `added` units of `s`, which may
// lie in the text itself. `room` is the capacity to provide, at least the resulting length + 1; an exact edit
// also gives back what is beyond it.
template <class Unit>
struct TextEdit {
    std::size_t length;
    std::size_t at;
    std::size_t removed;
    const Unit* s;
    std::size_t added;
    std::uint64_t room;
    bool exact = false;
};

template <class Unit>
void edit_text(Unit*& text, const TextEdit<Unit>& e) {
    const std::size_t tail_at = e.at + e.removed;
    const std::size_t tail = e.length - tail_at;
    const std::size_t result = e.at + e.added + tail;
    const std::size_t capacity = capacity_units(text);
    const bool keeps_block = is_private(text) && (e.exact ? e.room == capacity : e.room <= capacity);
    const bool reads_itself = e.added != 0 && e.s >= text && e.s <= text + e.length;
    if (keeps_block && !reads_itself) {
        std::memmove(text + e.at + e.added, text + tail_at, tail * sizeof(Unit));
        copy_units(text + e.at, e.s, e.added);
        text[result] = 0;
        return;
    }
    Unit* const fresh = new_text<Unit>(keeps_block ? capacity : e.room);
    copy_units(fresh, text, e.at);
    copy_units(fresh + e.at, e.s, e.added);
    copy_units(fresh + e.at + e.added, text + tail_at, tail);
    zero_rest(fresh, result);
    header_of(fresh)->length = static_cast<int>(result);
    replace_text(text, fresh);
}

// Appends at `at`, dropping what followed.
template <class Unit>
void overwrite_text(Unit*& text, std::size_t at, const Unit* s, std::size_t n) {
    const std::uint64_t room = std::uint64_t{at} + n + 1;
    if (is_private(text) && room <= capacity_units(text)) {
        if (n != 0) std::memmove(text + at, s, n * sizeof(Unit));
        text[at + n] = 0;
        return;
    }
    Unit* const fresh = new_text<Unit>(room);
    copy_units(fresh, text, at);
    copy_units(fresh + at, s, n);
    fresh[at + n] = 0;
    header_of(fresh)->length = static_cast<int>(room);
    replace_text(text, fresh);
}

// Both texts in one block of exactly their length; two empty ones need none.
template <class Unit>
Unit* join_texts(const Unit* a, std::size_t a_length, const Unit* b, std::size_t b_length) {
    const std::uint64_t length = std::uint64_t{a_length} + b_length;
    if (length == 0) return empty_text<Unit>();
    Unit* const text = new_text<Unit>(length + 1);
    copy_units(text, a, a_length);
    copy_units(text + a_length, b, b_length);
    text[length] = 0;
    header_of(text)->length = static_cast<int>(length);
    return text;
}

} // namespace qzr
