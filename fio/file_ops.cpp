// Copying, deleting, renaming.
#include "core/system_error.h"
#include "fio/path_kind.h"
#include "qzurl.h"

// Where two paths are named, the one that is acted upon goes into the exception.

void Fio_CopyFile(const wchar_t* src, const wchar_t* dst, int failIfExists) {
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
    if (MoveFileW(from, to) == FALSE) qzr::throw_file_error(QZOP_RENAME, from);
}
