// Trees that are large or deep. A stack overflow ends the test's process.
#include <gtest/gtest.h>

#include "qzvariant.h"
#include "support/param_outline.h"

#include <algorithm>
#include <random>

namespace {

// Four characters that vary give different hashes; from five on names begin to collide.
std::vector<std::string> shuffled_names(int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        std::string name = "name-";
        for (int rest = i, place = 0; place < 4; ++place, rest /= 36)
            name += "0123456789abcdefghijklmnopqrstuvwxyz"[rest % 36];
        names.push_back(name);
    }
    std::shuffle(names.begin(), names.end(), std::minstd_rand(4711));
    return names;
}

// Memory is given back and places are closed up while names leave, and after an enumerator that kept them.
TEST(MemParamMany, KeepsOrderAndValuesWhenMostNamesLeave) {
    for (const bool walked : {false, true}) {
        SCOPED_TRACE(walked);
        const std::vector<std::string> names = shuffled_names(9000);
        const CQZRef<IParam> root = memory_tree();
        const auto value_of = [](std::size_t i) -> CQZVariant {
            if (i % 3 == 0) return {("a text of some length, number " + std::to_string(i)).c_str()};
            if (i % 3 == 1) return {tagRRECT{1, 2, 3, static_cast<double>(i)}};
            return {static_cast<int>(i)};
        };
        for (std::size_t i = 0; i < names.size(); ++i) {
            const CQZVariant value = value_of(i);
            root->SetValue(names[i].c_str(), &value);
        }
        auto walk = CQZRef<CTEnum<const char*>>::Adopt(walked ? root->EnumValues() : nullptr);
        std::vector<const char*> handed_out(walked ? names.size() : 0);
        if (walked) walk->Next(static_cast<int>(names.size()), handed_out.data(), nullptr);
        std::vector<std::string> left;
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (i % 40 == 0)
                left.push_back(names[i]);
            else
                root->DeleteValue(names[i].c_str());
        }
        for (std::size_t i = 0; i < handed_out.size(); ++i)
            ASSERT_EQ(handed_out[i], names[i]);
        walk.Reset();
        root->DeleteValue(left.back().c_str());
        left.pop_back();
        set_int(*root, "late", 7);
        left.emplace_back("late");
        EXPECT_EQ(take_names(root->EnumValues()), left);
        CQZVariant value;
        for (std::size_t i = 0; i + 40 < names.size(); ++i) {
            ASSERT_EQ(root->GetValue(names[i].c_str(), &value), i % 40 == 0 ? 1 : 0) << i;
            if (i % 40 == 0) {
                ASSERT_TRUE(value == value_of(i)) << i;
            }
        }
    }
}

constexpr int kLevels = 500000;

CQZRef<IParam> deep_tree() {
    CQZRef<IParam> root = memory_tree(), node = root;
    for (int level = 0; level < kLevels; ++level)
        node = CQZRef<IParam>::Adopt(node->CreateSubParam("n"));
    set_int(*node, "v", 1);
    return root;
}

CQZRef<IParam> deepest(CQZRef<IParam> node, int levels = kLevels) {
    for (; levels > 0 && node; --levels)
        node = CQZRef<IParam>::Adopt(node->OpenSubParam("n", 0));
    return node;
}

TEST(MemParamSize, DeepTreesAreCopiedComparedAndReleased) {
    const CQZRef<IParam> root = deep_tree(), copy = memory_tree();
    Param_CopyTo(root.Get(), copy.Get());
    EXPECT_EQ(Param_Cmp(root.Get(), copy.Get()), 1);
    EXPECT_EQ(Param_Cmp(copy.Get(), root.Get()), 1);
    set_int(*deepest(copy), "v", 2);
    EXPECT_EQ(Param_Cmp(root.Get(), copy.Get()), 0);
}

TEST(MemParamSize, DeepTreesAreCleared) {
    for (const char* const way : {"clear", "drop", "release"}) {
        SCOPED_TRACE(way);
        CQZRef<IParam> root = deep_tree();
        const CQZRef<IParam> held = deepest(root);
        ASSERT_TRUE(held);
        if (way[0] == 'c') root->Clear();
        if (way[0] == 'd') root->DeleteSubParam("n");
        if (way[0] == 'r') root.Reset();
        EXPECT_EQ(outline_of(*held), "v=1");
    }
}

TEST(MemParamSize, PathsAreFollowedToAnyDepth) {
    std::string path = "n";
    for (int level = 1; level < kLevels; ++level)
        path += "\\n";
    const CQZRef<IParam> root = memory_tree("create " + path);
    set_int(*root, (path + "\\v").c_str(), 3);
    EXPECT_EQ(get_int(*root, (path + "\\v").c_str()), 3);
    EXPECT_EQ(outline_of(*deepest(root)), "v=3");
}

} // namespace
