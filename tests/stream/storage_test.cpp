// Storages on the platform's own compound files.
#include "support/limited_memory.h"
#include "support/param_outline.h"
#include "support/scratch_folder.h"
#include "support/storages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <initializer_list>
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

// A sound compound file, and where its numbers lie: header, sector table, directory.
class DamagedFiles : public testing::Test {
protected:
    DamagedFiles() {
        {
            const auto root = StorageRef::Adopt(new_Storage(folder.path(L"sound").c_str(), 0));
            put_stream(*root, "a", pattern(100));
            put_stream(*StorageRef::Adopt(root->CreateStorage("c")), "b", pattern(5000));
            put_stream(*root, "large", pattern(40000)); // all fits the first sector of the table
        }
        sound = folder.contents(L"sound");
        table = (number_at(76) + 1) * 512;
        directory = (number_at(48) + 1) * 512;
    }

    unsigned number_at(std::size_t at) const {
        unsigned number = 0;
        std::memcpy(&number, sound.data() + at, sizeof number);
        return number;
    }

    // Of a stream's entry in the first sectors of the directory.
    std::size_t entry_of(char name) const {
        std::size_t at = directory;
        while (sound[at] != name || sound[at + 1] != 0 || sound[at + 2] != 0)
            at += 128;
        return at;
    }

    std::wstring changed(std::size_t at, std::initializer_list<unsigned> numbers, std::size_t cut = 0) const {
        std::string bytes = sound.substr(0, sound.size() - cut);
        for (const unsigned number : numbers) {
            std::memcpy(&bytes[at], &number, sizeof number);
            at += sizeof number;
        }
        return folder.file(L"changed", bytes);
    }

    static constexpr std::size_t kFirst = 116, kSize = 120; // in an entry

    struct Row {
        const char* what;
        std::size_t at;
        std::initializer_list<unsigned> numbers;
        std::size_t cut = 0;
    };

    ScratchFolder folder;
    std::string sound;
    std::size_t table = 0, directory = 0;
};

