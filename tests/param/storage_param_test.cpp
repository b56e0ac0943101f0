// Parameter trees in storages.
#include "contracts/param_contract.h"
#include "support/hex.h"
#include "support/limited_memory.h"
#include "support/scratch_folder.h"
#include "support/storages.h"

#include <objbase.h>

namespace {

CQZRef<IParam> tree_over(const StorageRef& storage) {
    return CQZRef<IParam>::Adopt(new_IXStorParam(storage.Get()));
}

struct StorageTree {
    static constexpr ParamDifferences differs{
        .ordered = false,
        .drops_missing_node = false,
        .makes_last_node = false,
        .miss_leaves_out_alone = false,
        .deleted_child_is_gone = false,
        .holder_keeps_empty_node = false,
        .names_apart = false,
        .lost_types = 1u << QZVT_OBJECT, // the sample cannot save itself
    };
    CQZRef<IParam> root() const { return tree_over(storage); }
    StorageRef storage = memory_storage();
};

struct FileTree : StorageTree {
    CQZRef<IParam> root() const { return tree_over(storage); }
    ScratchFolder folder;
    StorageRef storage = StorageRef::Adopt(new_Storage(folder.path(L"tree").c_str(), QZSTORAGE_TRANSACTED));
};

INSTANTIATE_TYPED_TEST_SUITE_P(Storage, ParamContract, StorageTree);
INSTANTIATE_TYPED_TEST_SUITE_P(TransactedFile, ParamContract, FileTree);

class StorageParam : public testing::Test {
protected:
    ScratchFolder folder; // goes after what is open in it
    StorageRef storage = memory_storage();
    CQZRef<IParam> root = tree_over(storage);
};

TEST_F(StorageParam, ValuesAreStreamsOfOneVariant) {
    const CQZVariant text("xy"), wide(L"abc");
    set_int(*root, "int", 7);
    set_int(*root, nullptr, -1);
    const auto a = CQZRef<IParam>::Adopt(root->CreateSubParam("a"));
    a->SetValue("text", &text);
    a->SetValue("wide", &wide);
    EXPECT_EQ(test::to_hex(get_stream(*storage, "int")), "05 00 07 00 00 00");
    EXPECT_EQ(test::to_hex(get_stream(*storage, "@")), "05 00 ff ff ff ff");
    const auto child = CQZRef<IXStorage>::Query(a.Get());
    EXPECT_EQ(test::to_hex(get_stream(*child, "text")), "0a 00 03 00 00 00 78 79 00");
    EXPECT_EQ(test::to_hex(get_stream(*child, "wide")), "13 00 08 00 00 00 61 00 62 00 63 00 00 00");

    put_stream(*storage, "other", test::from_hex("0500 09000000 'and what follows'"));
    EXPECT_EQ(get_int(*root, "other"), 9) << "only the first record counts";
}

TEST_F(StorageParam, AShorterValueLeavesNoTail) {
    const CQZVariant longer(std::string(3000, 'x').c_str()), shorter(1);
    root->SetValue("v", &longer);
    root->SetValue("v", &shorter);
    EXPECT_EQ(layout_of(*storage), "v=6");
    root->SetValue("v", &longer);
    EXPECT_EQ(layout_of(*storage), "v=3007");
}

TEST_F(StorageParam, ANodeAnswersForItsStorage) {
    EXPECT_EQ(CQZRef<IXStorage>::Query(root.Get()), storage);
    EXPECT_EQ(storage->AddRef(), 3u) << "the tree holds one reference, and the query gave its back";
    storage->Release();
    const auto registry = CQZRef<IRegisterIface>::Query(root.Get());
    ASSERT_TRUE(registry);
    EXPECT_EQ(registry->RegisterIface(typeid(IXStorage), root.Get()), 0) << "it is taken";
    EXPECT_EQ(registry->UnregisterIface(typeid(IXStorage)), 1);
    EXPECT_FALSE(CQZRef<IXStorage>::Query(root.Get()));
}

// Of a path only the first missing node is made: a value below two missing ones is not stored at all.
TEST_F(StorageParam, APathMakesItsFirstNodeAlone) {
    struct Row {
        const char* steps;
        const char* expected;
    };
    const Row rows[] = {
        {"set a\\v", "a{v=1}"},
        {"set a\\b\\v", "a{}"},
        {"set a\\b\\c\\v", "a{}"},
        {"make a\\b", "a{}"},
        {"create a\\b; set a\\b\\v", "a{b{v=2}}"},
        {"create a\\b; set a\\c\\v", "a{b{}}"},
        {"open a\\b", ""},
        {"create a\\b\\c; create a\\d", "a{b{c{}} d{}}"},
    };
    for (const Row& row : rows) {
        root->Clear();
        SCOPED_TRACE(row.steps);
        run_steps(*root, row.steps);
        EXPECT_EQ(outline_of(*root, false), row.expected);
    }
}

TEST_F(StorageParam, AnOpenNodeIsNotReplaced) {
    const auto a = CQZRef<IParam>::Adopt(root->CreateSubParam("a"));
    set_int(*a, "v", 1);
    for (const int create : {0, 1}) // the platform opens an element once
        EXPECT_EQ(thrown_by([&] { root->OpenSubParam("a", create); }), "8, 0, a");
    EXPECT_EQ(get_int(*root, "a\\v"), kNoValue) << "reading turns failures into 0";
    EXPECT_EQ(get_int(*a, "v"), 1);
}

// A storage has one name space for both.
TEST_F(StorageParam, ValuesAndChildrenShareTheirNames) {
    set_int(*root, "x", 1);
    CQZRef<IParam>::Adopt(root->CreateSubParam("x"));
    EXPECT_EQ(outline_of(*root, false), "x{}");
    root->DeleteValue("x");
    EXPECT_EQ(outline_of(*root, false), "x{}") << "a child is no value";
    set_int(*root, "x", 2);
    EXPECT_EQ(outline_of(*root, false), "x=2");
}

TEST_F(StorageParam, WhatCannotBeReadIsNoValue) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "an empty stream reads as an empty variant"},
        {"1400 00000000", "unknown type"},
        {"1100", "no count"},
        {"1100 ffffffff 01", "an impossible count"},
        {"1200 'NoSuchClass' 00 04000000 'abc'", "an object cut short"},
    };
    for (const auto& [bytes, what] : rows) {
        SCOPED_TRACE(what);
        put_stream(*storage, "v", test::from_hex(bytes));
        CQZVariant out(5);
        EXPECT_EQ(root->GetValue("v", &out), 0);
        EXPECT_EQ(out.vt, QZVT_EMPTY);
    }
}

