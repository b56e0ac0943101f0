// The counted block behind both string classes, and the operations whose rules are the same in both widths. A
// string holds a pointer to the first unit of its text; the header lies directly before it.
//
// Behind the text area, and outside its capacity, every block has one more zero unit: a text that was cut to
// the full capacity still ends there.
#pragma once

#include "core/allocator.h"
#include "core/move_bytes.h"
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

// No block is larger than 2 GiB.
template <class Unit>
inline constexpr std::uint64_t kMostUnits = (INT_MAX - sizeof(TextBlock)) / sizeof(Unit) - 1;

// A block for `units` units with count 1. The text area is not filled. Throws CXMemException, also for too
// many units.
template <class Unit>
Unit* new_text(std::uint64_t units) {
    if (units > kMostUnits<Unit>) throw CXMemException();
    const std::size_t capacity = static_cast<std::size_t>(units) * sizeof(Unit);
    auto* const block = static_cast<TextBlock*>(block_alloc(block_size<Unit>(capacity)));
    *block = {1, 0, static_cast<int>(capacity)};
    Unit* const text = reinterpret_cast<Unit*>(block + 1);
    text[units] = 0;
    return text;
}

// Clears the text area from unit `from` on, and that unit even if it is the one behind the area. An exact
// block has nothing else to clear.
template <class Unit>
void zero_rest(Unit* text, std::size_t from) noexcept {
    text[from] = 0;
    const std::size_t rest = static_cast<std::size_t>(header_of(text)->capacity) - from * sizeof(Unit);
    if (rest > sizeof(Unit)) std::memset(text + from, 0, rest);
}

template <class Unit>
void copy_units(Unit* to, const Unit* from, std::size_t units) noexcept {
    move_bytes(to, from, units * sizeof(Unit));
}