// Some platforms hang on such files, or end the process, perhaps only when they are written to.
TEST_F(DamagedFiles, DoNotOpen) {
    const Row rows[] = {
        {"sectors of another size", 30, {0x00060003}},
        {"a sector table behind the end", 76, {0x00FFFFFF}},
        {"a sector table behind the count", 80, {3}},
        {"a list of sector tables behind the end", 68, {0x00FFFFFF, 1}},
        {"a directory outside the table", 48, {0x00FFFFFF}},
        {"a directory in a circle", table + number_at(48) * 4, {number_at(48)}},
        {"a directory without its end",
         table + number_at(48) * 4,
         {number_at(table + number_at(48) * 4)},
         sound.size() - directory - 512},
        {"small sectors in a circle",
         table + number_at(directory + kFirst) * 4,
         {number_at(directory + kFirst)}},
        {"fewer small sectors than they are said to be", directory + kSize, {1 << 20}},
        {"a small stream behind the small sectors", directory + kSize, {64}},
        {"a small stream that claims more than it has", entry_of('a') + kSize, {166}},
        {"a large stream that claims more than it has", entry_of('b') + kSize, {5121}},
        {"a root that is its own child", directory + 76, {0}},
        {"an entry beyond the directory", directory + 128 + 72, {1000}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const std::wstring path = changed(row.at, row.numbers, row.cut);
        EXPECT_EQ(thrown_by([&] { open_Storage(path.c_str(), 0); }), "15, 0, " + narrow(path));
        EXPECT_EQ(thrown_by([&] { open_Storage(path.c_str(), 1); }), "15, 0, " + narrow(path));
    }
}

TEST_F(DamagedFiles, OpenWhereThePlatformReadsThemWholeAndGrow) {
    const std::size_t slack = (512 - 40000 % 512) % 512; // behind the last bytes
    const Row rows[] = {
        {"nothing changed", 0, {}},
        {"a last sector that is not full", 0, {}, 1},
        {"a last sector with its bytes alone", 0, {}, slack},
        {"a count of many", 44, {0x7FFFFFFF}},
        {"other marks behind the sectors of the table", 80, {0xFFFFFFFD, 0xFFFFFFFE, 0xFFFFFFFF, 0xFFFFFFFE}},
        {"a sector of the table that counts as free", table, {0xFFFFFFFF}},
        {"garbage above the size of a stream", entry_of('a') + 124, {0x12345678}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const std::wstring path = changed(row.at, row.numbers, row.cut);
        const std::string before = folder.contents(L"changed");
        const auto opened = [&path](int mode) {
            auto root = StorageRef::Adopt(open_Storage(path.c_str(), mode));
            EXPECT_TRUE(get_stream(*root, "a") == pattern(100));
            EXPECT_TRUE(get_stream(*StorageRef::Adopt(root->OpenStorage("c")), "b") == pattern(5000));
            EXPECT_TRUE(get_stream(*root, "large") == pattern(40000));
            return root;
        };
        EXPECT_EQ(opened(2)->CreateStream("new"), nullptr) << "any mode but 0 is for reading";
        EXPECT_TRUE(folder.contents(L"changed") == before);
        put_stream(*opened(0), "new", pattern(200'000));
        EXPECT_TRUE(get_stream(*opened(1), "new") == pattern(200'000));
    }
}

TEST_F(DamagedFiles, AreMendedOnlyWhereNothingElseChangesAndNobodyWrites) {
    const auto refused = [this](const std::wstring& path, const char* code) {
        const std::string before = folder.contents(L"changed");
        EXPECT_EQ(thrown_by([&] { open_Storage(path.c_str(), 0); }), code + narrow(path));
        EXPECT_TRUE(folder.contents(L"changed") == before);
    };
    const std::wstring odd = changed(80, {0xFFFFFFFE});
    {
        const std::ofstream other(std::filesystem::path(odd), std::ios::app);
        refused(odd, "8, 0, ");
    }
    const unsigned list = number_at(entry_of('b') + kFirst); // among the bytes of a stream
    sound.replace((list + 1) * 512, 512, "\xFE" + std::string(511, '\xFF'));
    refused(changed(68, {list, 1}), "15, 0, ");
}

// What lies before the cut is still there.
TEST_F(DamagedFiles, GiveWhatIsLeftWhenTheyWereCutShort) {
    const auto root = StorageRef::Adopt(open_Storage(changed(0, {}, 10000).c_str(), 1));
    EXPECT_TRUE(get_stream(*root, "a") == pattern(100));
    const auto large = StreamRef::Adopt(root->OpenStream("large"));
    std::string bytes(25000, ' ');
    EXPECT_EQ(large->Read(bytes.data(), 25000), 25000u);
    EXPECT_TRUE(bytes == pattern(40000).substr(0, 25000));
}

// Each of many entries claims the same long chain. To follow it for each of them takes minutes.
TEST(Storage, AFileOfManyEntriesOverOneChainOpensAtOnce) {
    constexpr unsigned kEntries = 30'000, kSectors = 30'000, kNone = 0xFFFFFFFF, kEnd = 0xFFFFFFFE;
    constexpr unsigned kDirectory = (kEntries + 1) / 4 + 1, kTable = (kDirectory + kSectors) / 127 + 1;
    static_assert(kTable > 109 && kTable < 109 + 4 * 127);
    const unsigned list = kTable, directory = list + 4, data = directory + kDirectory, end = data + kSectors;
    std::vector<unsigned> file((end + 1) * 128, kNone); // the header first, and then the sectors
    const auto sector = [&](unsigned number) { return &file[(number + 1) * std::size_t{128}]; };
    std::memcpy(file.data(), "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    const unsigned header[] = {0x0003003E, 0x0009FFFE, 6, 0, 0, kTable, directory, 0, 4096, kEnd, 0, list, 4};
    std::copy(std::begin(header), std::end(header), &file[6]);
    for (unsigned i = 0; i < kTable; ++i)
        (i < 109 ? file[19 + i] : sector(list + (i - 109) / 127)[(i - 109) % 127]) = i;
    for (unsigned i = 0; i < 4; ++i)
        sector(list)[i * 128 + 127] = i < 3 ? list + i + 1 : kEnd;
    for (unsigned i = 0; i < end; ++i)
        sector(0)[i] = i < list ? 0xFFFFFFFD : i < directory ? 0xFFFFFFFC : i + 1;
    sector(0)[data - 1] = sector(0)[end - 1] = kEnd;
    for (unsigned i = 0; i <= kEntries; ++i) { // each is the right sibling of the one before it
        unsigned* const entry = sector(directory) + i * 32;
        entry[0] = '0' + i / 10000 + (('0' + i / 1000 % 10) << 16);
        entry[1] = '0' + i / 100 % 10 + (('0' + i / 10 % 10) << 16);
        entry[2] = '0' + i % 10;
        entry[16] = 12 | (i == 0 ? 5 : 2) << 16 | 1 << 24;
        entry[17] = entry[18] = entry[19] = kNone;
        if (i < kEntries) entry[i == 0 ? 19 : 18] = i + 1;
        entry[29] = i == 0 ? kEnd : data;
        entry[30] = i == 0 ? 0 : kSectors * 512;
    }
    const ScratchFolder folder;
    const auto opened = [&] {
        const std::string bytes(reinterpret_cast<const char*>(file.data()), file.size() * sizeof(unsigned));
        return StorageRef::Adopt(open_Storage(folder.file(L"f", bytes).c_str(), 1));
    };
    EXPECT_EQ(StreamRef::Adopt(opened()->OpenStream("00001"))->GetSize(), kSectors * 512);
    sector(list)[127] = list; // a list in a circle, of which the header says that it is long
    file[18] = kNone;
    EXPECT_EQ(thrown_by(opened).substr(0, 5), "15, 0");
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
