// What the system's searches say of a file, as callers get it.
#pragma once

#include "core/windows_lean.h"
#include "qzfile.h"

namespace qzr {

void fill_file_info(const WIN32_FIND_DATAW& found, FioFileInfo& info) noexcept;

} // namespace qzr
