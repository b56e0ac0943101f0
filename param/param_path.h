// Names and paths of parameter trees: components, and the hash by which names are matched.
#pragma once

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

// The component that a path begins with. In a double-byte code page a trail byte with the value of "\"
// separates nothing.
PathPart first_part(const char* path);

// The last "\" of a path, or null.
const char* last_separator(const char* path);

// A name that is no path: "\" is an ordinary character in it.
PathPart whole_name(const char* name);

// A child's name, where null counts as empty, and a value's, where null and empty stand for the default
// value.
inline const char* child_name(const char* name) { return name != nullptr ? name : ""; }
inline const char* value_name(const char* name) { return name != nullptr && *name != '\0' ? name : "@"; }

} // namespace qzr
