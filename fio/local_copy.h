// The local file that stands for a remote one.
#pragma once

#include "fio/path_kind.h"
#include "qzexception.h"
#include "qzfile.h"

#include <cwchar>

namespace qzr {

// Deletes the file in the end. That it cannot be deleted is nobody's failure: it stays behind.
class LocalCopy {
public:
    // A path of kPathUnits and more is not taken.
    explicit LocalCopy(const wchar_t* path) {
        if (std::wcslen(path) >= kPathUnits) throw CXFileException(QZERR_BAD_PATH, QZOP_OPEN, path);
        std::wcscpy(path_, path);
    }
    ~LocalCopy() { remove(); }
    LocalCopy(LocalCopy&& other) noexcept {
        std::wmemcpy(path_, other.path_, kPathUnits);
        other.keep();
    }
    LocalCopy& operator=(LocalCopy&&) = delete;

    const wchar_t* path() const noexcept { return path_; }

    // The file is left where it is.
    void keep() noexcept { path_[0] = L'\0'; }

    void remove() noexcept {
        if (path_[0] == L'\0') return;
        try {
            Fio_DeleteFile(path_);
        } catch (const CXException&) {
            // as said above
        }
        keep();
    }

private:
    wchar_t path_[kPathUnits];
};

} // namespace qzr
