// CXOutFile: a file that takes its target's place as a whole or not at all.
#pragma once

#include "qzfile.h"

namespace qzr {

// Fio_OpenOut for a local target.
IXOutFile* open_out_file(const wchar_t* target, int mode);

} // namespace qzr
