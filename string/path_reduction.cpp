#include "string/path_reduction.h"

#include <cstdint>

namespace qzr {
namespace {

constexpr wchar_t kEllipsis[] = L"...\\";
constexpr std::int64_t kEllipsisLength = 4;
constexpr std::size_t kNone = PathText::npos;

// The backslash that ends the root, or kNone.
std::size_t root_end(const PathText& path) {
    if (path.size() > 2 && path[1] == L':' && path[2] == L'\\') return 2;
    if (path.size() > 1 && path[0] == L'\\' && path[1] == L'\\') return path.find(L'\\', 2);
    return kNone;
}

} // namespace

bool reduce_path(PathText& path, int max_length) {
    const auto length = static_cast<std::int64_t>(path.size());
    if (max_length >= length) return true;
    const std::size_t root = root_end(path);
    if (root == kNone) return false;
    const std::size_t last = path.rfind(L'\\');
    if (last <= root) return true;

    // The first directory behind the root stays.
    const std::size_t second = path.find(L'\\', root + 1);
    const std::size_t cut = second < last ? second : root;

    // The last component never shrinks; when it does not fit, everything else goes.
    const std::int64_t tail = length - static_cast<std::int64_t>(last);
    const bool tail_fits = tail + 1 + kEllipsisLength <= max_length;
    const std::int64_t target = tail_fits ? max_length : tail + 5 + kEllipsisLength;

    // `last` counts in the unshortened text throughout: callers rely on where the loop stops.
    for (std::size_t next; (next = path.find(L'\\', cut + 1)) != kNone;) {
        path.erase(cut, next - cut);
        if (static_cast<std::int64_t>(path.size()) + kEllipsisLength <= target || next >= last) break;
    }
    path.insert(cut + 1, kEllipsis);
    return true;
}

} // namespace qzr
