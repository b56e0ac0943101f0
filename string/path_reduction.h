// Shortening a rooted path for display.
#pragma once

#include <string>

namespace qzr {

// Replaces directories in the middle of a path by "...\" until it has at most max_length characters or only
// the root, one directory and the last component are left. Each element of `path` is one character.
// @return whether the path fits or has a root ("X:\" or "\\server\"); without one it stays as it is
bool reduce_path(std::wstring& path, int max_length);

} // namespace qzr
