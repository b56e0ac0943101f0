// Memory streams and their bytes.
#pragma once

#include "qzref.h"
#include "qzstream.h"

#include <string>
#include <string_view>

namespace tool {

/// An empty stream in memory.
CQZRef<IXStream> new_stream();

/// A stream in memory that holds the bytes, at its start.
CQZRef<IXStream> stream_of(std::string_view bytes);

std::string bytes_of(IXStream& stream);

} // namespace tool
