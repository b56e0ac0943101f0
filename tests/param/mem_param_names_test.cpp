// Names in memory: hashes that collide, enumerators while names leave, paths in their finer points.
#include "contracts/param_contract.h"
#include "support/counting_object.h"

#include <cstring>
#include <mbctype.h>
#include <windows.h>

namespace {

struct MemoryTree {
    static constexpr ParamDifferences differs{};
    static CQZRef<IParam> root() { return memory_tree(); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, ParamContract, MemoryTree);

// boskui and ckygvi have the hash 0x0b384c8d.
TEST(MemParamNames, OneHashIsOneEntryAndLeavesTheListBySpelling) {
    struct Row {
        const char* steps;
        const char* expected;
    };
    const Row rows[] = {
        {"set boskui; set ckygvi", "boskui=2"},
        {"set boskui; delete ckygvi", "boskui!"},
        {"set boskui; delete ckygvi; delete boskui", "boskui!"},
        {"set boskui; delete ckygvi; set Boskui", "boskui=3 Boskui=3"},
        {"set boskui; delete ckygvi; set Boskui; delete BOSKUI", "Boskui!"},
        {"set boskui; delete ckygvi; set ckygvi", "boskui=3 ckygvi=3"},
        {"set boskui; delete ckygvi; set ckygvi; delete boskui", "ckygvi!"},
        {"set boskui; delete ckygvi; set x; set boskui; delete ckygvi; set Boskui; delete boskui; set "
         "BOSKUI; delete boskui",
         "x=3 Boskui! BOSKUI!"},
        {"set boskui; delete ckygvi; clear; set y", "y=4"},
        {"create boskui; set ckygvi\\v", "boskui{v=2}"},
        {"create boskui; create ckygvi", "boskui{}"},
        {"create boskui; drop ckygvi", "boskui!"},
        {"create boskui; drop ckygvi; drop BOSKUI", ""},
        {"create boskui; drop ckygvi; create boskui", "boskui{} boskui{}"},
        {"create boskui; drop ckygvi; create ckygvi; drop boskui", "ckygvi!"},
    };
    for (const int others : {0, 40}) { // few entries and many are searched differently
        for (const Row& row : rows) {
            const CQZRef<IParam> root = memory_tree();
            const auto other = [](int i) { return "other" + std::to_string(i); };
            for (int i = 0; i < others; ++i) {
                set_int(*root, other(i).c_str(), 0);
                CQZRef<IParam>::Adopt(root->CreateSubParam(other(i).c_str()));
            }
            run_steps(*root, row.steps);
            SCOPED_TRACE(row.steps + (" among " + std::to_string(others)));
            for (int i = others; i-- > 0;) {
                root->DeleteValue(other(i).c_str());
                root->DeleteSubParam(other(i).c_str());
            }
            EXPECT_EQ(outline_of(*root), row.expected);
        }
    }
}

TEST(MemParamNames, WalksGoOnWithWhatIsLeft) {
    struct Row {
        int walked;
        const char* meanwhile;
        std::vector<std::string> rest;
    };
    const Row rows[] = {
        {0, "delete a", {"b", "c", "d"}},
        {2, "delete b", {"c", "d"}},
        {2, "delete c", {"d"}},
        {2, "delete a; delete b", {"c", "d"}},
        {2, "delete b; delete a; delete d", {"c"}},
        {2, "delete d; delete c; delete b; delete a", {}},
        {2, "clear", {}},
        {2, "set e", {"c", "d", "e"}},
        {4, "delete d", {}},
        {4, "set e", {"e"}},
        {2, "clear; set e", {"e"}},
    };
    for (const Row& row : rows) {
        const CQZRef<IParam> root = memory_tree("set a; set b; set c; set d");
        CTEnum<const char*>* const names = root->EnumValues();
        const auto bystander = CQZRef<CTEnum<const char*>>::Adopt(root->EnumValues());
        const char* walked[4] = {};
        names->Next(row.walked, walked, nullptr);
        SCOPED_TRACE(std::to_string(row.walked) + " walked; " + row.meanwhile);
        run_steps(*root, row.meanwhile);
        names->AddRef();
        EXPECT_EQ(take_names(names), row.rest);
        for (int i = 0; i < row.walked; ++i)
            EXPECT_EQ(walked[i], std::string(1, static_cast<char>('a' + i)));
        names->Reset();
        EXPECT_EQ(take_names(names), take_names(root->EnumValues()));
    }
}

// After the enumerators have gone too, whatever else is deleted and stored.
TEST(MemParamNames, NamesStayWhereTheyAreWhileTheirEntriesDo) {
    const CQZRef<IParam> root = memory_tree();
    const auto name = [](int i) { return (i % 9 == 0 ? std::string(300, 'x') : "name") + std::to_string(i); };
    constexpr int kNames = 40, kGone = 25;
    for (int i = 0; i < kNames; ++i) {
        set_int(*root, name(i).c_str(), i);
        CQZRef<IParam>::Adopt(root->CreateSubParam(name(i).c_str()));
    }
    const char *values[kNames], *children[kNames], *now[kNames];
    CQZRef<CTEnum<const char*>>::Adopt(root->EnumValues())->Next(kNames, values, nullptr);
    CQZRef<CTEnum<const char*>>::Adopt(root->EnumSubParams())->Next(kNames, children, nullptr);
    for (int i = 0; i < kGone; ++i) {
        const auto walk = CQZRef<CTEnum<const char*>>::Adopt(i % 2 != 0 ? root->EnumValues() : nullptr);
        root->DeleteValue(values[i]);
        root->DeleteSubParam(children[i]);
    }
    for (int i = 0; i < 200; ++i)
        set_int(*root, ("new" + std::to_string(i)).c_str(), i);
    CQZRef<CTEnum<const char*>>::Adopt(root->EnumValues())->Next(kNames, now, nullptr);
    for (int i = kGone; i < kNames; ++i) {
        EXPECT_EQ(values[i], now[i - kGone]);
        EXPECT_EQ(values[i], name(i));
        EXPECT_EQ(children[i], name(i));
        root->DeleteValue(values[i]);
        root->DeleteSubParam(children[i]);
    }
    EXPECT_EQ(take_names(root->EnumValues()).size(), 200u);
    EXPECT_EQ(take_names(root->EnumSubParams()), Names{});
}

TEST(MemParamNames, EnumeratorsOutliveTheTree) {
    CQZRef<IParam> root = memory_tree("set value; create child");
    const auto values = CQZRef<CTEnum<const char*>>::Adopt(root->EnumValues());
    const auto children = CQZRef<CTEnum<const char*>>::Adopt(root->EnumSubParams());
    const char* value = nullptr;
    const char* child = nullptr;
    values->Next(1, &value, nullptr);
    children->Next(1, &child, nullptr);
    root.Reset();
    EXPECT_STREQ(value, "value");
    EXPECT_STREQ(child, "child");
    EXPECT_EQ(values->Next(1, &value, nullptr), 0);
    children->Reset();
    EXPECT_EQ(children->Next(1, &child, nullptr), 0);
}

TEST(MemParamNames, EmptyComponentsAndNullAreNames) {
    const std::pair<const char*, const char*> rows[] = {
        {"create", "{}"},        {"create \\", "{{}}"},
        {"create a\\", "a{{}}"}, {"create \\a", "{a{}}"},
        {"make \\a", "a{}"},     {"set \\v", "{v=1}"},
        {"set a\\", "a{@=1}"},   {"set \\", "{@=1}"},
        {"set a\\\\v", "{v=1}"}, {"create a b\\c/d", "a b{c/d{}}"},
    };
    for (const auto& [step, expected] : rows)
        EXPECT_EQ(outline_of(*memory_tree(step)), expected) << step;
    const CQZRef<IParam> root = memory_tree();
    CQZRef<IParam>::Adopt(root->CreateSubParam(nullptr));
    EXPECT_TRUE(CQZRef<IParam>::Adopt(root->OpenSubParam("", 0)));
    root->DeleteSubParam(nullptr);
    EXPECT_EQ(outline_of(*root), "");
}

// Storing under a path whose first node is missing goes through CreateSubParam, which empties what it meets.
TEST(MemParamNames, DroppingTheFirstNodeEmptiesTheOneThatIsMet) {
    const CQZRef<IParam> root = memory_tree("create b; set b\\old; set a\\b\\v");
    EXPECT_EQ(outline_of(*root), "b{v=3}");
}

// Names are read in blocks, and no block reaches into memory that is not there.
TEST(MemParamNames, NamesMayEndWhereMemoryEnds) {
    constexpr std::size_t kPage = 4096;
    char* const pages = static_cast<char*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(VirtualAlloc(pages, kPage, MEM_COMMIT, PAGE_READWRITE), nullptr);
    const CQZRef<IParam> root = memory_tree();
    const std::string letters = "AbCdE\x83"
                                "gHiJkLmNoPqR[T`VwX{z@1\xFF"
                                "3";
    for (std::size_t size = 1; size <= letters.size(); ++size) {
        const std::string name = letters.substr(letters.size() - size);
        char* const at_the_end = pages + kPage - size - 1;
        std::memcpy(at_the_end, name.c_str(), size + 1);
        set_int(*root, at_the_end, static_cast<int>(size));
        EXPECT_EQ(get_int(*root, name.c_str()), static_cast<int>(size)) << name;
        EXPECT_EQ(take_names(root->EnumValues()).back(), name);
    }
    EXPECT_EQ(take_names(root->EnumValues()).size(), letters.size());
    VirtualFree(pages, 0, MEM_RELEASE);
}

// 0x83 0x5C is one character in code page 932, and a letter and a separator elsewhere.
TEST(MemParamNames, TrailBytesSeparateNothing) {
    const bool one_character = _ismbblead(0x83) != 0;
    const CQZRef<IParam> root = memory_tree("set \x83\\v; create \x83\\\\x; set a\\\x83");
    EXPECT_EQ(outline_of(*root),
              one_character ? "\x83\\v=1 \x83\\{x{}} a{\x83=3}" : "\x83{v=1 {x{}}} a{\x83=3}");
    EXPECT_EQ(get_int(*root, "\x83\\v"), 1);
}

TEST(MemParamNames, CaseIsFoldedInAsciiOnly) {
    const CQZRef<IParam> root = memory_tree("set \xC4z; set \xE4z; set \xC4Z");
    EXPECT_EQ(outline_of(*root), "\xC4z=3 \xE4z=2");
}

TEST(MemParamNames, WhoHoldsADeletedChildHasAnEmptyNode) {
    const CQZRef<IParam> root = memory_tree("create a; set a\\v; create a\\b");
    const auto a = CQZRef<IParam>::Adopt(root->OpenSubParam("a", 0));
    const auto again = CQZRef<IParam>::Adopt(root->CreateSubParam("a"));
    EXPECT_EQ(again, a); // the same node, emptied
    set_int(*a, "v", 1);
    root->DeleteSubParam("a");
    EXPECT_EQ(outline_of(*a), "");
    set_int(*a, "w", 2);
    EXPECT_EQ(outline_of(*a), "w=2");
    EXPECT_EQ(outline_of(*root), "");
}

// As of a variant that goes out of scope.
TEST(MemParamNames, AnObjectThatFailsAsItIsReleasedEndsNothing) {
    CountingObject object;
    const CQZRef<IParam> root = memory_tree();
    const CQZVariant value(&object);
    root->SetValue("object", &value);
    object.on_release = [](void*) { throw CXException(4711); };
    root->DeleteValue("object");
    object.on_release = nullptr;
    EXPECT_EQ(outline_of(*root), "");
}

TEST(MemParamNames, ObjectsMayCallBackWhileTheyAreReleased) {
    for (const char* const way : {"replace", "delete", "all", "clear", "overwrite out"}) {
        SCOPED_TRACE(way);
        const CQZRef<IParam> root = memory_tree("set v; set w");
        CountingObject object;
        CQZVariant value(&object);
        root->SetValue("object", &value);
        object.watched = root.Get();
        object.on_release = [](void* tree) {
            static_cast<IParam*>(tree)->DeleteValue("v");
            set_int(*static_cast<IParam*>(tree), "late", 7);
        };
        if (way[0] == 'r') set_int(*root, "object", 1);
        if (way[0] == 'd') root->DeleteValue("object");
        if (way[0] == 'a') root->DeleteAllValues();
        if (way[0] == 'c') root->Clear();
        if (way[0] == 'o') root->GetValue("w", &value);
        EXPECT_EQ(get_int(*root, "late"), 7);
        EXPECT_EQ(get_int(*root, "v"), kNoValue);
        root->DeleteAllValues();
        value.Clear();
        EXPECT_EQ(object.references, 1u);
        object.on_release = nullptr;
    }
}

} // namespace
