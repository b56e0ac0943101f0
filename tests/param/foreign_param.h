// A tree that the library knows nothing of: its nodes are views made anew by each opening, as those of a
// registry or a file are. It counts what is held and can be told to fail.
#pragma once

#include "qzparam.h"
#include "qzref.h"
#include "qzvariant.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

class ForeignTree {
public:
    struct Node {
        std::vector<std::pair<std::string, CQZVariant>> values;
        std::vector<std::pair<std::string, std::unique_ptr<Node>>> children;
    };

    ForeignTree() = default;
    explicit ForeignTree(const std::string& steps);
    CQZRef<IParam> root() { return view(top); }
    CQZRef<IParam> view(Node& node);

    // Called by every operation of every view: the one that uses up calls_left throws CXException(kFailure).
    static constexpr unsigned kFailure = 4711;
    void count_call();

    Node top;
    int calls_left = -1;               // -1: never fails
    int held = 0;                      // views and enumerators alive
    bool enumerates_values = true;     // else the enumerator is null
    bool enumerates_children = true;   // the same
    bool creates = true;               // else CreateSubParam gives null
    const char* listed_only = nullptr; // a child's name that is listed and does not open
};
