#include "param/text_file.h"

#include "core/windows_lean.h"
#include "qzfile.h"
#include "qzref.h"
#include "qzstring.h"

#include <algorithm>

namespace qzr {

namespace {

constexpr unsigned kLeastPiece = 64 << 10;

std::wstring directory_of(const std::wstring& path) {
    const std::size_t last = path.find_last_of(L"\\/");
    return last != std::wstring::npos ? path.substr(0, last + 1) : std::wstring();
}

std::wstring full_path(const std::wstring& name) {
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

} // namespace

std::wstring named_file(std::string_view name, const std::wstring& from) {
    std::wstring path = CXStringW(std::string(name).c_str()).GetData();
    if (path.empty()) return path;
    if (path.front() == L'.') path.insert(0, directory_of(from));
    return full_path(path);
}

bool same_file(const std::wstring& a, const std::wstring& b) {
    return CompareStringOrdinal(a.c_str(), static_cast<int>(a.size()), b.c_str(), static_cast<int>(b.size()),
                                TRUE) == CSTR_EQUAL;
}

bool read_text_file(const std::wstring& path, std::string& content) {
    content.clear();
    try {
        const auto file = CQZRef<IXFile>::Adopt(Fio_Open(path.c_str(), QZFILE_READ));
        if (!file) return false;
        // A file of 2 GiB and more does not tell its size, but is read in sequence all the same.
        const unsigned piece = std::max(file->GetSize() + 1, kLeastPiece);
        for (unsigned got = piece; got == piece;) {
            const std::size_t have = content.size();
            content.resize(have + piece);
            got = file->Read(content.data() + have, piece);
            content.resize(have + got);
        }
        return true;
    } catch (const CXFileException&) {
        content.clear();
        return false;
    }
}

} // namespace qzr
