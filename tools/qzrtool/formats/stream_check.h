// Looks for damage in the stream form of a tree. The library's reader takes data that end early for a shorter
// tree, and leaves unread what follows; a user wants to know.
#pragma once

#include "qzparam.h"
#include "qzstream.h"

#include <optional>
#include <string>

namespace tool {

struct Damage {
    unsigned offset; // in bytes from the start of the stream
    std::string text;
};

/// Reads the whole stream from its start.
/// @param tree empty; receives what stands before the damage
/// @return nothing when the stream holds one whole tree and no more
std::optional<Damage> find_damage(IXStream& stream, IParam& tree);

} // namespace tool
