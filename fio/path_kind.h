// The three kinds of path that the file functions take: a block of memory, a URL, and everything else.
#pragma once

namespace qzr {

// Places in the path buffers of this folder, terminator included.
constexpr unsigned kPathUnits = 512;

// A path that begins with "fmem::", whatever the case. Null is none.
bool is_memory_path(const wchar_t* path) noexcept;

// A path that the platform takes for a URL and that is no memory path: the platform's test alone would claim
// those too. Null is none.
bool is_url_path(const wchar_t* path) noexcept;

// What stands behind the prefix of a memory path: two decimal numbers between ',' and '.', 32 bits each. A
// missing one is 0.
struct MemoryBlockName {
    int address;
    int size;
};
MemoryBlockName parse_memory_path(const wchar_t* path);

} // namespace qzr
