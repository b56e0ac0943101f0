#include <gtest/gtest.h>

#include "param/foreign_param.h"
#include "qzvariant.h"
#include "support/param_outline.h"

namespace {

TEST(ParamCopyTo, AddsToWhatIsThere) {
    struct Row {
        const char *src, *dst;
        const char* expected;
    };
    const Row rows[] = {
        {"", "", ""},
        {"set v", "", "v=1"},
        {"", "set v; create s", "v=1 s{}"},
        {"set v", "set w; set V", "w=1 V=1"},
        {"create s; set s\\v", "create S; set S\\w; create t", "S{w=2 v=2} t{}"},
        {"create a\\b\\c; create d; set a\\b\\v", "", "a{b{v=3 c{}}} d{}"},
        {"create boskui; drop ckygvi; create x", "", "x{}"}, // listed, does not open
    };
    for (const Row& row : rows) {
        const CQZRef<IParam> src = memory_tree(row.src), dst = memory_tree(row.dst);
        const std::string before = outline_of(*src);
        SCOPED_TRACE("[" + before + "] onto [" + outline_of(*dst) + "]");
        Param_CopyTo(src.Get(), dst.Get());
        EXPECT_EQ(outline_of(*dst), row.expected);
        EXPECT_EQ(outline_of(*src), before);
    }
    const CQZRef<IParam> tree = memory_tree("set v");
    Param_CopyTo(nullptr, tree.Get());
    Param_CopyTo(tree.Get(), nullptr);
    EXPECT_EQ(outline_of(*tree), "v=1");
}

// A name that is listed and does not open arrives as an empty value.
TEST(ParamCopyTo, WritesAnEmptyValueForOneThatDoesNotOpen) {
    const CQZRef<IParam> src = memory_tree("set boskui; delete ckygvi"), dst = memory_tree();
    Param_CopyTo(src.Get(), dst.Get());
    CQZVariant value(1);
    EXPECT_EQ(dst->GetValue("boskui", &value), 1);
    EXPECT_EQ(value.vt, QZVT_EMPTY);
}

TEST(ParamCopyTo, EndsWhenOneTreeLiesWithinTheOther) {
    struct Row {
        const char* tree;
        const char *src, *dst; // nodes of the tree; null is the root
        const char* expected;
    };
    const Row rows[] = {
        {"set v; create a; set a\\w", nullptr, nullptr, "v=1 a{w=3}"},
        {"set v; create a", nullptr, "a", "v=1 a{v=1 a{}}"},
        {"set v; create a; create b; set b\\w", nullptr,
         "a", // what a then holds is new
         "v=1 a{v=1 a{} b{w=4}} b{w=4}"},
        {"create a\\b; set a\\v; set a\\b\\w", nullptr, "a\\b", "a{v=2 b{w=3 a{v=2 b{w=3}}}}"},
        {"create a\\b; set a\\v", "a", nullptr, "v=2 a{v=2 b{}} b{}"},
        {"create a\\a\\y; set a\\a\\v", "a", nullptr, "v=2 a{v=2 a{v=2 y{}} y{}}"},
    };
    for (const Row& row : rows) {
        const CQZRef<IParam> root = memory_tree(row.tree);
        const auto node = [&](const char* path) {
            return path != nullptr ? CQZRef<IParam>::Adopt(root->OpenSubParam(path, 0)) : root;
        };
        const auto name = [](const char* path) { return std::string(path != nullptr ? path : "root"); };
        SCOPED_TRACE("[" + outline_of(*root) + "] " + name(row.src) + " into " + name(row.dst));
        Param_CopyTo(node(row.src).Get(), node(row.dst).Get());
        EXPECT_EQ(outline_of(*root), row.expected);
    }
}

// Views cannot be told from what the copy has made: it stops where no such backend nests.
TEST(ParamCopyTo, EndsForViewsOfATreeCopiedIntoItself) {
    ForeignTree tree("set v; create a");
    const CQZRef<IParam> root = tree.root();
    Param_CopyTo(root.Get(), CQZRef<IParam>::Adopt(root->OpenSubParam("a", 0)).Get());
    int levels = 0;
    for (ForeignTree::Node* node = &tree.top; !node->children.empty(); node = node->children[0].second.get())
        ++levels;
    EXPECT_LT(levels, 600);
    EXPECT_EQ(tree.held, 1);
}

TEST(ParamCopyTo, CopiesBetweenBackends) {
    const char* const steps = "set v; create a\\b; create c; set a\\b\\w";
    ForeignTree foreign(steps);
    const CQZRef<IParam> back = memory_tree();
    Param_CopyTo(foreign.root().Get(), back.Get());
    EXPECT_EQ(outline_of(*back), outline_of(*memory_tree(steps)));
    EXPECT_EQ(foreign.held, 0);
}

} // namespace
