// Opening compound files, and wrapping storages that come from outside.
#include "qzurl.h"
#include "stream/ole_storage.h"
#include "stream/sector_tables.h"
#include "stream/stg_error.h"

#include <utility>

namespace qzr {

namespace {

IXStorage* open_compound_file(const wchar_t* path, int mode) {
    const int storage_mode = mode == 0 ? QZSTORAGE_TRANSACTED : QZSTORAGE_READ_ONLY;
    check_storage(make_tables_safe(path, mode == 0), QZOP_OPEN, path);
    auto opened = CStorage::make(path, storage_mode);
    check_storage(StgOpenStorage(path, nullptr, storage_flags(storage_mode), nullptr, 0, opened->place()),
                  QZOP_OPEN, path);
    return opened.Detach();
}

// What the platform's own mode says in ours.
int storage_mode_of(DWORD platform_mode) {
    const bool writable = (platform_mode & (STGM_WRITE | STGM_READWRITE)) != 0;
    return ((platform_mode & STGM_TRANSACTED) != 0 ? QZSTORAGE_TRANSACTED : 0) |
           (writable ? 0 : QZSTORAGE_READ_ONLY);
}

} // namespace

} // namespace qzr

// Memory paths look like URLs to the platform; they go to its storages as they stand.
IXStorage* open_Storage(const wchar_t* path, int mode) {
    const bool remote = Fio_IsMemFile(path) == 0 && Fio_PathIsURL(path) != 0;
    return remote ? open_UrlStorage(path, L"", mode) : qzr::open_compound_file(path, mode);
}

IXStorage* new_StorageByOleStorage(void* platformStorage) {
    using namespace qzr;
    auto storage = PlatformStorage::Share(static_cast<IStorage*>(platformStorage));
    STATSTG statistics = {};
    check_storage(storage ? storage->Stat(&statistics, STATFLAG_NONAME) : STG_E_INVALIDPOINTER, QZOP_OPEN,
                  nullptr);
    auto wrapped = CStorage::make(L"", storage_mode_of(statistics.grfMode));
    *wrapped->place() = storage.Detach();
    return wrapped.Detach();
}