// A block of `units` units whose text is a copy of `length` of them; the rest is zero.
template <class Unit>
[[gnu::noinline]] Unit* new_text_copy(const Unit* from, std::size_t length, std::uint64_t units) {
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

// Whether the string alone has a block, which edits may then change in place.
template <class Unit>
bool owns_block(const Unit* text) noexcept {
    return is_private(text) && !is_empty_text(text);
}

// Whether s lies in the text area, so that it may not change before s was read.
template <class Unit>
bool reads_text(const Unit* text, const Unit* s) noexcept {
    return s >= text && s <= text + capacity_units(text);
}

// Whether an own block does for another capacity as it is.
template <class Unit>
bool refits_text(const Unit* text, std::uint64_t units) noexcept {
    return units <= kMostUnits<Unit> &&
           block_refits(block_size<Unit>(static_cast<std::size_t>(header_of(text)->capacity)),
                        block_size<Unit>(static_cast<std::size_t>(units) * sizeof(Unit)));
}

// Gives an own block that was refitted its new capacity. A lock ends, as it would with a new block.
template <class Unit>
void set_capacity(Unit* text, std::uint64_t units) noexcept {
    *header_of(text) = {1, header_of(text)->length, static_cast<int>(units * sizeof(Unit))};
    text[units] = 0;
}

// Gives an own block room for `units` units, more than it has, keeping the bytes; what is new is not filled.
// Throws CXMemException, the text then stays as it was.
template <class Unit>
void stretch_text(Unit*& text, std::uint64_t units) {
    if (units > kMostUnits<Unit>) throw CXMemException();
    void* const grown =
        block_grow(header_of(text), block_size<Unit>(static_cast<std::size_t>(header_of(text)->capacity)),
                   block_size<Unit>(static_cast<std::size_t>(units) * sizeof(Unit)));
    text = reinterpret_cast<Unit*>(static_cast<TextBlock*>(grown) + 1);
    set_capacity(text, units);
}

// Makes the text private with room for at least n units. A longer text is cut only when it has to move.
template <class Unit>
void reserve_text(Unit*& text, std::uint64_t n) {
    if (is_private(text) && n <= capacity_units(text)) return;
    std::size_t kept = text_length(text);
    if (owns_block(text)) {
        stretch_text(text, n);
        zero_rest(text, kept);
        header_of(text)->length = static_cast<int>(n);
        return;
    }
    Unit* const fresh = new_text<Unit>(n);
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
[[gnu::noinline]] void edit_into_new_block(Unit*& text, const TextEdit<Unit>& e) {
    const std::size_t tail_at = e.at + e.removed;
    const std::size_t tail = e.length - tail_at;
    const std::size_t result = e.at + e.added + tail;
    Unit* const fresh = new_text<Unit>(e.room);
    copy_units(fresh, text, e.at);
    copy_units(fresh + e.at, e.s, e.added);
    copy_units(fresh + e.at + e.added, text + tail_at, tail);
    zero_rest(fresh, result);
    header_of(fresh)->length = static_cast<int>(result);
    replace_text(text, fresh);
}

// An edit by units of the text itself that fits where the text is, which holds them elsewhere meanwhile: a
// pointer that GetBuffer gave out stays good.
template <class Unit>
[[gnu::noinline]] void edit_by_own_units(Unit*& text, TextEdit<Unit> e);

template <class Unit>
void edit_text(Unit*& text, const TextEdit<Unit>& e) {
    const std::size_t capacity = capacity_units(text);
    const bool grows = e.room > capacity;
    const bool shrinks = e.exact && e.room < capacity;
    const bool reads_itself = e.added != 0 && reads_text(text, e.s);
    const bool fits = !grows && !shrinks;
    if (reads_itself && fits && owns_block(text)) return edit_by_own_units(text, e);
    if (!owns_block(text) || reads_itself || (shrinks && !refits_text(text, e.room)))
        return edit_into_new_block(text, e);
    if (grows) stretch_text(text, e.room);
    const std::size_t tail_at = e.at + e.removed;
    const std::size_t tail = e.length - tail_at;
    const std::size_t result = e.at + e.added + tail;
    if (tail != 0) move_bytes(text + e.at + e.added, text + tail_at, tail * sizeof(Unit));
    copy_units(text + e.at, e.s, e.added);
    text[result] = 0;
    if (fits) return;
    set_capacity(text, e.room);
    zero_rest(text, result);
    header_of(text)->length = static_cast<int>(result);
}

template <class Unit>
void edit_by_own_units(Unit*& text, TextEdit<Unit> e) {
    Unit* held = new_text_copy(e.s, e.added, e.added);
    e.s = held;
    edit_text(text, e);
    release_text(held);
}

// Grows an own block to exactly the first `at` units with n of s, which lies elsewhere, behind them.
template <class Unit>
void grow_and_append(Unit*& text, std::size_t at, const Unit* s, std::size_t n) {
    stretch_text(text, std::uint64_t{at} + n + 1);
    copy_units(text + at, s, n);
    text[at + n] = 0;
}

// Inserts n units of s at `at` into a text of `length` units. Appending to a full block is the most frequent
// edit by far, and taken as one of any kind it lasts a fifth longer.
template <class Unit>
void insert_text(Unit*& text, std::size_t length, std::size_t at, const Unit* s, std::size_t n) {
    const std::uint64_t room = std::uint64_t{length} + n + 1;
    if (at == length && room > capacity_units(text) && owns_block(text) && !reads_text(text, s)) {
        grow_and_append(text, length, s, n);
        header_of(text)->length = static_cast<int>(length + n);
        return;
    }
    edit_text<Unit>(text, {length, at, 0, s, n, room});
}

// Appends at `at`, dropping what followed.
template <class Unit>
void overwrite_text(Unit*& text, std::size_t at, const Unit* s, std::size_t n) {
    const std::uint64_t room = std::uint64_t{at} + n + 1;
    if (is_private(text) && room <= capacity_units(text)) {
        move_bytes(text + at, s, n * sizeof(Unit));
        text[at + n] = 0;
        return;
    }
    if (owns_block(text) && (n == 0 || !reads_text(text, s))) {
        grow_and_append(text, at, s, n);
        header_of(text)->length = static_cast<int>(room);
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
[[gnu::noinline]] Unit* join_texts(const Unit* a, std::size_t a_length, const Unit* b, std::size_t b_length) {
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
