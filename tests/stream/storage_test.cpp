// Storages on the platform's own compound files.
#include "support/limited_memory.h"
#include "support/param_outline.h"
#include "support/scratch_folder.h"
#include "support/storages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <objbase.h>

namespace {

std::string pattern(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 7 + size);
    return bytes;
}

std::string narrow(const std::wstring& path) { return {path.begin(), path.end()}; }

// The platform's flags of a storage that the library made.
DWORD flags_of(IXStorage& storage) {
    const auto platform = CQZRef<IStorage>::Adopt(static_cast<IStorage*>(Storage_GetOLEStorage(&storage)));
    STATSTG statistics = {};
    EXPECT_EQ(platform->Stat(&statistics, STATFLAG_NONAME), S_OK);
    return statistics.grfMode;
}

constexpr std::size_t kSizes[] = {0, 1, 63, 64, 65, 511, 512, 513, 4095, 4096, 4097, 65535, 1 << 20};

TEST(Storage, StreamsOfEverySizeComeBackFromEveryPlace) {
    struct Row {
        const char* name;
        bool in_file;
        int mode;
        bool stays; // can be opened again after the release
    };
    const Row rows[] = {
        {"memory", false, 0, false},
        {"memory, transacted", false, QZSTORAGE_TRANSACTED, false},
        {"file", true, 0, true},
        {"file, transacted", true, QZSTORAGE_TRANSACTED, true},
        {"file that goes", true, QZSTORAGE_DELETE_ON_RELEASE, false},
        {"temporary", false, QZSTORAGE_TEMPORARY, true},
        {"temporary, with a path", true, QZSTORAGE_TEMPORARY | QZSTORAGE_TRANSACTED, true},
        {"temporary that goes", false, QZSTORAGE_TEMPORARY | QZSTORAGE_DELETE_ON_RELEASE, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const ScratchFolder folder;
        const std::wstring path = folder.path(L"new\\folder\\file.dat"); // its directory is made
        auto root = StorageRef::Adopt(new_Storage(row.in_file ? path.c_str() : nullptr, row.mode));
        const bool temporary = (row.mode & QZSTORAGE_TEMPORARY) != 0;
        const std::wstring file = root->GetName();
        if (temporary) {
            EXPECT_NE(file.find(L"\\QZP"), file.npos);
            EXPECT_EQ(folder.count(), 0u);
        } else {
            EXPECT_EQ(file, row.in_file ? path : L"");
        }

        const auto check = [](IXStorage& storage) {
            const auto inner = StorageRef::Adopt(storage.OpenStorage("inner"));
            for (const std::size_t size : kSizes)
                EXPECT_TRUE(get_stream(*inner, std::to_string(size).c_str()) == pattern(size)) << size;
            EXPECT_EQ(take_names(inner->EnumStreams()).size(), std::size(kSizes));
        };
        {
            const auto inner = StorageRef::Adopt(root->CreateStorage("inner"));
            for (const std::size_t size : kSizes)
                put_stream(*inner, std::to_string(size).c_str(), pattern(size));
        }
        check(*root);
        EXPECT_EQ(root->Commit(), 0);
        root.Reset();
        EXPECT_EQ(std::filesystem::exists(file), row.stays);
        if (!row.stays) continue;
        check(*StorageRef::Adopt(open_Storage(file.c_str(), 1)));
        if (temporary) DeleteFileW(file.c_str());
    }
}

TEST(Storage, ReleasingCommitsWhatWasWritten) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"file");
    {
        const auto root = StorageRef::Adopt(new_Storage(path.c_str(), QZSTORAGE_TRANSACTED));
        put_stream(*root, "first", "1");
        put_stream(*StorageRef::Adopt(root->CreateStorage("inner")), "second", "22");
    }
    EXPECT_EQ(layout_of(*StorageRef::Adopt(open_Storage(path.c_str(), 1))), "first=1 inner{second=2}");
    {
        const auto root = StorageRef::Adopt(open_Storage(path.c_str(), 0));
        EXPECT_TRUE((flags_of(*root) & STGM_TRANSACTED) != 0);
        const auto inner = StorageRef::Adopt(root->OpenStorage("inner"));
        EXPECT_TRUE((flags_of(*inner) & STGM_TRANSACTED) != 0);
        put_stream(*inner, "second", "replaced");
        put_stream(*root, "third", "333");
    }
    EXPECT_EQ(layout_of(*StorageRef::Adopt(open_Storage(path.c_str(), 1))),
              "first=1 third=3 inner{second=8}");
}

