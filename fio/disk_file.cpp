#include "fio/disk_file.h"

#include "core/system_error.h"
#include "fio/unfinished_mark.h"
#include "qzfile.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace qzr {

namespace {

constexpr std::uint64_t kMostBytes = std::numeric_limits<unsigned>::max();
constexpr std::uint64_t kPage = 4096;
constexpr std::uint64_t kLeastStep = 64 << 10; // by which files grow
constexpr std::uint64_t kMostRoomStep = 4 << 20;
constexpr std::uint64_t kMostMarkStep = 16 << 20; // a mark costs no more for standing far away

constexpr std::uint64_t kSmallDocument = 64 << 10;

constinit unsigned char zeroes[64 << 10] = {}; // not const, so that the image does not carry them

constexpr std::uint64_t round_up(std::uint64_t n, std::uint64_t unit) { return (n + unit - 1) / unit * unit; }

bool has(int mode, QZFileMode bit) noexcept { return (mode & bit) != 0; }

FileHandle open_file(const wchar_t* path, int mode) noexcept {
    const DWORD hint = has(mode, QZFILE_RANDOM) ? FILE_FLAG_RANDOM_ACCESS : FILE_FLAG_SEQUENTIAL_SCAN;
    if (!has(mode, QZFILE_WRITE)) {
        constexpr DWORD kAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE;
        return FileHandle(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, kAttributes | hint, nullptr));
    }
    const DWORD disposition = has(mode, QZFILE_KEEP) ? OPEN_EXISTING : CREATE_ALWAYS;
    const DWORD attributes = has(mode, QZFILE_TEMPORARY)
                                 ? DWORD{FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE}
                                 : DWORD{FILE_ATTRIBUTE_ARCHIVE};
    constexpr DWORD kShareWithNobody = 0;
    return FileHandle(CreateFileW(path, GENERIC_READ | GENERIC_WRITE, kShareWithNobody, nullptr, disposition,
                                  attributes | hint, nullptr));
}

} // namespace

QZFileOperation access_kind(int mode) noexcept { return has(mode, QZFILE_WRITE) ? QZOP_WRITE : QZOP_READ; }

DiskFile::DiskFile(const wchar_t* path, int mode)
    : path_(path), operation_(access_kind(mode)), handle_(open_file(path, mode)) {
    if (!handle_) throw_file_error(operation_, path_);
    // A console or a pipe has no size, and reading it would wait for somebody to type.
    if (GetFileType(handle()) != FILE_TYPE_DISK) throw_file_error(operation_, path_, ERROR_INVALID_HANDLE);
    if (has(mode, QZFILE_WRITE) && !has(mode, QZFILE_KEEP)) return; // it was emptied
    LARGE_INTEGER size = {};
    if (GetFileSizeEx(handle(), &size) == FALSE) throw_file_error(operation_, path_);
    size_ = disk_end_ = static_cast<std::uint64_t>(size.QuadPart);
    if (size_ > kMostBytes) throw CXFileException(QZERR_DISK_FULL, operation_, path_);
}

void DiskFile::write(std::uint64_t offset, const void* data, unsigned count) {
    const std::uint64_t end = offset + count;
    check(move_mark_behind(end));
    const DWORD error = put(offset, data, count);
    if (error != ERROR_SUCCESS) {
        // What arrived behind the end must not show up when a later write leaves a gap there.
        std::uint64_t from = size_;
        put_zeroes(from, offset);
        check(error);
    }
    size_ = std::max(size_, end);
}

// On a disk that fills up the room is what it still takes: as much as fits, or as lies before the mark.
void DiskFile::make_room(std::uint64_t from, std::uint64_t end) {
    const std::uint64_t step = std::clamp(size_, kLeastStep, kMostRoomStep);
    const std::uint64_t ahead = std::min(round_up(std::max(end, size_ + step), kLeastStep), kMostBytes);
    DWORD error = fill_up_to(from, ahead);
    if (error != ERROR_SUCCESS && size_ < end && mark_end_ != 0)
        error = fill_up_to(from, std::clamp(mark_end_ - sizeof(UnfinishedMark), end, ahead));
    if (size_ < end) check(error);
}

void DiskFile::mark_unfinished() {
    marked_ = true;
    if (size_ != 0) check(move_mark_behind(size_));
}

