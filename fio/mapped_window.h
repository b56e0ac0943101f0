// The part of a file that lies in memory.
#pragma once

#include "core/win_handle.h"

#include <cstdint>

namespace qzr {

// A view of the first bytes of a file. One view reaches over everything that is mapped: files hold at most
// 4 GiB, which is nothing beside the address space, and a view that has to be moved costs more than the bytes
// it shows.
class MappedWindow {
public:
    // Replaces the view by one of `size` bytes, which the file must have. On failure there is none.
    // @return 0, or the error of the system
    DWORD map(HANDLE file, std::uint64_t size, bool writable) noexcept;

    // @return false when the system did not let go of the view or of the mapping; both are forgotten then
    bool unmap() noexcept;

    unsigned char* data() const noexcept { return static_cast<unsigned char*>(view_.get()); }
    std::uint64_t size() const noexcept { return size_; } // 0 without a view

private:
    KernelHandle mapping_;
    ViewHandle view_;
    std::uint64_t size_ = 0;
};

} // namespace qzr
