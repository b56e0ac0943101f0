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

// hash_name of a text with a terminator. The multiplications of one character wait for those of the character
// before, so four characters are taken at once.
constexpr unsigned hash_text(const char* text) {
    constexpr unsigned k1 = 257, k2 = k1 * 257, k3 = k2 * 257, k4 = k3 * 257u;
    const auto number = [](char c) { return hash_step(0, c); };
    unsigned hash = 0;
    for (;; text += 4) {
        if (text[0] == 0) return hash;
        if (text[1] == 0) return hash * k1 + number(text[0]);
        if (text[2] == 0) return hash * k2 + number(text[0]) * k1 + number(text[1]);
        if (text[3] == 0) return hash * k3 + number(text[0]) * k2 + number(text[1]) * k1 + number(text[2]);
        hash = hash * k4 +
               (number(text[0]) * k3 + number(text[1]) * k2 + number(text[2]) * k1 + number(text[3]));
    }
}
static_assert(hash_text("ab\xFFzy\x80") == hash_name("ab\xFFzy\x80"));

} // namespace qzr
