// A local file by its handle.
#pragma once

#include "core/win_handle.h"
#include "qzexception.h"

#include <cstdint>

namespace qzr {

// The operation number that failures of a file carry all its life.
QZFileOperation access_kind(int mode) noexcept;

// Holds the file open, and makes room in it before anybody reaches for that room through a view: the system
// takes storage for what is written by call, and a full disk is an error then; a store through a view that
// finds the disk full ends the program.
class DiskFile {
public:
    // Opens by the bits of QZFileMode. The path must outlive the object. Throws CXFileException.
    DiskFile(const wchar_t* path, int mode);

    HANDLE handle() const noexcept { return handle_.get(); }

    // The bytes that may be mapped: data, then zeroes. Never less than what was written.
    std::uint64_t size() const noexcept { return size_; }

    // Writes at any place; a gap behind the old end reads as zeroes. On failure the bytes of that range are
    // undefined. Throws.
    void write(std::uint64_t offset, const void* data, unsigned count);

    // Makes room up to `end` at least, ahead of small pieces that will be written from `from` on. Throws.
    void make_room(std::uint64_t from, std::uint64_t end);

    // From now on the file ends in an UnfinishedMark, as soon as it has any bytes. Throws.
    void mark_unfinished();

    // Brings the first `length` bytes to the disk as the whole document, with no view open. Throws.
    void settle(std::uint64_t length);

    // Ends a written file at `length` and closes it, whatever fails. @return 0, or the error of the system
    DWORD close(std::uint64_t length) noexcept;

    void close_uncut() noexcept { handle_.reset(); }

private:
    DWORD cut(std::uint64_t length) noexcept;
    DWORD go_to(std::uint64_t offset) noexcept;
    DWORD put(std::uint64_t& offset, const void* data, std::uint64_t count) noexcept;
    DWORD put_zeroes(std::uint64_t& from, std::uint64_t to) noexcept;
    DWORD put_mark(std::uint64_t end) noexcept;
    DWORD move_mark_behind(std::uint64_t end) noexcept;
    DWORD fill_up_to(std::uint64_t from, std::uint64_t end) noexcept;
    void check(DWORD error) const;

    const wchar_t* const path_;
    const QZFileOperation operation_;
    FileHandle handle_;
    std::uint64_t size_ = 0;
    std::uint64_t disk_end_ = 0; // the size for the system: room that was half made, and the mark
    std::uint64_t mark_end_ = 0; // 0 while there is no mark
    std::uint64_t pointer_ = 0;  // where the system writes next
    bool marked_ = false;
};

} // namespace qzr
