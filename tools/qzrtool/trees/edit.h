// Changes of one entry of a tree.
#pragma once

#include "trees/tree.h"

namespace tool {

struct Edit {
    enum Action { set_value, remove_value, remove_section } action;
    TreePath path;
    CQZVariant value; // for set_value
};

// Makes the change in a tree of any backend. @return false when there is nothing to remove
bool apply(IParam& root, const Edit& edit);

} // namespace tool