TEST(Storage, AStorageOpenedForReadingChangesNothing) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"file");
    put_stream(*StorageRef::Adopt(new_Storage(path.c_str(), 0)), "a", "1234");
    const std::string before = folder.contents(L"file");
    {
        const auto root = StorageRef::Adopt(open_Storage(path.c_str(), 2)); // any mode but 0
        EXPECT_EQ(root->CreateStream("b"), nullptr);
        EXPECT_NE(thrown_by([&] { root->CreateStorage("s"); }), "nothing");
        EXPECT_NE(thrown_by([&] { root->DestroyStream("a"); }), "nothing");
        const auto stream = StreamRef::Adopt(root->OpenStream("a"));
        EXPECT_EQ(thrown_by([&] { stream->WriteByte(1); }), "8, 1, a");
        EXPECT_EQ(root->Commit(), 0);
    }
    EXPECT_TRUE(folder.contents(L"file") == before);
}

TEST(Storage, EachFailureHasItsCode) {
    const ScratchFolder folder;
    const std::wstring good = folder.path(L"good");
    const auto root = StorageRef::Adopt(new_Storage(good.c_str(), 0));
    put_stream(*root, "stream", "x");
    const auto child = StorageRef::Adopt(root->CreateStorage("child"));
    const auto open_stream = StreamRef::Adopt(root->OpenStream("stream"));
    const std::string long_name(32, 'n'), huge_name(2000, 'n');
    const std::wstring text = folder.file(L"text", std::string(2000, 't'));
    const std::wstring empty = folder.file(L"empty", "");
    const auto at = [&](const wchar_t* name) { return narrow(folder.path(name)); };

    const std::pair<std::string, std::string> rows[] = {
        {thrown_by([&] { open_Storage(folder.path(L"none").c_str(), 0); }), "6, 0, " + at(L"none")},
        {thrown_by([&] { open_Storage(folder.path(L"no\\file").c_str(), 1); }), "6, 0, " + at(L"no\\file")},
        {thrown_by([&] { open_Storage(good.c_str(), 0); }), "8, 0, " + at(L"good")},
        {thrown_by([&] { open_Storage(good.c_str(), 1); }), "8, 0, " + at(L"good")},
        {thrown_by([&] { open_Storage(text.c_str(), 1); }), "15, 0, " + at(L"text")},
        {thrown_by([&] { open_Storage(empty.c_str(), 1); }), "15, 0, " + at(L"empty")},
        {thrown_by([&] { open_Storage(nullptr, 1); }), "7, 0, "},
        {thrown_by([&] { new_Storage(folder.path(L"r").c_str(), 1); }), "15, 0, " + at(L"r")},
        {thrown_by([&] { new_Storage(nullptr, 1); }), "15, 0, "},
        {thrown_by([&] { root->OpenStorage("none"); }), "6, 0, none"},
        {thrown_by([&] { root->OpenStorage("stream"); }), "6, 0, stream"},
        {thrown_by([&] { root->OpenStorage("child"); }), "8, 0, child"},
        {thrown_by([&] { root->CreateStorage(long_name.c_str()); }), "7, 0, " + long_name},
        {thrown_by([&] { root->CreateStorage(huge_name.c_str()); }), "7, 0, " + huge_name.substr(0, 511)},
        {thrown_by([&] { root->DestroyStorage("none"); }), "6, 4, "},
        {thrown_by([&] { root->DestroyStream("none"); }), "6, 4, "},
        {thrown_by([&] { new_StorageByOleStorage(nullptr); }), "15, 0, "},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i)
        EXPECT_EQ(rows[i].first, rows[i].second) << "row " << i;

    for (const char* const name : {"none", "child", "stream", long_name.c_str(), huge_name.c_str()})
        EXPECT_EQ(root->OpenStream(name), nullptr) << name;
    EXPECT_EQ(root->CreateStream(long_name.c_str()), nullptr);
    EXPECT_EQ(folder.count(), 3u) << "a failed creation leaves a file behind";
}

