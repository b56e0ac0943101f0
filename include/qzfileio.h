/// @file
/// Files as holders: read whole, written whole, closed with the failure told. Header-only.
#pragma once

#include "qzbytes.h"
#include "qzfile.h"
#include "qzref.h"
#include "qztext.h"

#include <string>
#include <string_view>
#include <utility>

namespace qz {

/// An open file (Fio_Open). A file tells what closing fails with by throwing from its last Release, which no
/// destructor may let out: close() lets it out, the destructor here keeps it to itself. Close what was
/// written.
class File {
public:
    /// Opens. @param mode bits of QZFileMode. Throws CXFileException, CXMemException.
    explicit File(WideTextArg path, int mode = QZFILE_READ) : file_(Fio_Open(path.c_str(), mode)) {
        if (file_ == nullptr) throw CXMemException();
    }
    File(File&& other) noexcept : file_(std::exchange(other.file_, nullptr)) {} ///< leaves other closed
    /// Closes this one without a word and takes the other one over.
    File& operator=(File&& other) noexcept {
        const File closing(std::move(*this));
        std::swap(file_, other.file_);
        return *this;
    }
    /// Closes, and is silent about failures.
    ~File() {
        try {
            close();
        } catch (...) { // close() is for those who want to know
        }
    }

    explicit operator bool() const noexcept { return file_ != nullptr; } ///< @return whether it is open
    IXFile* operator->() const noexcept { return file_; } ///< @return the file, not when closed
    IXFile& operator*() const noexcept { return *file_; } ///< @return the file, not when closed

    /// Writes all the bytes at the position. Throws CXFileException.
    void write(std::string_view bytes) { detail::write_all(*file_, bytes); }

    /// Closes; nothing happens when it is closed. Throws CXFileException when closing fails: the file is
    /// closed all the same.
    void close() {
        IXFile* const file = std::exchange(file_, nullptr);
        if (file == nullptr) return;
        try {
            file->Release();
        } catch (...) {
            file->Release(); // nothing is open any more; this one ends the object
            throw;
        }
    }

private:
    IXFile* file_; // null when closed
};

/// A file that takes its target's place on commit() as a whole (Fio_OpenOut). Without commit the target stays
/// as it is, whatever ends the block: a return, an exception.
class OutFile {
public:
    /// Opens a temporary file beside the target. @param mode QZFILE_KEEP to begin behind a copy of the
    /// target. Throws CXException, CXFileException, CXMemException.
    explicit OutFile(WideTextArg target, int mode = 0)
        : file_(CQZRef<IXOutFile>::Adopt(Fio_OpenOut(target.c_str(), mode))) {
        if (!file_) throw CXMemException();
    }

    explicit operator bool() const noexcept { return static_cast<bool>(file_); } ///< @return false when ended
    IXOutFile* operator->() const noexcept { return file_.Get(); } ///< @return the file, not when ended
    IXOutFile& operator*() const noexcept { return *file_; }       ///< @return the file, not when ended

    /// Writes all the bytes at the position. Throws CXFileException.
    void write(std::string_view bytes) { detail::write_all(*file_, bytes); }

    /// Puts the contents in the target's place and ends the writing; once. Throws CXFileException, as
    /// IXOutFile::Commit. A URL gives no word of a failed transfer.
    void commit() {
        const CQZRef<IXOutFile> file = std::move(file_);
        file->Commit();
    }

    /// Ends the writing and leaves the target as it was.
    void discard() noexcept { file_.Reset(); }

private:
    CQZRef<IXOutFile> file_;
};

/// @return all bytes of a file. Throws CXFileException, CXMemException.
inline std::string read_file(WideTextArg path) {
    const File file(path);
    std::string bytes(file->GetSize(), '\0'); // 0 from 2 GiB on; what it does not count comes after
    file->Seek(0, 0);
    bytes.resize(file->Read(bytes.data(), static_cast<unsigned>(bytes.size())));
    detail::read_all(*file, [&bytes](std::string_view piece) { bytes += piece; });
    return bytes;
}

/// Puts bytes in a file's place as a whole, or leaves it as it is. Throws CXException, CXFileException,
/// CXMemException.
inline void replace_file(WideTextArg path, std::string_view bytes) {
    OutFile file(path);
    file.write(bytes);
    file.commit();
}

} // namespace qz
