// CXMemFile: a block of this process's memory as a file.
#pragma once

#include "core/readable_memory.h"
#include "fio/file_path.h"
#include "fio/file_slots.h"

#include <algorithm>
#include <cstdint>

namespace qzr {

// The name is "fmem::ADDRESS,SIZE". It may say anything: what cannot be read is a failure, and nothing is
// ever written. The block belongs to the caller. One instance is opened for reading, the other takes the
// place of an output file.
template <class Base>
class CXMemFile : public FileSlots<CXMemFile<Base>, Base> {
public:
    explicit CXMemFile(const wchar_t* name) : name_(name, QZOP_READ) {
        const MemoryBlockName block = parse_memory_path(name);
        address_ = static_cast<std::uintptr_t>(std::intptr_t{block.address});
        size_ = static_cast<unsigned>(block.size);
        if (block.size < 0) size_ = static_cast<unsigned>(readable_bytes(at(0), size_));
    }

    unsigned Read(void* buffer, unsigned count) final {
        const unsigned n = std::min(count, size_ - position_);
        if (n == 0) return 0;
        if (readable_bytes(at(position_), n) < n) throw CXFileException(QZERR_OTHER, QZOP_READ, name_.get());
        std::memcpy(buffer, at(position_), n);
        position_ += n;
        return n;
    }
    void Write(const void*, unsigned) final {}

    unsigned Seek(unsigned offset, unsigned origin) final {
        const unsigned target = seek_target(offset, origin, position_, size_, QZOP_READ, name_.get());
        if (target > size_) throw CXFileException(QZERR_SEEK, QZOP_READ, name_.get());
        return position_ = target;
    }
    int Flush() final { return 1; }
    const wchar_t* GetName() final { return name_.get(); }

    std::span<const unsigned char> ahead(std::uint64_t wanted) {
        const std::size_t n = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, size_ - position_));
        return {at(position_), readable_bytes(at(position_), n)};
    }
    void skip(std::size_t count) { position_ += static_cast<unsigned>(count); }

private:
    // The name may say the last addresses there are, so these are numbers, which wrap; nothing can be read
    // there.
    const unsigned char* at(unsigned position) const noexcept {
        return reinterpret_cast<const unsigned char*>(address_ + position);
    }

    const FilePath name_;
    std::uintptr_t address_;
    unsigned position_ = 0; // never beyond the size
    unsigned size_;
};

class CXMemOutFile final : public CXMemFile<IXOutFile> {
public:
    using CXMemFile::CXMemFile;
    void Commit() override {}
};

} // namespace qzr