// Some platforms hang on such files, or end the process.
TEST(Storage, AFileWhoseTablesAreDamagedDoesNotOpen) {
    const ScratchFolder folder;
    {
        const auto root = StorageRef::Adopt(new_Storage(folder.path(L"sound").c_str(), 0));
        put_stream(*root, "s", pattern(100));
        put_stream(*root, "t", pattern(5000));
    }
    const std::string sound = folder.contents(L"sound");
    const auto number_at = [&sound](std::size_t at) {
        unsigned number = 0;
        std::memcpy(&number, sound.data() + at, sizeof number);
        return number;
    };
    const std::size_t table = (number_at(76) + 1) * 512; // of sectors
    const std::size_t directory = (number_at(48) + 1) * 512;
    struct Row {
        const char* what;
        std::size_t at;
        unsigned number;
        unsigned next = 0; // another number behind it; 0 for none
    };
    const Row rows[] = {
        {"sectors of another size", 30, 0x00060003},
        {"a sector table larger than the file", 44, 0x7FFFFFFF},
        {"a sector table behind the end", 76, 0x00FFFFFF},
        {"one more sector table behind the end", 80, 0x00FFFFFF},
        {"a list of sector tables behind the end", 68, 0x00FFFFFF, 1},
        {"no directory", 48, 0xFFFFFFFF},
        {"a directory outside the table", 48, 0x00FFFFFF},
        {"a directory in a circle", table + number_at(48) * 4, number_at(48)},
        {"small sectors in a circle", table + number_at(directory + 116) * 4, number_at(directory + 116)},
        {"a root that is its own child", directory + 76, 0},
        {"a sibling that is its own", directory + 128 + 68, 1},
        {"an entry beyond the directory", directory + 128 + 72, 1000},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        std::string damaged = sound;
        std::memcpy(&damaged[row.at], &row.number, row.next != 0 ? 8 : 4);
        const std::wstring path = folder.file(L"damaged", damaged);
        EXPECT_EQ(thrown_by([&] { open_Storage(path.c_str(), 0); }), "15, 0, " + narrow(path));
        EXPECT_EQ(thrown_by([&] { open_Storage(path.c_str(), 1); }), "15, 0, " + narrow(path));
    }
}

// Beyond 109 sectors of the sector table their list goes on in sectors of its own.
TEST(Storage, AFileWithListsOfSectorTablesOpensUnlessTheyRunInACircle) {
    const ScratchFolder folder;
    const std::string bytes = pattern(8 << 20);
    const std::wstring path = folder.path(L"large");
    put_stream(*StorageRef::Adopt(new_Storage(path.c_str(), 0)), "s", bytes);
    EXPECT_TRUE(get_stream(*StorageRef::Adopt(open_Storage(path.c_str(), 1)), "s") == bytes);
    std::string file = folder.contents(L"large");
    unsigned list = 0;
    std::memcpy(&list, &file[68], sizeof list);
    ASSERT_LT(list, file.size() / 512);
    std::memcpy(&file[(list + 1) * 512 + 508], &list, sizeof list);
    std::memset(&file[72], 0xFF, 4);
    const std::wstring circle = folder.file(L"circle", file);
    EXPECT_EQ(thrown_by([&] { open_Storage(circle.c_str(), 1); }), "15, 0, " + narrow(circle));
}

// With sectors of 512 bytes the high half of a stream's size is nothing.
TEST(Storage, ASizeWithGarbageAboveItOpens) {
    const ScratchFolder folder;
    put_stream(*StorageRef::Adopt(new_Storage(folder.path(L"f").c_str(), 0)), "s", pattern(100));
    std::string bytes = folder.contents(L"f");
    unsigned directory = 0;
    std::memcpy(&directory, bytes.data() + 48, sizeof directory);
    bytes.replace((directory + 1) * 512 + 128 + 124, 4, "\x12\x34\x56\x78");
    const std::wstring path = folder.file(L"garbage", bytes);
    EXPECT_TRUE(get_stream(*StorageRef::Adopt(open_Storage(path.c_str(), 1)), "s") == pattern(100));
}

