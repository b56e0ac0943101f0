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

// Wide text: units count as unsigned numbers and as they are. Goes on from the hash of what stands before.
constexpr unsigned hash_wide(const wchar_t* text, unsigned before = 0) {
    unsigned hash = before;
    for (; *text != 0; ++text)
        hash = hash * 257u + *text;
    return hash;
}

} // namespace qzr
