// Directories: making them with all that leads to them, removing them, the current one.
#include "core/system_error.h"
#include "fio/path_kind.h"
#include "qzstring.h"
#include "qzurl.h"

#include <cwchar>
#include <string_view>

namespace qzr {

namespace {

constexpr wchar_t kDelimiters[] = L"\\/";

bool is_delimiter(wchar_t c) { return c == L'\\' || c == L'/'; }

// Where the part of a path begins that can be created: behind the computer and the share of "\\server\share",
// which long paths write as "\\?\UNC\server\share", else at its start.
const wchar_t* skip_network_root(const wchar_t* path) {
    if (!is_delimiter(path[0]) || !is_delimiter(path[1])) return path;
    constexpr std::wstring_view kLong = L"\\\\?\\UNC\\";
    const int components = _wcsnicmp(path, kLong.data(), kLong.size()) == 0 ? 4 : 2;
    const wchar_t* p = path + 2;
    for (int component = 0; component < components; ++component) {
        p += std::wcscspn(p, kDelimiters);
        if (*p != L'\0') ++p;
    }
    return p;
}

// Another thread may be making the same directories: one that appeared meanwhile is as good as made.
void create_missing(const wchar_t* path) {
    if (Fio_IsFileExist(path) != 0 || CreateDirectoryW(path, nullptr) != FALSE) return;
    const DWORD error = last_error();
    if (error != ERROR_ALREADY_EXISTS) throw_file_error(QZOP_CREATE_DIRECTORY, path, error);
}

// Every prefix of the path that ends before a delimiter, or at its end, from the shortest on. What names
// nothing of its own is left out: the empty one, a drive, the second of two delimiters in a row.
void create_with_parents(const wchar_t* path) {
    CXStringW text(path);
    wchar_t* const begin = text.GetBuffer(static_cast<int>(text.GetSize()));
    for (wchar_t* p = begin + (skip_network_root(path) - path); *p != L'\0';) {
        wchar_t* const end = p + std::wcscspn(p, kDelimiters);
        const wchar_t delimiter = *end;
        if (end != p && end[-1] != L':') {
            *end = L'\0';
            create_missing(begin);
            *end = delimiter;
        }
        p = delimiter != L'\0' ? end + 1 : end;
    }
}

} // namespace

} // namespace qzr

void Fio_CreateDirectory(const wchar_t* path) {
    if (path == nullptr || *path == L'\0' || qzr::is_memory_path(path)) return;
    if (qzr::is_url_path(path)) {
        Fio_UrlCreateDirectory(path);
        return;
    }
    if (Fio_IsFileExist(path) == 0) qzr::create_with_parents(path);
}

void Fio_DeleteDirectory(const wchar_t* path) {
    if (RemoveDirectoryW(path) == FALSE) qzr::throw_file_error(QZOP_REMOVE_DIRECTORY, path);
}

// A directory that does not fit leaves the empty text.
void Fio_GetCurrentDirectory(wchar_t* buffer, int size) {
    if (buffer == nullptr || size <= 0) return;
    const DWORD room = static_cast<DWORD>(size);
    const DWORD length = GetCurrentDirectoryW(room, buffer);
    if (length == 0 || length >= room) *buffer = L'\0';
}

void Fio_SetCurrentDirectory(const wchar_t* path) {
    if (SetCurrentDirectoryW(path) == FALSE) qzr::throw_file_error(QZOP_CHANGE_DIRECTORY, path);
}
