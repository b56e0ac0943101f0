#include "fio/mapped_file.h"

#include "core/system_error.h"
#include "fio/short_copy.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace qzr {

namespace {

constexpr unsigned kDirectWrite = 4096;

// Written files grow by whole spans of two granules of the system, and no span reaches beyond 4 GiB - 1.
std::uint64_t most_bytes_of_written_file() noexcept {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    const std::uint64_t span = 2 * std::uint64_t{system.dwAllocationGranularity};
    return std::numeric_limits<unsigned>::max() / span * span;
}

} // namespace

CXFile::CXFile(const wchar_t* path, int mode)
    : operation_(access_kind(mode)),
      path_(path, operation_),
      in_use_(path_.get()),
      most_bytes_(most_bytes_of_written_file()),
      disk_(path_.get(), mode),
      size_(static_cast<unsigned>(disk_.size())) {
    if (operation_ == QZOP_READ && size_ != 0) map_all();
}

CXFile::~CXFile() {
    window_.unmap();
    disk_.close(size_);
}

unsigned CXFile::InternalRelease() {
    if (m_cRef > 1) return --m_cRef;
    close();
    delete this;
    return 0;
}

unsigned CXFile::Read(void* buffer, unsigned count) {
    const unsigned n = std::min(count, left());
    if (n == 0) return 0;
    copy_maybe_short(buffer, mapped_up_to(std::uint64_t{position_} + n) + position_, n);
    position_ += n;
    return n;
}

void CXFile::Write(const void* buffer, unsigned count) {
    if (operation_ != QZOP_WRITE) throw CXFileException(QZERR_ACCESS, operation_, path_.get());
    if (count == 0) return;
    const std::uint64_t end = std::uint64_t{position_} + count;
    // Asked first: room made ahead, and with it the view, may reach further.
    if (end > most_bytes_) throw CXFileException(QZERR_DISK_FULL, operation_, path_.get());
    if (end <= window_.size()) {
        std::memcpy(window_.data() + position_, buffer, count);
    } else {
        write_beyond_view(buffer, count);
    }
    position_ += count;
    size_ = std::max(size_, position_);
}

// What is written by call shares pages with the view, and the system promises only for local disks that the
// two agree: the view goes first.
void CXFile::write_beyond_view(const void* buffer, unsigned count) {
    const std::uint64_t end = std::uint64_t{position_} + count;
    if (!window_.unmap()) throw_file_error(operation_, path_.get());
    if (count >= kDirectWrite) {
        disk_.write(position_, buffer, count);
        return;
    }
    if (end > disk_.size()) disk_.make_room(position_, end);
    map_all();
    std::memcpy(window_.data() + position_, buffer, count);
}

unsigned CXFile::Seek(unsigned offset, unsigned origin) {
    const unsigned target = seek_target(offset, origin, position_, size_, operation_, path_.get());
    if (operation_ != QZOP_WRITE && target > size_)
        throw CXFileException(QZERR_SEEK, operation_, path_.get());
    return position_ = target;
}

int CXFile::Flush() { return window_.size() == 0 ? 1 : FlushViewOfFile(window_.data(), 0); }

std::span<const unsigned char> CXFile::ahead(std::uint64_t wanted) {
    const std::uint64_t n = std::min<std::uint64_t>(wanted, left());
    if (n == 0) return {};
    return {mapped_up_to(position_ + n) + position_, static_cast<std::size_t>(n)};
}

const unsigned char* CXFile::mapped_up_to(std::uint64_t end) {
    if (end > window_.size()) map_all();
    return window_.data();
}

void CXFile::map_all() {
    const DWORD error = window_.map(disk_.handle(), disk_.size(), operation_ == QZOP_WRITE);
    if (error != ERROR_SUCCESS) throw_file_error(operation_, path_.get(), error);
}

void CXFile::settle() {
    // What was stored through a view belongs to the file's buffers once the view is gone.
    if (!window_.unmap()) throw CXFileException(QZERR_MEMORY, operation_, path_.get());
    disk_.settle(size_);
}

void CXFile::discard() noexcept {
    window_.unmap();
    disk_.close_uncut();
}

void CXFile::close() {
    const bool unmapped = window_.unmap();
    const DWORD error = disk_.close(size_);
    if (!unmapped) throw CXFileException(QZERR_MEMORY, operation_, path_.get());
    if (error != ERROR_SUCCESS) throw_file_error(operation_, path_.get(), error);
}

} // namespace qzr
