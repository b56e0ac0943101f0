// Trees copied between backends that may refuse entries, and changed in place.
#pragma once

#include "trees/tree.h"

#include <functional>

namespace tool {

/// Told of what one of the two trees does not give or take.
/// @param what "value" or "section"
using Refused = std::function<void(const std::string& path, const char* what)>;

/// Copies values, then sections, into a tree. Only exhausted memory ends it.
void copy_tree(IParam& from, IParam& to, const Refused& refused);

/// Copies a tree of any backend into memory.
CQZRef<IParam> in_memory(IParam& tree, const Refused& refused);

/// Changes a live tree into the wanted one, entry by entry; those that are equal are left alone. What the
/// live tree refuses is passed over. New entries are written before old ones go, so that whatever ends the
/// work in the middle, nothing that both trees have was ever away.
/// @param before what the live tree holds
void make_equal(IParam& live, IParam& before, IParam& wanted);

} // namespace tool
