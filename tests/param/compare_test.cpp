#include <gtest/gtest.h>

#include "qzvariant.h"
#include "support/param_outline.h"

namespace {

TEST(ParamCmp, TellsWhetherTheSecondHoldsTheFirst) {
    struct Row {
        const char *a, *b;
        int a_in_b, b_in_a;
    };
    const Row rows[] = {
        {"", "", 1, 1},
        {"set v", "set V", 1, 1},
        {"set v", "set v; set w", 1, 0},
        {"set v; set w", "set w; set v", 0, 0}, // steps number the values
        {"create s", "", 0, 1},
        {"create s", "create S; set S\\v", 1, 0},
        {"create s\\t\\u", "create s\\t", 0, 1},
        {"create s; set s\\v; create t", "create s; set s\\v", 0, 1},
        {"create s; set s\\v", "create t; create s; set s\\v", 0, 0},
        {"create boskui; drop ckygvi", "create boskui", 0, 0}, // listed, does not open
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

} // namespace
