// How far memory that a caller or a file names may be read. The answer is one of the moment: another thread
// may take the memory away.
#pragma once

#include <cstddef>

namespace qzr {

// A run of like pages.
struct MemoryRegion {
    const std::byte* end = nullptr;   // null when the address cannot be read
    const void* allocation = nullptr; // the start of what was allocated or mapped in one piece
};
MemoryRegion readable_region(const void* address) noexcept;

// Bytes that may be read from address on, through neighbouring regions, `most` at most. Whoever has to
// survive that memory goes lets the system do the reading.
std::size_t readable_bytes(const void* address, std::size_t most) noexcept;

} // namespace qzr
