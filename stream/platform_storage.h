// The platform's structured storage and owners for its objects.
#pragma once

#include "core/windows_lean.h"
#include "qzref.h"

#include <objbase.h>

namespace qzr {

// The platform's objects are counted by the same two operations as ours.
using PlatformStorage = CQZRef<IStorage>;
using PlatformStream = CQZRef<IStream>;

} // namespace qzr
