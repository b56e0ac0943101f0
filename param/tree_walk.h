// Walking any tree through its interface with a stack of the walk's own, so that depth costs memory and
// nothing else.
//
// A walk is a vector of levels, the node being visited last:
//
//     WalkStack<> levels;
//     levels.emplace_back(CQZRef<IParam>::Share(root));
//     while (!levels.empty()) {
//         CQZRef<IParam> child;
//         const char* const name = levels.back().next_child(child);
//         if (name == nullptr) levels.pop_back();
//         else if (child) levels.emplace_back(std::move(child));
//     }
//
// Names live as long as their level. Whatever leaves the loop, an exception too, releases all levels.
#pragma once

#include "core/allocator.h"
#include "qzparam.h"
#include "qzref.h"
#include "qzvariant.h"

namespace qzr {

using NameEnum = CQZRef<CTEnum<const char*>>;

// The names of a node's values and children. Throw CXIFaceException when the node gives no enumerator.
NameEnum enum_values(IParam& node);
NameEnum enum_children(IParam& node);

// Creates a child. Throws CXMemException when the node gives none: going on without it would lose what
// belongs below it, and nobody would know.
CQZRef<IParam> create_child(IParam& node, const char* name);

// The next name, or null at the end. A null that an implementation hands out as a name arrives as "".
const char* next_name(const NameEnum& names);

// Reads a value; one that is not there leaves it empty. @return whether it is there. Over a storage empty
// bytes and texts and null objects are, though GetValue answers 0: nothing was read behind their counts.
bool read_value(IParam& node, const char* name, CQZVariant& value);

// Calls visit(name, value) for each value in order; a name that does not open comes with an empty value.
template <class Visit>
void for_each_value(IParam& node, Visit visit) {
    const NameEnum names = enum_values(node);
    while (const char* const name = next_name(names)) {
        CQZVariant value;
        read_value(node, name, value);
        visit(name, value);
    }
}

// One level of a walk: a node, and the names of its children still to come. Walks that carry more per level
// derive from it.
struct WalkLevel {
    // Asks the node for its children. Throws CXIFaceException.
    explicit WalkLevel(CQZRef<IParam> at);

    // Moves to the next child and opens it. Returns its name, or null at the end; a listed name that does not
    // open leaves child empty.
    const char* next_child(CQZRef<IParam>& child);

    CQZRef<IParam> node;
    NameEnum children;
};

template <class Level = WalkLevel>
using WalkStack = Vector<Level>;

} // namespace qzr
