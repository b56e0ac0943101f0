#include "fio/file_info.h"

#include "core/system_error.h"
#include "core/win_handle.h"
#include "fio/error_mode.h"
#include "fio/ftp_lookup.h"
#include "fio/path_kind.h"
#include "qzurl.h"
#include "string/scan.h"

namespace qzr {

namespace {

// Finds the first file that the path, or a pattern in it, names. @return 0, or the error of the system
DWORD find_first(const wchar_t* path, WIN32_FIND_DATAW& found) noexcept {
    if (path == nullptr) return ERROR_PATH_NOT_FOUND;
    const QuietErrorMode quiet;
    const FindHandle search(FindFirstFileW(path, &found));
    return search ? ERROR_SUCCESS : last_error();
}

// Asks for the attributes, which costs a tenth of looking a name up in its directory. Only a yes is an
// answer: what else directories know by that name, or refuse to tell, is found out there. Nor is a stream of
// a file an entry of its own, or a file with a delimiter behind its name.
bool is_surely_there(const wchar_t* path) noexcept {
    if (path == nullptr) return false;
    const std::size_t length = text_length(path, kPathUnits);
    if (length < 2 || length == kPathUnits || find_unit(path + 2, path + length, L':') != nullptr ||
        path[length - 1] == L'\\' || path[length - 1] == L'/')
        return false;
    const QuietErrorMode quiet;
    constexpr DWORD kNotAFile = FILE_ATTRIBUTE_DIRECTORY; // set in INVALID_FILE_ATTRIBUTES as well
    return (GetFileAttributesW(path) & kNotAFile) == 0;
}

} // namespace

void fill_file_info(const WIN32_FIND_DATAW& found, FioFileInfo& info) noexcept {
    SYSTEMTIME time = {};
    FileTimeToSystemTime(&found.ftLastWriteTime, &time);
    info = {found.nFileSizeLow, time.wSecond,    time.wMinute, time.wHour,
            time.wDay,          time.wDayOfWeek, time.wMonth,  time.wYear};
}

} // namespace qzr

void Fio_GetFileInfo(const wchar_t* path, FioFileInfo* info) {
    if (qzr::is_memory_path(path)) {
        if (info != nullptr) info->size = static_cast<unsigned>(qzr::parse_memory_path(path).size);
        return;
    }
    if (qzr::is_url_path(path)) {
        Fio_UrlGetFileInfo(path, info);
        return;
    }
    WIN32_FIND_DATAW found;
    const DWORD error = qzr::find_first(path, found);
    if (error != ERROR_SUCCESS) qzr::throw_file_error(QZOP_FILE_INFO, path, error);
    if (info != nullptr) qzr::fill_file_info(found, *info);
}

int Fio_IsFileExist(const wchar_t* path) {
    if (qzr::is_memory_path(path)) return 1;
    WIN32_FIND_DATAW found;
    if (qzr::is_url_path(path)) return qzr::remote_exists(path) ? 1 : 0;
    return qzr::is_surely_there(path) || qzr::find_first(path, found) == ERROR_SUCCESS ? 1 : 0;
}