TEST_F(StorageParam, AValueThatTheStorageRefusesIsToldNotLost) {
    const std::string long_name(40, 'n');
    EXPECT_EQ(thrown_by([&] { set_int(*root, long_name.c_str(), 1); }), "15, 0, " + long_name);
    EXPECT_EQ(thrown_by([&] { root->CreateSubParam(long_name.c_str()); }), "7, 0, " + long_name);
    EXPECT_EQ(new_IXStorParam(nullptr), nullptr);
}

TEST_F(StorageParam, WithoutMemoryForALongPathTheCallerIsTold) {
    const std::string path = std::string(600, 'n') + "\\v";
    CQZVariant out(5);
    const LimitedMemory none;
    EXPECT_EQ(thrown_by([&] { set_int(*root, path.c_str(), 1); }), "2");
    EXPECT_EQ(thrown_by([&] { root->CreateSubParam(path.c_str()); }), "2");
    EXPECT_EQ(thrown_by([&] { root->OpenSubParam(path.c_str(), 1); }), "2");
    EXPECT_EQ(root->GetValue(path.c_str(), &out), 0);
}

TEST_F(StorageParam, ClearAloneCommits) {
    const std::wstring path = folder.path(L"f");
    storage = StorageRef::Adopt(new_Storage(path.c_str(), QZSTORAGE_TRANSACTED));
    root = tree_over(storage);
    set_int(*root, "v", 1);
    root.Reset();
    storage.Reset(); // commits at last
    storage = StorageRef::Adopt(open_Storage(path.c_str(), 0));
    EXPECT_EQ(layout_of(*storage), "v=6");
    root = tree_over(storage);
    root->Clear();
    const auto platform =
        CQZRef<IStorage>::Adopt(static_cast<IStorage*>(Storage_GetOLEStorage(storage.Get())));
    set_int(*root, "w", 1);
    EXPECT_EQ(platform->Revert(), S_OK);
    EXPECT_EQ(layout_of(*storage), "") << "what came before was committed, what came after was not";
}

TEST_F(StorageParam, ManyLevelsAreWalkedAndReleasedWithoutDeepRecursion) {
    constexpr int kLevels = 2000;
    std::string path;
    auto node = CQZRef<IParam>::Adopt(root->CreateSubParam("a"));
    for (int i = 1; i < kLevels; ++i)
        node = CQZRef<IParam>::Adopt(node->CreateSubParam("a"));
    set_int(*node, "v", 5);
    node.Reset();
    for (int i = 0; i < kLevels; ++i)
        path += "a\\";
    EXPECT_EQ(get_int(*root, (path + "v").c_str()), 5);
}

} // namespace
