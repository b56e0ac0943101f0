// Creating compound files: in a file, in memory, or in a temporary file.
#include "core/scope_exit.h"
#include "core/win_handle.h"
#include "qzfile.h"
#include "stream/ole_storage.h"
#include "stream/stg_error.h"

#include <utility>

namespace qzr {

namespace {

using ByteArray = CQZRef<ILockBytes>;

// The systems before the NT line cannot work without a scratch file unless they are told to.
DWORD scratch_flag(int mode) {
    const DWORD version = GetVersion();
    const bool before_nt = (version & 0x80000000) != 0 && HIBYTE(LOWORD(version)) >= 4;
    const int kReadTransacted = QZSTORAGE_READ_ONLY | QZSTORAGE_TRANSACTED;
    return before_nt && (mode & kReadTransacted) == kReadTransacted ? STGM_NOSCRATCH : 0;
}

DWORD create_flags(int mode) {
    return storage_flags(mode) | STGM_CREATE |
           ((mode & QZSTORAGE_DELETE_ON_RELEASE) != 0 ? STGM_DELETEONRELEASE : 0) | scratch_flag(mode);
}

// Memory that grows and goes with the byte array around it.
HRESULT make_byte_array(ByteArray& array) {
    constexpr SIZE_T kInitialBytes = 100000;
    GlobalMemory memory(GlobalAlloc(GMEM_MOVEABLE, kInitialBytes));
    if (!memory) return STG_E_INSUFFICIENTMEMORY;
    const HRESULT result = CreateILockBytesOnHGlobal(memory.get(), TRUE, array.Put());
    if (SUCCEEDED(result)) memory.release();
    return result;
}

// The storage holds the only reference to its byte array.
HRESULT create_in_memory(int mode, IStorage** created) {
    // Of a file the platform says so itself, of a byte array not everywhere.
    if ((mode & QZSTORAGE_READ_ONLY) != 0) return STG_E_INVALIDFLAG;
    ByteArray array;
    const HRESULT result = make_byte_array(array);
    if (FAILED(result)) return result;
    return StgCreateDocfileOnILockBytes(array.Get(), create_flags(mode), 0, created);
}

HRESULT create_in_file(const wchar_t* path, int mode, IStorage** created) {
    return StgCreateDocfile(path, create_flags(mode), 0, created);
}

IXStorage* new_memory_storage(int mode) {
    auto made = CStorage::make(nullptr, mode);
    check_storage(create_in_memory(mode, made->place()), QZOP_OPEN, nullptr);
    return made.Detach();
}

IXStorage* new_file_storage(const wchar_t* path, int mode) {
    const CXStringW directory = CXStringW(path).FilePath();
    Fio_CreateDirectory(directory.GetData());
    auto made = CStorage::make(path, mode);
    check_storage(create_in_file(path, mode, made->place()), QZOP_OPEN, path);
    return made.Detach();
}

// The unique name is that of a file that exists already; without a storage in it it does not stay.
IXStorage* new_temporary_storage(int mode) {
    const CXStringW path = Fio_GetTempFileName();
    ScopeExit remove_file([&] { DeleteFileW(path.GetData()); });
    auto made = CStorage::make(path.GetData(), mode); // goes before the file does
    check_storage(create_in_file(path.GetData(), mode, made->place()), QZOP_OPEN, path.GetData());
    remove_file.dismiss();
    return made.Detach();
}

} // namespace

} // namespace qzr

IXStorage* new_Storage(const wchar_t* path, int mode) {
    if ((mode & QZSTORAGE_TEMPORARY) != 0) return qzr::new_temporary_storage(mode);
    return path != nullptr ? qzr::new_file_storage(path, mode) : qzr::new_memory_storage(mode);
}