// What lies before the cut is still there.
TEST(Storage, AFileThatWasCutShortGivesWhatIsLeft) {
    const ScratchFolder folder;
    {
        const auto root = StorageRef::Adopt(new_Storage(folder.path(L"f").c_str(), 0));
        put_stream(*root, "small", pattern(100));
        put_stream(*root, "large", pattern(40000)); // fits the first sector of the table
    }
    const std::string whole = folder.contents(L"f");
    const std::wstring path = folder.file(L"cut", whole.substr(0, whole.size() - 10000));
    const auto root = StorageRef::Adopt(open_Storage(path.c_str(), 1));
    EXPECT_TRUE(get_stream(*root, "small") == pattern(100));
    const auto large = StreamRef::Adopt(root->OpenStream("large"));
    std::string bytes(25000, ' ');
    EXPECT_EQ(large->Read(bytes.data(), 25000), 25000u);
    EXPECT_TRUE(bytes == pattern(40000).substr(0, 25000));
}

TEST(Storage, AFailedTemporaryStorageLeavesNoFile) {
    const auto temporary_files = [] {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::temp_directory_path()))
            count += entry.path().filename().string().rfind("QZP", 0) == 0 ? 1 : 0;
        return count;
    };
    const std::size_t before = temporary_files();
    const std::string thrown =
        thrown_by([] { new_Storage(nullptr, QZSTORAGE_TEMPORARY | QZSTORAGE_READ_ONLY); });
    EXPECT_EQ(thrown.substr(0, 7), "15, 0, ");
    EXPECT_NE(thrown.find("\\QZP"), thrown.npos) << "the exception names the file";
    EXPECT_EQ(temporary_files(), before);
}

TEST(Storage, CreatingReplacesAndDestroyingRemovesEitherKind) {
    const auto root = memory_storage();
    put_stream(*root, "a", "1234");
    put_stream(*root, "A", "12"); // the platform's names know no case
    put_stream(*StorageRef::Adopt(root->CreateStorage("s")), "b", "1");
    EXPECT_EQ(layout_of(*root), "A=2 s{b=1}");
    StorageRef::Adopt(root->CreateStorage("s"));
    EXPECT_EQ(layout_of(*root), "A=2 s{}");
    root->DestroyStorage("A");
    root->DestroyStream("s");
    EXPECT_EQ(layout_of(*root), "");
}

TEST(Storage, ListsAreCopiesOfOneKind) {
    const auto root = memory_storage();
    for (const char* const name : {"x", "y", "z"}) {
        put_stream(*root, name, "");
        StorageRef::Adopt(root->CreateStorage((std::string("storage ") + name).c_str()));
    }
    using Names = CQZRef<CTEnum<const char*>>;
    const Names streams = Names::Adopt(root->EnumStreams());
    const Names storages = Names::Adopt(root->EnumStorages());
    for (const char* const name : {"x", "y", "z"})
        root->DestroyStream(name);
    const auto sorted = [](const Names& names) {
        auto all = take_names(Names(names).Detach());
        std::sort(all.begin(), all.end());
        return all;
    };
    EXPECT_EQ(sorted(streams), (std::vector<std::string>{"x", "y", "z"}));
    EXPECT_EQ(sorted(storages), (std::vector<std::string>{"storage x", "storage y", "storage z"}));
    EXPECT_EQ(take_names(root->EnumStreams()), std::vector<std::string>{});
}

TEST(Storage, AChildHoldsItsParentAndBearsItsPath) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"file");
    auto root = StorageRef::Adopt(new_Storage(path.c_str(), 0));
    EXPECT_EQ(root->GetParent(), nullptr);
    auto inner = StorageRef::Adopt(root->CreateStorage("inner"));
    auto deep = StorageRef::Adopt(inner->CreateStorage("deep"));
    EXPECT_EQ(deep->GetName(), path);
    EXPECT_EQ(StorageRef::Adopt(deep->GetParent()), inner);
    EXPECT_EQ(StorageRef::Adopt(inner->GetParent()), root);
    root.Reset();
    inner.Reset();
    put_stream(*deep, "a", "123");
    deep.Reset();
    EXPECT_EQ(layout_of(*StorageRef::Adopt(open_Storage(path.c_str(), 1))), "inner{deep{a=3}}");
}

