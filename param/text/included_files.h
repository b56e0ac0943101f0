// What the files included by one text hold.
#pragma once

#include "param/text/text_files.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace qzr {

using FileContent = std::shared_ptr<const std::string>;

// Opens included files, and keeps their contents, so that one that is included again is not opened again.
// Texts that multiply by including each other come to an end: so many files are read, and so many bytes of
// files that were read before.
class IncludedFiles {
public:
    // keep: whether a file is the same all the time. It is while a tree in memory is filled; other trees may
    // write to the very file.
    explicit IncludedFiles(bool keep) : keep_(keep) {}

    // No more files are read.
    bool exhausted() const { return includes_ == kMostIncludes; }

    // By its full path. Null for a file that cannot be read, and for one of before when enough was read
    // again. Throws CXMemException and std::bad_alloc.
    FileContent open(const std::wstring& path);

private:
    static constexpr unsigned kMostIncludes = 10000;
    static constexpr std::uint64_t kMostRepeatedBytes = std::uint64_t{64} << 20;
    static constexpr std::size_t kMostKeptBytes = std::size_t{4} << 20;

    struct File {
        std::size_t size = kUsualTextSize; // as far as it is known
        bool kept = false;
        FileContent content; // when it is kept; null for one that cannot be read
    };

    FileContent read(const std::wstring& path, File& file);

    const bool keep_;
    std::map<std::wstring, File, FileOrder> files_; // that were asked for
    unsigned includes_ = 0;
    std::uint64_t repeated_bytes_ = 0;
    std::size_t kept_bytes_ = 0;
};

} // namespace qzr
