#include "fio/temp_name.h"

#include "core/system_error.h"
#include "fio/file_state.h"
#include "qzfile.h"

#include <cwchar>

namespace qzr {

DWORD temp_directory(wchar_t (&path)[kPathUnits]) noexcept {
    const DWORD length = GetTempPathW(kPathUnits, path);
    if (length == 0) return last_error();
    return length < kPathUnits ? ERROR_SUCCESS : ERROR_FILENAME_EXCED_RANGE;
}

// Not every platform's function keeps to MAX_PATH and refuses directories that leave no room for the name.
DWORD make_temp_file(const wchar_t* directory, wchar_t (&path)[kPathUnits]) noexcept {
    static_assert(kPathUnits >= MAX_PATH);
    constexpr std::size_t kNameUnits = sizeof "\\QZPFFFF.tmp";
    if (std::wcslen(directory) + kNameUnits > kPathUnits) return ERROR_BUFFER_OVERFLOW;
    constexpr UINT kUniqueByTheSystem = 0;
    return GetTempFileNameW(directory, L"QZPR", kUniqueByTheSystem, path) != 0 ? ERROR_SUCCESS : last_error();
}

} // namespace qzr

const wchar_t* Fio_GetTempFileName() {
    wchar_t directory[qzr::kPathUnits] = L"";
    wchar_t path[qzr::kPathUnits] = L"";
    DWORD error = qzr::temp_directory(directory);
    if (error == ERROR_SUCCESS) error = qzr::make_temp_file(directory, path);
    if (error != ERROR_SUCCESS) qzr::throw_file_error(QZOP_OPEN, directory, error);
    return std::wmemcpy(qzr::file_state().temp_path, path, qzr::kPathUnits);
}
