// What the file functions keep for the process.
#pragma once

#include "core/library.h"
#include "fio/lock_registry.h"
#include "fio/path_kind.h"

namespace qzr {

struct FileState {
    LockRegistry locks;
    wchar_t temp_path[kPathUnits] = {};  // the result of Fio_GetTempFileName
    wchar_t cache_path[kPathUnits] = {}; // the result of Fio_DownloadToCacheFile
};

inline FileState& file_state() noexcept { return *library().files; }

} // namespace qzr
