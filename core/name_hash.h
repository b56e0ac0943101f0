// The hash of the library's name maps. They match names by it alone, so its values decide which names are the
// same and must never change.
#pragma once

#include <string_view>

namespace qzr {

// Bytes count as signed numbers: those from 0x80 on are subtracted.
constexpr unsigned hash_step(unsigned hash, char c) {
    return hash * 257u + static_cast<unsigned>(static_cast<signed char>(c));
}

constexpr unsigned hash_name(std::string_view name) {
    unsigned hash = 0;
    for (const char c : name)
        hash = hash_step(hash, c);
    return hash;
}

// ASCII letters in lower case; all other bytes as they are, whatever the locale says of them.
constexpr unsigned hash_name_folded(std::string_view name) {
    unsigned hash = 0;
    for (const char c : name)
        hash = hash_step(hash, c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
    return hash;
}

namespace detail {

// Up to the terminator. The multiplications of one unit wait for those of the unit before, so four units are
// taken at once.
template <class Char, class Number>
constexpr unsigned hash_units(const Char* text, unsigned before, Number number) {
    constexpr unsigned k1 = 257, k2 = k1 * 257, k3 = k2 * 257, k4 = k3 * 257u;
    unsigned hash = before;
    for (;; text += 4) {
        if (text[0] == 0) return hash;
        if (text[1] == 0) return hash * k1 + number(text[0]);
        if (text[2] == 0) return hash * k2 + number(text[0]) * k1 + number(text[1]);
        if (text[3] == 0) return hash * k3 + number(text[0]) * k2 + number(text[1]) * k1 + number(text[2]);
        hash = hash * k4 +
               (number(text[0]) * k3 + number(text[1]) * k2 + number(text[2]) * k1 + number(text[3]));
    }
}

} // namespace detail

// hash_name of a text with a terminator.
constexpr unsigned hash_text(const char* text) {
    return detail::hash_units(text, 0, [](char c) { return hash_step(0, c); });
}
static_assert(hash_text("ab\xFFzy\x80") == hash_name("ab\xFFzy\x80"));

// Wide text: units count as unsigned numbers and as they are. Goes on from the hash of what stands before.
constexpr unsigned hash_wide(const wchar_t* text, unsigned before = 0) {
    return detail::hash_units(text, before, [](wchar_t c) { return unsigned{c}; });
}
static_assert(hash_wide(L"ab", 5) == (5 * 257 + 'a') * 257 + 'b');
static_assert(hash_wide(L"abcde") == hash_wide(L"cde", hash_wide(L"ab")));

} // namespace qzr
