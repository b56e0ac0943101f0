// How the names of sections make a tree.
#pragma once

#include "core/allocator.h"

#include <string>
#include <string_view>

namespace qzr {

constexpr char kRootSection[] = "\\";

using HeapText = std::basic_string<char, std::char_traits<char>, HeapAllocator<char>>;

// With the ASCII letters in lower case. The platform may take more names for one, as its language has it, but
// never fewer. Throws CXMemException.
HeapText folded(std::string_view name);

// Tells what other sections are to one.
class SectionPlace {
public:
    // Throws CXMemException.
    explicit SectionPlace(std::string_view section);

    // Whether a section is this one or below it. Throws CXMemException.
    bool holds(std::string_view other) const;

    // The name of the child that a section is, or is below; empty when it is no such section. To the root
    // every other section is, whether its name begins with "\" or not. Throws CXMemException.
    std::string_view child_in(std::string_view other) const;

private:
    bool root_;
    HeapText prefix_; // folded, with a "\" at its end
};

} // namespace qzr
