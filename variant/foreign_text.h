// Reading text at an address that nobody vouches for.
#pragma once

#include <cstddef>

namespace qzr {

// Copies the text at address, up to its terminator, the first byte that cannot be read, or size - 1 bytes,
// and terminates it. Never faults, whatever the address.
// @return bytes copied, the terminator not counted
std::size_t copy_foreign_text(unsigned long long address, char* buffer, std::size_t size);

} // namespace qzr