// A stream does not hold its storage; the platform takes the stream back when the storage goes.
TEST(Storage, AStreamIsUselessWhenItsStorageIsGone) {
    auto root = memory_storage();
    const auto stream = StreamRef::Adopt(root->CreateStream("s"));
    stream->WriteDWord(1);
    root.Reset();
    char byte;
    EXPECT_EQ(thrown_by([&] { stream->Read(&byte, 1); }), "15, 1, s");
    EXPECT_EQ(thrown_by([&] { stream->WriteByte(1); }), "15, 1, s");
    EXPECT_EQ(thrown_by([&] { stream->Seek(0, 0); }), "15, 3, s");
    EXPECT_STREQ(stream->GetName(), L"s");
}

// The platform takes it back as well, but may not survive that it is committed then.
TEST(Storage, AChildThatWasRemovedCommitsNothing) {
    const std::pair<const char*, void (*)(IXStorage&)> removals[] = {
        {"destroyed", [](IXStorage& root) { root.DestroyStorage("inner"); }},
        {"replaced", [](IXStorage& root) { StorageRef::Adopt(root.CreateStorage("inner")); }},
    };
    for (const auto& [how, remove] : removals) {
        for (const int mode : {0, int{QZSTORAGE_TRANSACTED}}) {
            SCOPED_TRACE(how + std::string(", mode ") + std::to_string(mode));
            const auto root = StorageRef::Adopt(new_Storage(nullptr, mode));
            put_stream(*root, "kept", "1");
            auto inner = StorageRef::Adopt(root->CreateStorage("inner"));
            auto deep = StorageRef::Adopt(inner->CreateStorage("deep"));
            remove(*root);
            EXPECT_EQ(static_cast<HRESULT>(inner->Commit()), STG_E_REVERTED);
            EXPECT_EQ(thrown_by([&] { inner->EnumStreams(); }), "15");
            inner.Reset();
            deep.Reset(); // and its parent with it
            const std::string layout = layout_of(*root);
            EXPECT_EQ(layout, how[0] == 'd' ? "kept=1" : "kept=1 inner{}");
        }
    }
}

TEST(Storage, NamesGoThroughTheAnsiCodePage) {
    for (const wchar_t* const name : {L"caf\xE9", L"\x0436\x0443\x043A", L"\x8868\x65E5", L"a/b"}) {
        char bytes[32] = "";
        BOOL lost = FALSE;
        WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, name, -1, bytes, sizeof bytes, nullptr, &lost);
        if (lost) continue; // belongs to another code page
        SCOPED_TRACE(bytes);
        const auto root = memory_storage();
        put_stream(*root, bytes, "x");
        EXPECT_EQ(take_names(root->EnumStreams()), std::vector<std::string>{bytes});
        EXPECT_EQ(get_stream(*root, bytes), "x");
        EXPECT_EQ(std::wstring(StreamRef::Adopt(root->OpenStream(bytes))->GetName()), name);
        const auto platform =
            CQZRef<IStorage>::Adopt(static_cast<IStorage*>(Storage_GetOLEStorage(root.Get())));
        CQZRef<IStream> stream;
        EXPECT_EQ(platform->OpenStream(name, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.Put()),
                  S_OK);
    }
}

// Creating replaces what is there, so the object comes first. Its name must be too long for a recycled block.
TEST(Storage, NothingIsReplacedWhereMemoryIsMissing) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(std::wstring(255 - folder.path().size(), L'f'));
    const auto refused = [](auto call) {
        const LimitedMemory none;
        return thrown_by(call);
    };
    {
        const auto root = StorageRef::Adopt(new_Storage(path.c_str(), 0));
        const auto inner = StorageRef::Adopt(root->CreateStorage("inner"));
        put_stream(*inner, "kept", "x");
    }
    const auto root = StorageRef::Adopt(open_Storage(path.c_str(), 0));
    EXPECT_EQ(refused([&] { root->CreateStorage("inner"); }), "2");
    EXPECT_EQ(refused([&] { root->CreateStorage("new"); }), "2");
    EXPECT_EQ(layout_of(*root), "inner{kept=1}");
}

} // namespace
