// Platform objects that come from outside, and failures that only a fake one can show.
#include "platform_fakes.h"
#include "support/import_mock.h"
#include "support/scratch_folder.h"
#include "support/storages.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using test::FakeStorage;
using test::FakeStream;

TEST(OleStorage, EachPlatformResultHasItsCode) {
    struct Row {
        unsigned code;
        std::vector<unsigned> results;
    };
    const Row rows[] = {
        {6, {0x80030002, 0x80030003}},
        {14, {0x80030004}},
        {8, {0x80030005, 0x80030020, 0x80030021, 0x80030100, 0x80030106}},
        {2, {0x80030008}},
        {3, {0x80030012, 0x80030070}},
        {9, {0x80030013}},
        {12, {0x80030019, 0x8003001D, 0x8003001E, 0x80030103}},
        {11, {0x800300F0, 0x800300FA, 0x800300FD, 0x800300FE, 0x80030104, 0x80030105, 0x80030108}},
        {7, {0x800300FC}},
        {13, {0x80030201, 0x80030202}},
        {15,
         {0x80030001, 0x80030006, 0x80030009, 0x80030050, 0x80030057, 0x800300FB, 0x800300FF, 0x80030101,
          0x80030102, 0x80030107, 0x80030203, 0x80004005, 0x8007000E, 0x80070005}},
    };
    FakeStorage storage;
    FakeStream stream;
    const auto wrapped = StreamRef::Adopt(new_StreamByOleStream(&stream));
    for (const Row& row : rows) {
        for (const unsigned result : row.results) {
            SCOPED_TRACE(testing::Message() << std::hex << result);
            const std::string code = std::to_string(row.code);
            storage.result = stream.result = static_cast<HRESULT>(result);
            EXPECT_EQ(thrown_by([&] { new_StorageByOleStorage(&storage); }), code + ", 0, ");
            EXPECT_EQ(thrown_by([&] { wrapped->ReadByte(); }), code + ", 1, OLE stream");
            EXPECT_EQ(thrown_by([&] { wrapped->WriteByte(1); }), code + ", 1, OLE stream");
            EXPECT_EQ(thrown_by([&] { wrapped->Seek(1, 0); }), code + ", 3, OLE stream");
            EXPECT_EQ(thrown_by([&] { wrapped->GetPosition(); }), code + ", 3, OLE stream");
        }
    }
    EXPECT_EQ(storage.references, 1u) << "a failure gives the reference back";
    storage.result = S_OK;
    const auto opened = StorageRef::Adopt(new_StorageByOleStorage(&storage));
    storage.result = STG_E_TERMINATED; // of an enumeration it names no file
    EXPECT_EQ(thrown_by([&] { opened->EnumStreams(); }), "13");
    EXPECT_EQ(thrown_by([&] { opened->EnumStorages(); }), "13");
    EXPECT_LT(opened->Commit(), 0) << "a failed commit is told, not thrown";
}

TEST(OleStorage, TheModeFollowsThePlatforms) {
    struct Row {
        DWORD platform;
        DWORD child;  // what a child storage is opened with
        DWORD stream; // and a stream
        int commits;  // of the root: one by Commit, one by the release
    };
    constexpr DWORD kExclusive = STGM_SHARE_EXCLUSIVE, kBoth = STGM_READWRITE | kExclusive;
    const Row rows[] = {
        {STGM_READ, STGM_READ | kExclusive, STGM_READ | kExclusive, 0},
        {STGM_WRITE, kBoth, kBoth, 2},
        {STGM_READWRITE | STGM_SHARE_DENY_NONE, kBoth, kBoth, 2},
        {STGM_READWRITE | STGM_TRANSACTED, kBoth | STGM_TRANSACTED, kBoth, 2},
        {STGM_READ | STGM_TRANSACTED, kExclusive | STGM_TRANSACTED, kExclusive, 2}, // not read only alone
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.platform);
        FakeStorage platform;
        platform.mode = row.platform;
        {
            const auto root = StorageRef::Adopt(new_StorageByOleStorage(&platform));
            EXPECT_STREQ(root->GetName(), L"");
            EXPECT_EQ(root->GetParent(), nullptr);
            EXPECT_EQ(root->Commit(), 0);
            root->OpenStream("s");
            EXPECT_EQ(platform.child_flags, row.stream);
            root->CreateStream("s");
            EXPECT_EQ(platform.child_flags, row.stream | STGM_CREATE);
            platform.result = E_FAIL; // no child, and so no commit of one
            thrown_by([&] { root->OpenStorage("c"); });
            EXPECT_EQ(platform.child_flags, row.child);
            thrown_by([&] { root->CreateStorage("c"); });
            EXPECT_EQ(platform.child_flags, row.child | STGM_CREATE);
            platform.result = S_OK;
        }
        EXPECT_EQ(platform.commits, row.commits);
        EXPECT_EQ(platform.references, 1u);
    }
}

