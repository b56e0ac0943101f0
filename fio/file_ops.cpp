// Copying, deleting, renaming.
#include "core/system_error.h"
#include "fio/path_kind.h"
#include "qzexception.h"
#include "qzurl.h"

// Where two paths are named, the one that is acted upon goes into the exception.

namespace {

// A block of memory has no place among files, but a file system may take its name for one of a file.
void require_files(const wchar_t* from, const wchar_t* to, QZFileOperation operation) {
    if (qzr::is_memory_path(from) || qzr::is_memory_path(to))
        throw CXFileException(QZERR_BAD_PATH, operation, from);
}

} // namespace

void Fio_CopyFile(const wchar_t* src, const wchar_t* dst, int failIfExists) {
    require_files(src, dst, QZOP_COPY);
    if (CopyFileW(src, dst, failIfExists != 0) == FALSE) qzr::throw_file_error(QZOP_COPY, src);
}

void Fio_DeleteFile(const wchar_t* path) {
    if (qzr::is_memory_path(path)) return;
    if (qzr::is_url_path(path)) {
        Fio_UrlDeleteFile(path); // callers delete what may be missing, without minding
        return;
    }
    if (DeleteFileW(path) == FALSE) qzr::throw_file_error(QZOP_DELETE, path);
}

void Fio_RenameFile(const wchar_t* from, const wchar_t* to) {
    require_files(from, to, QZOP_RENAME);
    if (MoveFileW(from, to) == FALSE) qzr::throw_file_error(QZOP_RENAME, from);
}
