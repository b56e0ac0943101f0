#include "fio/mapped_window.h"

#include "core/system_error.h"

namespace qzr {

DWORD MappedWindow::map(HANDLE file, std::uint64_t size, bool writable) noexcept {
    if (!unmap()) return last_error();
    mapping_ =
        KernelHandle(CreateFileMappingW(file, nullptr, writable ? PAGE_READWRITE : PAGE_READONLY,
                                        static_cast<DWORD>(size >> 32), static_cast<DWORD>(size), nullptr));
    if (!mapping_) return last_error();
    view_ = ViewHandle(MapViewOfFile(mapping_.get(), writable ? FILE_MAP_WRITE : FILE_MAP_READ, 0, 0,
                                     static_cast<SIZE_T>(size)));
    if (!view_) {
        const DWORD error = last_error();
        mapping_.reset();
        return error;
    }
    size_ = size;
    return ERROR_SUCCESS;
}

bool MappedWindow::unmap() noexcept {
    size_ = 0;
    const bool view_gone = !view_ || UnmapViewOfFile(view_.release()) != FALSE;
    const bool mapping_gone = !mapping_ || CloseHandle(mapping_.release()) != FALSE;
    return view_gone && mapping_gone;
}

} // namespace qzr
