// The paths that file objects keep inside themselves.
#pragma once

#include "core/system_error.h"
#include "fio/path_kind.h"
#include "variant/text.h"

#include <cwchar>

namespace qzr {

class FilePath {
public:
    // Null is the empty path. Throws QZERR_BAD_PATH for a path that does not fit; it is never cut.
    FilePath(const wchar_t* path, QZFileOperation operation) {
        const wchar_t* const source = or_empty(path);
        const std::size_t length = text_length(source, kPathUnits);
        if (length == kPathUnits) throw_file_error(operation, path, ERROR_FILENAME_EXCED_RANGE);
        std::wmemcpy(text_, source, length);
        text_[length] = L'\0';
    }

    const wchar_t* get() const noexcept { return text_; }

private:
    wchar_t text_[kPathUnits]; // filled up to its terminator
};

// Where a path leads, whatever becomes of the current directory. A place that does not fit stays as the path
// was written.
class FullPath {
public:
    // Of a path that fits into kPathUnits.
    explicit FullPath(const wchar_t* path) noexcept {
        const DWORD length = GetFullPathNameW(path, kPathUnits, text_, nullptr);
        if (length == 0 || length >= kPathUnits) std::wcscpy(text_, path);
    }

    const wchar_t* get() const noexcept { return text_; }

private:
    wchar_t text_[kPathUnits];
};

} // namespace qzr
