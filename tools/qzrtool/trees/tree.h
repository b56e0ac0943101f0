// Parameter trees, walked and compared without recursion: a stored tree may be nested as deep as its file is
// long.
#pragma once

#include "qztree.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tool {

using qz::find_value;
using qz::new_tree;

/// Names in the order of the tree.
std::vector<CXString> section_names(IParam& node);
std::vector<CXString> value_names(IParam& node);

/// @return nothing when there is no such section
CQZRef<IParam> open_section(IParam& node, const CXString& name);

/// Where a value or a section is.
struct TreePath {
    std::vector<CXString> sections;
    CXString value; // empty when the path names a section
};

CQZRef<IParam> find_section(IParam& root, const std::vector<CXString>& sections);

/// Opens the section and creates what is missing on the way to it.
CQZRef<IParam> make_section(IParam& root, const std::vector<CXString>& sections);

/// @return the text of a path, as \View\Grid or \View\Grid\Spacing
std::string path_text(const std::vector<CXString>& sections, const CXString& value = CXString());

/// One level of a walk. In a walk over a pair of trees either node may be missing, not both.
struct WalkStep {
    CQZRef<IParam> first, second;
    CXString name;                  // empty for the root
    std::vector<CXString> children; // those still to come begin at next
    std::size_t next = 0;
    bool last = true; // no sibling follows
};

/// From the root down to the section that is visited.
using WalkPath = std::vector<WalkStep>;

std::vector<CXString> names_on(const WalkPath& path);

class TreeVisitor {
public:
    /// @return whether to go on to the section's own sections
    virtual bool enter(const WalkPath& path) = 0;
    virtual void leave(const WalkPath&) {}

protected:
    ~TreeVisitor() = default;
};

/// Visits a tree, parents before children, or a pair of trees side by side; second may be null.
void walk(IParam& first, IParam* second, TreeVisitor& visitor);

enum class Change { added, removed, changed };

/// A value or a section in which two trees differ; lives while it is reported.
struct Difference {
    Change change;
    bool is_section;
    const WalkPath& section;  // the section itself, or the one that the value is in
    CXString value;           // the name of the value
    CQZVariant before, after; // of a value; empty where it is missing

    std::string path() const { return path_text(names_on(section), value); }
};

/// Reports what is not the same: values must be equal to the bit and of one type; the order of names and
/// their case do not matter. A section that only one tree has is reported with all its values and sections.
void compare(IParam& before, IParam& after, const std::function<void(const Difference&)>& report);

bool equal(IParam& a, IParam& b);

} // namespace tool
