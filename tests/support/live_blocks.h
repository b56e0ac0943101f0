// Leaks of the library's memory: the number of blocks in use in its default heap.
#pragma once

#include <cstddef>

// Blocks in use now. Recycled blocks that wait for their next use count too, so measure after a first round.
std::size_t live_blocks();
