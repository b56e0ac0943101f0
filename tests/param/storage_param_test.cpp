// Parameter trees in storages.
#include "contracts/param_contract.h"
#include "contracts/persistent_note.h"
#include "qzstring.h"
#include "support/cancelling_sink.h"
#include "support/hex.h"
#include "support/import_mock.h"
#include "support/limited_memory.h"
#include "support/scratch_folder.h"
#include "support/storages.h"

#include <iterator>
#include <set>

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

INSTANTIATE_TYPED_TEST_SUITE_P(Storage, ParamContract, StorageTree);

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

// Of these nothing is read behind their counts, which is why the answer is 0.
TEST_F(StorageParam, EmptyValuesAreValuesToEveryWalk) {
    const std::pair<const char*, const char*> rows[] = {
        {"1100 00000000", "empty bytes"},
        {"1200 00", "no object"},
        {"0a00 00000000", "a text without a terminator"},
        {"1300 00000000", "a wide one"},
    };
    for (const auto& [bytes, what] : rows) {
        SCOPED_TRACE(what);
        put_stream(*storage, "v", test::from_hex(bytes));
        CQZVariant out(5);
        EXPECT_EQ(root->GetValue("v", &out), 0);
        const CQZRef<IParam> copy = CQZRef<IParam>::Adopt(new_MemParam());
        Param_CopyTo(root.Get(), copy.Get());
        CQZVariant copied;
        EXPECT_EQ(copy->GetValue("v", &copied), 1);
        EXPECT_EQ(describe(copied), describe(out));
        EXPECT_EQ(Param_Cmp(root.Get(), copy.Get()), 1);
        EXPECT_EQ(Param_Cmp(copy.Get(), root.Get()), 1);
        const auto forms = [](IParam& tree) {
            const auto stream = StreamRef::Adopt(new_StreamOnMemory());
            EXPECT_EQ(SaveParamToXStream(stream.Get(), &tree), 1);
            std::string all(stream->GetSize(), ' ');
            stream->Seek(0, 0);
            stream->Read(all.data(), static_cast<unsigned>(all.size()));
            CXString text;
            EXPECT_EQ(Param_Param2String(&tree, text), 1);
            return all + text.GetData();
        };
        EXPECT_EQ(forms(*root), forms(*copy));
    }
    storage->DestroyStream("v");
    const CQZRef<IParam> gone = CQZRef<IParam>::Adopt(new_MemParam());
    set_int(*gone, "v", 1);
    EXPECT_EQ(Param_Cmp(gone.Get(), root.Get()), 0);
}

// --- values that are replaced --------------------------------------------------------------------------

const CQZVariant& sample(int which) {
    static const CQZVariant all[] = {CQZVariant(5), CQZVariant("old"), CQZVariant(L"wide"),
                                     CQZVariant(std::string(3000, 'x').c_str()),
                                     CQZVariant(std::string(9000, 'y').c_str())};
    return all[which];
}

// However often the sink was asked before: the old value or the new one, and nothing behind it.
TEST_F(StorageParam, ACancelledSetValueLeavesTheOldValueOrTheNew) {
    StorageRef document;
    const auto sink = CQZRef<CancellingSink>::Adopt(new CancellingSink);
    new_CIXDocStorage(storage.Get(), sink.Get(), document.Put(), 0);
    const auto tree = tree_over(document);
    for (int from = -1; from < 5; ++from) {
        for (int to = 0; to < 5; ++to) {
            for (int asked = 1;; ++asked) {
                SCOPED_TRACE(testing::Message() << from << " to " << to << ", cancelled at " << asked);
                root->DeleteValue("v");
                if (from >= 0) root->SetValue("v", &sample(from));
                const std::string before = get_stream(*storage, "v");
                root->SetValue("w", &sample(to));
                const std::string after = get_stream(*storage, "w");
                sink->asked = 0;
                sink->cancel_from = asked;
                const bool cancelled = thrown_by([&] { tree->SetValue("v", &sample(to)); }) == "1";
                const std::string found = get_stream(*storage, "v");
                EXPECT_TRUE(found == after || (cancelled && found == before)) << found.size();
                if (!cancelled) break;
            }
        }
    }
}

