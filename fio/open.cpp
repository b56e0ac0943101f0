// Opening files: the path tells what kind of file it is.
#include "core/scope_exit.h"
#include "core/system_error.h"
#include "fio/mapped_file.h"
#include "fio/memory_file.h"
#include "fio/out_file.h"
#include "fio/temp_name.h"
#include "qzurl.h"

#include <new>

using namespace qzr;

namespace {

IXFile* open_new_temporary(int mode) {
    wchar_t directory[kPathUnits] = L"";
    wchar_t path[kPathUnits] = L"";
    DWORD error = temp_directory(directory);
    if (error == ERROR_SUCCESS) error = make_temp_file(directory, path);
    if (error != ERROR_SUCCESS) throw_file_error(access_kind(mode), directory, error);
    ScopeExit undo([&path] { DeleteFileW(path); });
    IXFile* const file = new (std::nothrow) CXFile(path, mode);
    if (file != nullptr) undo.dismiss();
    return file;
}

} // namespace

int Fio_IsMemFile(const wchar_t* path) { return is_memory_path(path) ? 1 : 0; }

IXFile* Fio_Open(const wchar_t* path, int mode) {
    if (path == nullptr) return open_new_temporary(mode);
    if (is_memory_path(path)) return new (std::nothrow) CXMemFile<IXFile>(path);
    if (is_url_path(path)) return Fio_UrlOpen(path, mode);
    return new (std::nothrow) CXFile(path, mode);
}

IXOutFile* Fio_OpenOut(const wchar_t* path, int mode) {
    if (is_memory_path(path)) return new (std::nothrow) CXMemOutFile(path);
    if (is_url_path(path)) return Fio_UrlOpenOut(path, mode);
    return open_out_file(path, mode);
}