TEST(OleStorage, ObjectsAreHandedBackWithAReference) {
    FakeStorage platform;
    FakeStream platform_stream;
    {
        const auto storage = StorageRef::Adopt(new_StorageByOleStorage(&platform));
        EXPECT_EQ(platform.references, 2u);
        EXPECT_EQ(Storage_GetOLEStorage(storage.Get()), &platform);
        EXPECT_EQ(platform.references, 3u);
        platform.Release();
        const auto stream = StreamRef::Adopt(new_StreamByOleStream(&platform_stream));
        EXPECT_EQ(platform_stream.references, 2u);
        EXPECT_EQ(Stream_GetOLEStream(stream.Get()), &platform_stream);
        EXPECT_EQ(platform_stream.references, 3u);
        platform_stream.Release();
    }
    EXPECT_EQ(platform.references, 1u);
    EXPECT_EQ(platform_stream.references, 1u);

    const auto foreign = StreamRef::Adopt(new_StreamOnMemory());
    EXPECT_EQ(Stream_GetOLEStream(foreign.Get()), nullptr);
    EXPECT_EQ(Stream_GetOLEStream(nullptr), nullptr);
    EXPECT_EQ(Storage_GetOLEStorage(nullptr), nullptr);
    EXPECT_EQ(new_StreamByOleStream(nullptr), nullptr);
}

TEST(OleStorage, ManyLevelsAreReleasedWithoutDeepRecursion) {
    constexpr unsigned kLevels = 200'000;
    FakeStorage platform;
    {
        auto storage = StorageRef::Adopt(new_StorageByOleStorage(&platform));
        for (unsigned i = 0; i < kLevels; ++i)
            storage = StorageRef::Adopt(storage->OpenStorage("s"));
        EXPECT_EQ(platform.references, kLevels + 2);
    }
    EXPECT_EQ(platform.references, 1u);
}

TEST(OleStream, WhatIsNotWrittenWholeIsNoSuccess) {
    FakeStream platform;
    const auto stream = StreamRef::Adopt(new_StreamByOleStream(&platform));
    platform.takes = 3;
    EXPECT_EQ(thrown_by([&] { stream->Write("abc", 3); }), "nothing");
    EXPECT_EQ(thrown_by([&] { stream->Write("abcd", 4); }), "3, 1, OLE stream");
}

TEST(OleStream, SeekingGoesPastTheEndButNotBeforeTheStart) {
    const auto root = memory_storage();
    const auto stream = StreamRef::Adopt(root->CreateStream("s"));
    stream->Write("0123456789", 10);
    struct Row {
        int offset;
        unsigned origin;
        std::string expected; // the new position, or what is thrown
    };
    const Row rows[] = {
        {11, 0, "11"},       {7, 1, "11"},         {100, 2, "110"},          {-1, 0, "15, 3, s"},
        {-5, 1, "15, 3, s"}, {-11, 2, "15, 3, s"}, {INT_MIN, 2, "15, 3, s"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.offset << " from " << row.origin);
        stream->Seek(4, 0);
        unsigned position = 0;
        const std::string thrown = thrown_by([&] { position = stream->Seek(row.offset, row.origin); });
        EXPECT_EQ(thrown == "nothing" ? std::to_string(position) : thrown, row.expected);
        EXPECT_EQ(stream->GetPosition(), thrown == "nothing" ? position : 4u);
    }
    stream->Seek(12, 0);
    EXPECT_THROW(stream->ReadByte(), CXEofException);
    stream->WriteByte('x');
    EXPECT_EQ(get_stream(*root, "s"), "(none)") << "it is open";
    EXPECT_EQ(stream->GetSize(), 13u);
}