TEST_F(StorageParam, AnObjectIsSavedToItsDocumentOrTheOldValueStays) {
    const auto note = CQZRef<test::PersistentNote>::Adopt(new test::PersistentNote("saved"));
    CQZVariant object;
    object.vt = QZVT_OBJECT;
    object.pUnkVal = CQZRef<test::PersistentNote>(note).Detach();
    root->SetValue("v", &sample(3));
    note->on_save = [](IXStream*) { throw CXMemException(); };
    for (const char* const name : {"v", "new"})
        EXPECT_EQ(thrown_by([&] { root->SetValue(name, &object); }), "2");
    EXPECT_EQ(layout_of(*storage), "v=3007");

    StorageRef document, told;
    new_CIXDocStorage(storage.Get(), nullptr, document.Put(), 7);
    note->on_save = [&told](IXStream* stream) {
        const auto info = CQZRef<IDocStrorageInfo>::Query(stream);
        ASSERT_TRUE(info);
        EXPECT_EQ(info->GetFlags(), 7u);
        info->GetDocStorage(told.Put());
    };
    tree_over(document)->SetValue("v", &object);
    EXPECT_EQ(told, document);
    EXPECT_EQ(get_stream(*storage, "v"), test::from_hex("1200 'TestNote' 00 06000000 05 'saved'"));
}

// A disk with room for some pages: a file can be made longer, but not filled.
std::set<unsigned> pages;
std::size_t most_pages;
decltype(WriteFile)* real_write;

BOOL WINAPI write_to_full_disk(HANDLE file, const void* bytes, DWORD n, DWORD* written, OVERLAPPED* place) {
    const unsigned at = SetFilePointer(file, 0, nullptr, FILE_CURRENT);
    for (unsigned page = at / 4096; n != 0 && page <= (at + n - 1) / 4096; ++page)
        pages.insert(page);
    if (pages.size() <= most_pages) return real_write(file, bytes, n, written, place);
    pages.erase(std::prev(pages.end()));
    *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

TEST_F(StorageParam, AValueWithoutRoomLeavesTheOldOne) {
    const CQZVariant longer(std::string(200'000, 'z').c_str());
    for (const char* const name : {"v", "new"}) {
        for (int old = 0; old < 5; ++old) {
            SCOPED_TRACE(testing::Message() << name << " instead of value " << old);
            pages.clear();
            most_pages = 0xFFFFFFFF;
            const ImportMock mock("ole32.dll", "WriteFile", reinterpret_cast<void*>(&write_to_full_disk));
            real_write = mock.original<decltype(WriteFile)>();
            const std::wstring path = folder.path(L"f" + std::to_wstring(old));
            const auto file = StorageRef::Adopt(new_Storage(path.c_str(), 0));
            const auto tree = tree_over(file);
            tree->SetValue("v", &sample(old));
            const std::string before = get_stream(*file, "v");
            most_pages = pages.size() + 40;
            EXPECT_NE(thrown_by([&] { tree->SetValue(name, &longer); }), "nothing");
            most_pages = 0xFFFFFFFF;
            EXPECT_TRUE(get_stream(*file, "v") == before);
            EXPECT_EQ(get_stream(*file, "new"), "(none)");
        }
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

// They are listed under other names, and stay.
TEST_F(StorageParam, ClearGoesOnOverNamesThatTheCodePageLacks) {
    const auto platform =
        CQZRef<IStorage>::Adopt(static_cast<IStorage*>(Storage_GetOLEStorage(storage.Get())));
    constexpr DWORD kNew = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
    CQZRef<IStorage> child;
    CQZRef<IStream> stream;
    ASSERT_EQ(platform->CreateStorage(L"\x0E01", kNew, 0, 0, child.Put()), S_OK);
    ASSERT_EQ(platform->CreateStream(L"\x0E02", kNew, 0, 0, stream.Put()), S_OK);
    run_steps(*root, "set a; create z; put z\\v; set x");
    root->Clear();
    root->DeleteAllValues();
    root->DeleteAllSubParams();
    EXPECT_EQ(outline_of(*root, false), "?! ?!");
    EXPECT_EQ(take_names(storage->EnumStreams()), Names{"?"});
    EXPECT_EQ(take_names(storage->EnumStorages()), Names{"?"});
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
