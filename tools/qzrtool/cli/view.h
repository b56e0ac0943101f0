// The tree view of `qzrtool show`.
#pragma once

#include "cli/console.h"
#include "qzparam.h"

#include <string>

namespace tool {

struct ViewOptions {
    bool ascii = false;       // lines made of ASCII characters
    bool full = false;        // long texts and bytes whole
    std::size_t deepest = 64; // levels of sections that are drawn
};

/// Draws a tree under a title, one line for each section and value.
void draw_tree(Output& out, const std::string& title, IParam& tree, const ViewOptions& options);

/// Writes a tree as JSON: a node is {"values": [{"name", "type", "value"}], "sections": [{"name", ...node}]},
/// in the order of the tree.
void write_tree_json(Output& out, IParam& tree);

} // namespace tool
