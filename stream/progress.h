// Asking a progress sink whether to go on.
#pragma once

#include "qzexception.h"
#include "qzstream.h"

namespace qzr {

// To be called after a transfer, when all of the stream's state is settled: a cancelled stream stays
// consistent. Without a sink nothing happens.
inline void check_progress(QZRFC::IProgress* sink) {
    if (sink != nullptr && sink->CheckCancel() != 0) throw CXException(QZERR_CANCELLED);
}

} // namespace qzr
