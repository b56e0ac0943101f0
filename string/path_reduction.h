// Shortening a rooted path for display.
#pragma once

#include "core/allocator.h"

#include <string>

namespace qzr {

using PathText = std::basic_string<wchar_t, std::char_traits<wchar_t>, HeapAllocator<wchar_t>>;

// Replaces directories in the middle of a path by "...\" until it has at most max_length characters or only
// the root, one directory and the last component are left. Each element of `path` is one character.
// @return whether the path fits or has a root ("X:\" or "\\server\"); without one it stays as it is
bool reduce_path(PathText& path, int max_length);

} // namespace qzr
