// CXFile: a local file.
#pragma once

#include "fio/disk_file.h"
#include "fio/file_path.h"
#include "fio/file_slots.h"
#include "fio/mapped_window.h"
#include "fio/path_in_use.h"

namespace qzr {

// A file for reading is mapped as a whole when it is opened. A written file is mapped as far as it goes once
// a small piece is written or something is read; pieces from a page on that lead beyond the view go to the
// system directly, which spares them the faults of fresh pages.
class CXFile final : public FileSlots<CXFile, IXFile> {
public:
    CXFile(const wchar_t* path, int mode);
    ~CXFile() override;

    // Closes the file, then ends the object. A failure is thrown between the two: everything is closed then,
    // and one more Release ends the object.
    unsigned InternalRelease() override;

    unsigned Read(void* buffer, unsigned count) override;
    void Write(const void* buffer, unsigned count) override;
    unsigned Seek(unsigned offset, unsigned origin) override;
    int Flush() override;
    const wchar_t* GetName() override { return path_.get(); }

    std::span<const unsigned char> ahead(std::uint64_t wanted);
    void skip(std::size_t count) { position_ += static_cast<unsigned>(count); }

    // Ends the file at its size and closes it. Throws when something failed; all is closed then too.
    void close();

    // For output files, see UnfinishedMark: from now on the file is a temporary one; all of it is there and
    // on the disk; nobody wants it, and it is closed as it stands.
    void begin_temporary() { disk_.mark_unfinished(); }
    void settle();
    void discard() noexcept;
    void go_to_end() { position_ = size_; } // beyond the reach of Seek as well

private:
    const unsigned char* mapped_up_to(std::uint64_t end);
    void map_all();
    void write_beyond_view(const void* buffer, unsigned count);
    unsigned left() const { return position_ < size_ ? size_ - position_ : 0; }

    const QZFileOperation operation_;
    const FilePath path_;
    const PathInUse in_use_; // given back when everything below is closed
    const std::uint64_t most_bytes_;
    DiskFile disk_;
    MappedWindow window_;
    unsigned position_ = 0;
    unsigned size_;
};

} // namespace qzr
