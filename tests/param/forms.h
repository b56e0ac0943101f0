// What the tests of the text form and of the stream form share: trees from texts and bytes and back, and
// values described in words.
#pragma once

#include "qzbytes.h"
#include "qztree.h"
#include "support/variants.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace forms {

using Tree = CQZRef<IParam>;
using Stream = CQZRef<IXStream>;

using qz::bytes_of; // of a stream in memory, and of a tree by SaveParamToXStream
using qz::stream_of;
using qz::text_of;

inline Tree tree_from(const std::string& text) {
    Tree tree = qz::new_tree();
    qz::read_text(*tree, text);
    return tree;
}

inline Tree tree_of_bytes(std::string_view bytes) {
    Tree tree = qz::new_tree();
    EXPECT_TRUE(qz::read_bytes(*tree, bytes));
    return tree;
}

// The value as describe() tells it, and "none" when it is not there.
inline std::string value_in(IParam& tree, const char* name) {
    CQZVariant value;
    return tree.GetValue(name, &value) != 0 ? describe(value) : "none";
}

// What is stored under "aeaea" and deleted under this name, which has the same hash, stays listed and does
// not open.
constexpr char kSameHash[] = "bagab";

} // namespace forms
