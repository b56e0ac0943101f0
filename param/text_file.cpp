#include "param/text_file.h"

#include "core/win_handle.h"
#include "core/windows_lean.h"
#include "qzstring.h"

#include <algorithm>

namespace qzr {

namespace {

constexpr long long kMostBytes = 0xFFFFFFFF; // of any file that the library opens

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

bool read_all(HANDLE file, char* to, std::size_t size) {
    constexpr std::size_t kMostAtOnce = 0x40000000;
    while (size != 0) {
        DWORD moved = 0;
        const DWORD wanted = static_cast<DWORD>(std::min(size, kMostAtOnce));
        if (ReadFile(file, to, wanted, &moved, nullptr) == 0 || moved == 0) return false;
        to += moved;
        size -= moved;
    }
    return true;
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
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    // A console or a pipe would wait for somebody to type.
    if (!file || GetFileType(file.get()) != FILE_TYPE_DISK) return false;
    LARGE_INTEGER size{};
    if (GetFileSizeEx(file.get(), &size) == 0 || size.QuadPart > kMostBytes) return false;
    content.resize(static_cast<std::size_t>(size.QuadPart));
    if (read_all(file.get(), content.data(), content.size())) return true;
    content.clear();
    return false;
}

} // namespace qzr
