// Names and paths of parameter trees: components, and the hash by which names are matched.
#pragma once

#include "core/name_hash.h"
#include "string/multibyte.h"

#include <array>
#include <string_view>

namespace qzr {

// One component of a path, or a whole name. The text stays the caller's.
struct PathPart {
    const char* begin;
    const char* end; // at the "\" or at the terminating zero
    unsigned hash;   // of the folded bytes

    bool last() const { return *end == '\0'; }
    bool empty() const { return begin == end; }
    const char* rest() const { return end + 1; } // what follows the "\"; not of the last component
    std::string_view text() const { return {begin, static_cast<std::size_t>(end - begin)}; }
};

namespace detail {

// The folded value of each ASCII character that just adds to the hash; 0 for those that need a closer look:
// the end, the separator, and all from 0x80 on, which may be lead bytes.
constexpr std::array<unsigned char, 256> plain_characters() {
    std::array<unsigned char, 256> plain{};
    for (unsigned char c = 1; c < 0x80; ++c)
        plain[c] = c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c - 'A' + 'a') : c;
    plain['\\'] = 0;
    return plain;
}
inline constexpr std::array<unsigned char, 256> kPlain = plain_characters();

inline unsigned plain(char c) { return kPlain[static_cast<unsigned char>(c)]; }

} // namespace detail

// The component that a path begins with. In a double-byte code page a trail byte with the value of "\"
// separates nothing.
inline PathPart first_part(const char* path) {
    unsigned hash = 0;
    const char* end = path;
    while (true) {
        unsigned first = 0, second = 0;
        // Two at a time: each step of the hash waits for the one before.
        while ((first = detail::plain(end[0])) != 0 && (second = detail::plain(end[1])) != 0) {
            hash = hash * (257u * 257u) + (first * 257u + second);
            end += 2;
        }
        if (first != 0) {
            hash = hash * 257u + first;
            ++end;
        }
        if (*end == '\0' || *end == '\\') return {path, end, hash};
        const bool double_byte = end[1] != '\0' && is_lead(static_cast<unsigned char>(*end));
        for (int bytes = double_byte ? 2 : 1; bytes > 0; --bytes)
            hash = hash * 257u + hash_name_folded({end++, 1});
    }
}

// The last "\" of a path, or null.
const char* last_separator(const char* path);

// A name that is no path: "\" is an ordinary character in it.
PathPart whole_name(const char* name);

// A child's name, where null counts as empty, and a value's, where null and empty stand for the default
// value.
inline const char* child_name(const char* name) { return name != nullptr ? name : ""; }
inline const char* value_name(const char* name) { return name != nullptr && *name != '\0' ? name : "@"; }

} // namespace qzr
