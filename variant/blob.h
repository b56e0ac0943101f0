// Blob records: bytes of the library's allocator with their count. {n, null} is legal and holds no bytes.
#pragma once

#include "qzvariant.h"

namespace qzr {

// A record with bytes of its own. Throws CXMemException.
tagQZBLOB duplicate_blob(const tagQZBLOB& source);

// Equal sizes and bytes. Bytes that are not there equal only others that are not there, unless there are none
// to compare.
bool same_bytes(const tagQZBLOB& a, const tagQZBLOB& b);

} // namespace qzr
