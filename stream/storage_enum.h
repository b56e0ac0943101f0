// The names of a platform storage's elements.
#pragma once

#include "qzunknown.h"
#include "stream/platform_storage.h"

namespace qzr {

// The names of the elements of one kind (STGTY_STORAGE, STGTY_STREAM) as they are now, in the platform's
// order, with a reference for the caller. Throws CXException when the platform fails, CXMemException.
CTEnum<const char*>* enum_elements(IStorage& storage, DWORD kind);

} // namespace qzr
