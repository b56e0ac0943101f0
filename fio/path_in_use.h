// Makes the lock registry let go of a path while the library itself uses the file.
#pragma once

#include "qzfile.h"

namespace qzr {

class PathInUse {
public:
    // Throws QZERR_SEEK (5) for a path under an exclusive lock. The text must outlive the object.
    explicit PathInUse(const wchar_t* path) : path_(path) { Fio_ChangeNELock(path_, true); }
    ~PathInUse() {
        try {
            Fio_ChangeNELock(path_, false);
        } catch (...) {
            // Only exhausted memory comes this far: the path stays locked by its counts, without a handle.
        }
    }
    PathInUse(const PathInUse&) = delete;
    PathInUse& operator=(const PathInUse&) = delete;

private:
    const wchar_t* path_;
};

} // namespace qzr
