// Where the parts of a path lie, as positions from its start. Both string classes find the two delimiters in
// their own way; what follows from them is the same.
#pragma once

#include <cstddef>

namespace qzr {

template <class Unit>
struct PathParts {
    const Unit* name;      // behind the last of ":\/", else the whole text
    const Unit* extension; // behind the dot, or null: the last of ":\/." is no dot
    const Unit* end;       // the terminator
    std::size_t directory; // units before the name, a colon included, a slash not
    bool has_directory;    // there is a delimiter at all
};

// `delimiter` is the last of ":\/", `dot` the last of ":\/."; either may be null.
template <class Unit>
PathParts<Unit> path_parts(const Unit* text, const Unit* end, const Unit* delimiter, const Unit* dot) {
    PathParts<Unit> parts{text, nullptr, end, 0, delimiter != nullptr};
    if (delimiter != nullptr) {
        parts.name = delimiter + 1;
        parts.directory = static_cast<std::size_t>(delimiter - text) + (*delimiter == ':' ? 1 : 0);
    }
    if (dot != nullptr && *dot == '.') parts.extension = dot + 1;
    return parts;
}

// The name without its extension and the dot.
template <class Unit>
std::size_t stem_length(const PathParts<Unit>& parts) {
    const Unit* const end = parts.extension != nullptr ? parts.extension - 1 : parts.end;
    return static_cast<std::size_t>(end - parts.name);
}

// Fills a buffer that may be null. @return n
template <class Unit>
int give_out(Unit* buffer, const Unit* text, std::size_t n) {
    if (buffer != nullptr) {
        for (std::size_t i = 0; i < n; ++i)
            buffer[i] = text[i];
        buffer[n] = 0;
    }
    return static_cast<int>(n);
}

} // namespace qzr
