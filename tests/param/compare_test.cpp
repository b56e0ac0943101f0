#include <gtest/gtest.h>

#include "param/foreign_param.h"
#include "qzexception.h"
#include "support/param_outline.h"

namespace {

TEST(ParamCmp, TellsWhetherTheSecondHoldsTheFirst) {
    struct Row {
        std::vector<Step> a, b;
        int a_in_b, b_in_a;
    };
    const Row rows[] = {
        {{}, {}, 1, 1},
        {{{"set", "v"}}, {{"set", "V"}}, 1, 1},
        {{{"set", "v"}}, {{"set", "v"}, {"set", "w"}}, 1, 0},
        {{{"set", "v"}, {"set", "w"}}, {{"set", "w"}, {"set", "v"}}, 0, 0}, // steps number the values
        {{{"create", "s"}}, {}, 0, 1},
        {{{"create", "s"}}, {{"create", "S"}, {"set", "S\\v"}}, 1, 0},
        {{{"create", "s\\t\\u"}}, {{"create", "s\\t"}}, 0, 1},
        {{{"create", "s"}, {"set", "s\\v"}, {"create", "t"}}, {{"create", "s"}, {"set", "s\\v"}}, 0, 1},
        {{{"create", "s"}, {"set", "s\\v"}}, {{"create", "t"}, {"create", "s"}, {"set", "s\\v"}}, 0, 0},
        {{{"create", "boskui"}, {"drop", "ckygvi"}}, {{"create", "boskui"}}, 0, 0}, // listed, does not open
    };
    for (const Row& row : rows) {
        const CQZRef<IParam> a = memory_tree(row.a), b = memory_tree(row.b);
        SCOPED_TRACE("[" + outline_of(*a) + "] [" + outline_of(*b) + "]");
        EXPECT_EQ(Param_Cmp(a.Get(), b.Get()), row.a_in_b);
        EXPECT_EQ(Param_Cmp(b.Get(), a.Get()), row.b_in_a);
    }
    EXPECT_EQ(Param_Cmp(nullptr, memory_tree().Get()), 0);
    EXPECT_EQ(Param_Cmp(memory_tree().Get(), nullptr), 0);
    EXPECT_EQ(Param_Cmp(nullptr, nullptr), 0);
}

TEST(ParamCmp, TypesCount) {
    const CQZRef<IParam> a = memory_tree(), b = memory_tree();
    const CQZVariant whole(3), real(3.0);
    a->SetValue("v", &whole);
    b->SetValue("v", &real);
    EXPECT_EQ(Param_Cmp(a.Get(), b.Get()), 0);
}

TEST(ParamCmp, ReleasesEverythingWhereverItFails) {
    const std::vector<Step> steps = {{"set", "v"}, {"create", "a\\b"}, {"create", "c"}, {"set", "c\\w"}};
    ForeignTree a(steps), b(steps);
    int failures = 0;
    for (int result = 0, call = 1; result == 0; ++call, ++failures) {
        a.calls_left = call;
        try {
            result = Param_Cmp(a.root().Get(), b.root().Get());
            ASSERT_EQ(result, 1);
        } catch (const CXException& e) {
            EXPECT_EQ(e.GetCode(), ForeignTree::kFailure);
        }
        EXPECT_EQ(a.held, 0) << call;
        EXPECT_EQ(b.held, 0) << call;
    }
    EXPECT_GT(failures, 10);
}

TEST(ParamCmp, NeedsEnumerators) {
    ForeignTree tree(std::vector<Step>{{"set", "v"}, {"create", "a"}});
    tree.enumerates_children = false;
    EXPECT_THROW(Param_Cmp(tree.root().Get(), tree.root().Get()), CXIFaceException);
    tree.enumerates_values = false;
    EXPECT_THROW(Param_Cmp(tree.root().Get(), tree.root().Get()), CXIFaceException);
    EXPECT_EQ(tree.held, 0);
}

} // namespace