// A large document may be on its way to the disk when the power fails, so it keeps its mark until all of it
// has arrived, and close() cuts that off. A small one is there in no time; cutting first spares the disk the
// mark's block.
void DiskFile::settle(std::uint64_t length) {
    if (length <= kSmallDocument) check(cut(length));
    if (FlushFileBuffers(handle()) == FALSE) check(last_error());
}

DWORD DiskFile::close(std::uint64_t length) noexcept {
    const DWORD error = handle_ && operation_ == QZOP_WRITE ? cut(length) : ERROR_SUCCESS;
    handle_.reset();
    return error;
}

DWORD DiskFile::cut(std::uint64_t length) noexcept {
    if (disk_end_ == length) return ERROR_SUCCESS;
    if (const DWORD error = go_to(length); error != ERROR_SUCCESS) return error;
    if (SetEndOfFile(handle()) == FALSE) return last_error();
    disk_end_ = length;
    return ERROR_SUCCESS;
}

// Writing in sequence needs no call of its own for the place, and an offset in the call itself would be
// dearer than both.
DWORD DiskFile::go_to(std::uint64_t offset) noexcept {
    if (offset == pointer_) return ERROR_SUCCESS;
    LARGE_INTEGER place = {};
    place.QuadPart = static_cast<LONGLONG>(offset);
    if (SetFilePointerEx(handle(), place, nullptr, FILE_BEGIN) == FALSE) return last_error();
    pointer_ = offset;
    return ERROR_SUCCESS;
}

// Moves offset on by what was written. The system may write less than asked for on a disk that fills up; the
// next call tells why.
DWORD DiskFile::put(std::uint64_t& offset, const void* data, std::uint64_t count) noexcept {
    const auto* from = static_cast<const unsigned char*>(data);
    if (const DWORD error = go_to(offset); error != ERROR_SUCCESS) return error;
    while (count != 0) {
        DWORD moved = 0;
        if (WriteFile(handle(), from, static_cast<DWORD>(count), &moved, nullptr) == FALSE)
            return last_error();
        if (moved == 0) return ERROR_DISK_FULL;
        from += moved;
        count -= moved;
        pointer_ = offset += moved;
        disk_end_ = std::max(disk_end_, offset);
    }
    return ERROR_SUCCESS;
}

DWORD DiskFile::put_zeroes(std::uint64_t& from, std::uint64_t to) noexcept {
    while (from < to) {
        const std::uint64_t count = std::min<std::uint64_t>(to - from, sizeof zeroes);
        if (const DWORD error = put(from, zeroes, count); error != ERROR_SUCCESS) return error;
    }
    return ERROR_SUCCESS;
}

DWORD DiskFile::put_mark(std::uint64_t end) noexcept {
    UnfinishedMark mark = {{}, end, UnfinishedMark::kNotWhole};
    std::memcpy(mark.name, UnfinishedMark::kName, sizeof mark.name);
    std::uint64_t place = end - sizeof mark;
    return put(place, &mark, sizeof mark);
}

// The new mark stands before the old one goes, so at no time does the file end without.
DWORD DiskFile::move_mark_behind(std::uint64_t end) noexcept {
    const std::uint64_t needed = round_up(end + sizeof(UnfinishedMark), kPage);
    if (!marked_ || end + sizeof(UnfinishedMark) <= mark_end_) return ERROR_SUCCESS;
    const std::uint64_t step = mark_end_ != 0 ? std::clamp(mark_end_, kLeastStep, kMostMarkStep) : 0;
    std::uint64_t next = std::max(needed, mark_end_ + step);
    DWORD error = put_mark(next);
    if (error != ERROR_SUCCESS && next != needed) error = put_mark(next = needed);
    std::uint64_t old_mark = mark_end_ - sizeof(UnfinishedMark);
    if (error == ERROR_SUCCESS && mark_end_ != 0) error = put_zeroes(old_mark, mark_end_);
    if (error == ERROR_SUCCESS) mark_end_ = next;
    return error;
}

DWORD DiskFile::fill_up_to(std::uint64_t from, std::uint64_t end) noexcept {
    DWORD error = move_mark_behind(end);
    if (error != ERROR_SUCCESS) return error;
    const std::uint64_t start = std::max(from, size_);
    std::uint64_t reached = start;
    error = put_zeroes(reached, end);
    if (reached > start) size_ = reached;
    return error;
}

void DiskFile::check(DWORD error) const {
    if (error != ERROR_SUCCESS) throw_file_error(operation_, path_, error);
}

} // namespace qzr
