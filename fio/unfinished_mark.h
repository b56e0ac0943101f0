// The end of a temporary file that is not yet a whole document.
//
// From its first byte on, a temporary file of an output file ends in this record, behind everything else; the
// commit cuts it off. So a temporary file that a stopped program left behind is a whole document when it does
// not end so. docs/commit.md tells more.
#pragma once

#include <cstdint>

namespace qzr {

struct UnfinishedMark {
    static constexpr char kName[17] = "QZR-UNFINISHED-1";
    static constexpr std::uint64_t kNotWhole = ~std::uint64_t{0};

    char name[16];            // kName without its terminator
    std::uint64_t end;        // where the record ends, the size of the file: no other place is the mark's
    std::uint64_t whole_size; // kNotWhole; readers take another number for the size of a whole document
};
static_assert(sizeof(UnfinishedMark) == 32, "as stored, little-endian");

} // namespace qzr