TEST(OleStream, PositionsAreTheLowHalfOfThePlatforms) {
    FakeStream platform;
    platform.at = 0x1'2345'6789;
    platform.size = 0x2'0000'0005;
    const auto stream = StreamRef::Adopt(new_StreamByOleStream(&platform));
    EXPECT_EQ(stream->GetPosition(), 0x2345'6789u);
    EXPECT_EQ(stream->Seek(1, 0), 0x2345'6789u);
    EXPECT_EQ(stream->GetSize(), 5u);
}

// --- creation ------------------------------------------------------------------------------------------

DWORD created_with;

HRESULT STDMETHODCALLTYPE note_file(const WCHAR*, DWORD flags, DWORD, IStorage** out) {
    created_with = flags;
    *out = nullptr;
    return STG_E_MEDIUMFULL;
}
DWORD WINAPI old_system() { return 0xC0000A04; } // 4.10, not of the NT line

TEST(StorageCreation, ModesBecomeFlags) {
    struct Row {
        int mode;
        DWORD flags; // besides those of every creation
        DWORD old_flags;
    };
    const Row rows[] = {
        {0, STGM_READWRITE, 0},
        {QZSTORAGE_READ_ONLY, STGM_READ, 0},
        {QZSTORAGE_TRANSACTED, STGM_READWRITE | STGM_TRANSACTED, 0},
        {QZSTORAGE_DELETE_ON_RELEASE, STGM_READWRITE | STGM_DELETEONRELEASE, 0},
        {QZSTORAGE_READ_ONLY | QZSTORAGE_TRANSACTED, STGM_READ | STGM_TRANSACTED, STGM_NOSCRATCH},
    };
    const ImportMock file("qzrcore.dll", "StgCreateDocfile", reinterpret_cast<void*>(&note_file));
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"f");
    for (const bool old : {false, true}) {
        const ImportMock version("qzrcore.dll", "GetVersion",
                                 old ? reinterpret_cast<void*>(&old_system)
                                     : reinterpret_cast<void*>(&GetVersion));
        for (const Row& row : rows) {
            SCOPED_TRACE(testing::Message() << row.mode << (old ? " on an old system" : ""));
            const DWORD expected = row.flags | STGM_CREATE | STGM_SHARE_EXCLUSIVE | (old ? row.old_flags : 0);
            EXPECT_EQ(thrown_by([&] { new_Storage(path.c_str(), row.mode); }).substr(0, 5), "3, 0,");
            EXPECT_EQ(created_with, expected);
        }
    }
}

HGLOBAL WINAPI no_memory(UINT, SIZE_T) { return nullptr; }
HRESULT STDMETHODCALLTYPE no_array(HGLOBAL, BOOL, ILockBytes** out) {
    *out = nullptr;
    return STG_E_ACCESSDENIED;
}

TEST(StorageCreation, MemoryThatIsMissingIsTold) {
    {
        const ImportMock mock("qzrcore.dll", "GlobalAlloc", reinterpret_cast<void*>(&no_memory));
        EXPECT_EQ(thrown_by([] { new_Storage(nullptr, 0); }), "2, 0, ");
    }
    const ImportMock mock("qzrcore.dll", "CreateILockBytesOnHGlobal", reinterpret_cast<void*>(&no_array));
    EXPECT_EQ(thrown_by([] { new_Storage(nullptr, 0); }), "8, 0, ");
}

} // namespace
