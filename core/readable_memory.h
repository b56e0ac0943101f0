// Asking what lies at an address that nobody vouches for.
#pragma once

#include <cstddef>

namespace qzr {

// Bytes that can be read from address on without a gap, of `wanted` at most. Memory may be taken away after
// it was asked for; whoever has to survive that lets the system do the reading.
std::size_t readable_bytes(const void* address, std::size_t wanted) noexcept;

} // namespace qzr
