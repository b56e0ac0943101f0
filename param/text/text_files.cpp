#include "param/text/text_files.h"

#include "core/windows_lean.h"
#include "fio/path_kind.h"
#include "param/system_text.h"
#include "qzfileio.h"

#include <algorithm>

namespace qzr {

namespace {

constexpr std::size_t kLargestPiece = 1 << 30;

std::wstring directory_of(const std::wstring& path) {
    const std::size_t last = path.find_last_of(L"\\/");
    return last != std::wstring::npos ? path.substr(0, last + 1) : std::wstring();
}

int compared(const std::wstring& a, const std::wstring& b) {
    return CompareStringOrdinal(a.c_str(), static_cast<int>(a.size()), b.c_str(), static_cast<int>(b.size()),
                                TRUE);
}

} // namespace

std::wstring full_path(const std::wstring& name) {
    if (is_memory_path(name.c_str()) || is_url_path(name.c_str())) return name;
    std::wstring path;
    DWORD room = MAX_PATH;
    for (;;) {
        path.resize(room);
        const DWORD needed = GetFullPathNameW(name.c_str(), room, path.data(), nullptr);
        if (needed < room) {
            path.resize(needed); // 0 for a name that is refused
            return path;
        }
        room = needed;
    }
}

std::wstring named_file(std::string_view name, const std::wstring& from) {
    std::wstring path = system_text(std::string(name).c_str()).GetData();
    if (path.empty()) return path;
    if (path.front() == L'.') path.insert(0, directory_of(from));
    return full_path(path);
}

bool same_file(const std::wstring& a, const std::wstring& b) { return compared(a, b) == CSTR_EQUAL; }

bool FileOrder::operator()(const std::wstring& a, const std::wstring& b) const {
    return compared(a, b) == CSTR_LESS_THAN;
}

// Piece by piece, each as large as all before it; the first one has room for the size expected and a byte
// that tells that there is no more. The size is not asked for: that of a block of memory is whatever its name
// says, and a file of 2 GiB and more has none to tell.
std::string read_text_file(const std::wstring& path, std::size_t expected) {
    const qz::File file(path.c_str());
    std::string content;
    for (std::size_t next = expected + 1;; next = content.size()) {
        const std::size_t before = content.size();
        const std::size_t piece = std::min(next, kLargestPiece);
        content.resize(before + piece);
        const std::size_t got = file->Read(content.data() + before, static_cast<unsigned>(piece));
        if (got == piece) continue;
        content.resize(before + got);
        return content;
    }
}

bool try_read_text_file(const std::wstring& path, std::size_t expected, std::string& content) {
    content.clear();
    try {
        content = read_text_file(path, expected);
        return true;
    } catch (const CXMemException&) {
        throw;
    } catch (const CXException&) {
        return false;
    }
}

} // namespace qzr
