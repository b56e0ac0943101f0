// The registry of locked paths: its counts, and the file handle behind each record.
#include "qzfile.h"
#include "support/file_failure.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

namespace {

// The file, opened by somebody else.
struct OtherHandle {
    OtherHandle(const std::wstring& path, DWORD access, DWORD share)
        : handle(CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr)),
          error(handle != INVALID_HANDLE_VALUE ? ERROR_SUCCESS : GetLastError()) {}
    ~OtherHandle() {
        if (error == ERROR_SUCCESS) CloseHandle(handle);
    }
    OtherHandle(const OtherHandle&) = delete;
    OtherHandle& operator=(const OtherHandle&) = delete;

    const HANDLE handle;
    const DWORD error;
};

// Whether somebody else could write to the file: the registry's handle shares reading alone.
bool open_to_writers(const std::wstring& path) {
    return OtherHandle(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE).error == ERROR_SUCCESS;
}

TEST(LockRegistry, CountsEachKindAndHoldsTheFileUntilTheLastUnlock) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"a.txt");
    const struct {
        char step; // S, s: take and give back a shared lock; X, x: an exclusive one
        int shared, exclusive;
        bool held;
    } rows[] = {
        {'s', 0, 0, false}, // nothing to give back
        {'S', 1, 0, true},  {'S', 2, 0, true},  {'X', 2, 1, true},  {'s', 1, 1, true},
        {'s', 0, 1, true},  {'s', 0, 1, true}, // a kind that is not there stays at none
        {'X', 0, 2, true},  {'x', 0, 1, true},  {'x', 0, 0, false}, {'X', 0, 1, true},
        {'s', 0, 1, true},  {'x', 0, 0, false}, {'x', 0, 0, false},
    };
    int number = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(number++) + " " + row.step);
        const bool exclusive = row.step == 'X' || row.step == 'x';
        const bool take = row.step == 'X' || row.step == 'S';
        (take ? Fio_LockFile : Fio_UnlockFile)(path.c_str(), exclusive);
        EXPECT_EQ(Fio_LockCount(path.c_str(), false), row.shared);
        EXPECT_EQ(Fio_LockCount(path.c_str(), true), row.exclusive);
        EXPECT_EQ(open_to_writers(path), !row.held);
    }
}

TEST(LockRegistry, MatchesPathsAsWrittenWithoutCase) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"\x0416\x0443k.txt");
    Fio_LockFile(path.c_str(), false); // of a missing file: its record stays all the same
    const struct {
        std::wstring path;
        int count;
    } rows[] = {
        {path, 1},
        {folder.path(L"\x0436\x0423K.TXT"), 1},
        {folder.path(L".\\\x0416\x0443k.txt"), 0},
        {path + L" ", 0},
        {path + L"\\", 0},
        {L"", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.path.c_str()));
        EXPECT_EQ(Fio_LockCount(row.path.c_str(), false), row.count);
    }
    EXPECT_EQ(Fio_LockCount(nullptr, false), 0);
    Fio_UnlockFile(folder.path(L"\x0436\x0443K.txt").c_str(), false);
    EXPECT_EQ(Fio_LockCount(path.c_str(), false), 0);
}

TEST(LockRegistry, RecordsAMissingFileForSharedLocksAlone) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"missing");
    Fio_LockFile(path.c_str(), true);
    EXPECT_EQ(Fio_LockCount(path.c_str(), true), 0);
    Fio_LockFile(path.c_str(), false);
    EXPECT_EQ(Fio_LockCount(path.c_str(), false), 1);
    Fio_LockFile(path.c_str(), true); // joins the record that is there
    EXPECT_EQ(Fio_LockCount(path.c_str(), true), 1);
    Fio_UnlockFile(path.c_str(), true);

    folder.file(L"missing");
    EXPECT_TRUE(open_to_writers(path));
    Fio_ChangeNELock(path.c_str(), false);
    EXPECT_FALSE(open_to_writers(path)) << "the file that appeared is held now";
    Fio_UnlockFile(path.c_str(), false);
    EXPECT_TRUE(open_to_writers(path));
}

TEST(LockRegistry, LeavesNoTraceOfWhatItCannotHold) {
    const ScratchFolder folder;
    const std::wstring long_path = folder.path() + L"\\" + std::wstring(512 - folder.path().size() - 1, L'a');
    const std::wstring paths[] = {folder.path(), L"?*", long_path, folder.path(L"no\\such\\folder\\file")};
    for (const std::wstring& path : paths) {
        SCOPED_TRACE(narrow(path.c_str()));
        Fio_LockFile(path.c_str(), true);
        EXPECT_EQ(Fio_LockCount(path.c_str(), true), 0);
    }
    ASSERT_EQ(long_path.size(), 512u);
    Fio_LockFile(long_path.c_str(), false);
    EXPECT_EQ(Fio_LockCount(long_path.c_str(), false), 0) << "one unit too long";
    const std::wstring longest = long_path.substr(0, 511);
    Fio_LockFile(longest.c_str(), false);
    EXPECT_EQ(Fio_LockCount(longest.c_str(), false), 1);
    Fio_UnlockFile(longest.c_str(), false);
    Fio_LockFile(nullptr, true);
    Fio_UnlockFile(nullptr, true);
    Fio_ChangeNELock(nullptr, true);
}

TEST(LockRegistry, SwitchLetsMemoryPathsIn) {
    const wchar_t path[] = L"fmem::1,2";
    for (const int on : {0, 1, 7, 0}) {
        static int before = 0;
        SCOPED_TRACE(on);
        EXPECT_EQ(Fio_EnableLocking(on), before);
        before = on;
        for (const bool exclusive : {false, true}) {
            Fio_LockFile(path, exclusive); // there is no file of that name to hold
            EXPECT_EQ(Fio_LockCount(path, exclusive), 0);
        }
    }
}

TEST(LockRegistry, LetsGoAndTakesBackButNotAnExclusiveLock) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"a.txt");
    Fio_ChangeNELock(path.c_str(), true); // nothing is locked
    Fio_ChangeNELock(path.c_str(), false);
    EXPECT_TRUE(open_to_writers(path));

    Fio_LockFile(path.c_str(), false);
    for (const bool release : {true, true, false, false}) {
        SCOPED_TRACE(release);
        Fio_ChangeNELock(path.c_str(), release);
        EXPECT_EQ(open_to_writers(path), release);
        EXPECT_EQ(Fio_LockCount(path.c_str(), false), 1);
    }
    Fio_LockFile(path.c_str(), true);
    EXPECT_EQ(failure_of([&] { Fio_ChangeNELock(path.c_str(), true); }), failure(QZERR_SEEK, 0, path));
    EXPECT_FALSE(open_to_writers(path)) << "nothing was closed";
    Fio_UnlockFile(path.c_str(), true);

    Fio_ChangeNELock(path.c_str(), true);
    std::filesystem::remove(path);
    Fio_ChangeNELock(path.c_str(), false); // there is nothing to take back
    EXPECT_EQ(Fio_LockCount(path.c_str(), false), 1);
    Fio_UnlockFile(path.c_str(), false);
}

// --- beside others: to the system it is the same whether they are in this process or in another one
// ----------

constexpr DWORD kReadWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

// What somebody else gets of a path that is locked here, whichever kind of lock it is.
TEST(LockRegistry, OthersReadAndDoNotWrite) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"a.txt");
    const struct {
        DWORD access, share, result;
    } rows[] = {
        {GENERIC_READ, kShareAll, ERROR_SUCCESS},
        {GENERIC_READ, FILE_SHARE_READ,
         ERROR_SHARING_VIOLATION}, // the registry writes too, for all they know
        {GENERIC_WRITE, kShareAll, ERROR_SHARING_VIOLATION},
        {kReadWrite, 0, ERROR_SHARING_VIOLATION},
        {DELETE, kShareAll | FILE_SHARE_DELETE, ERROR_SHARING_VIOLATION},
    };
    const auto open = [&](DWORD access, DWORD share) {
        const OtherHandle file(path, access, share);
        return file.error;
    };
    for (const bool exclusive : {false, true}) {
        Fio_LockFile(path.c_str(), exclusive);
        for (const auto& row : rows)
            EXPECT_EQ(open(row.access, row.share), row.result)
                << exclusive << ": access " << row.access << ", sharing " << row.share;
        Fio_UnlockFile(path.c_str(), exclusive);
    }
    EXPECT_EQ(open(kReadWrite, 0), DWORD{ERROR_SUCCESS});
}

// What can be locked here of a file that somebody else has open.
TEST(LockRegistry, TakesWhatOthersShare) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"a.txt");
    const struct {
        DWORD access, share;
        int count;
    } rows[] = {
        {GENERIC_READ, kShareAll, 1}, {GENERIC_READ, FILE_SHARE_READ, 0}, {GENERIC_WRITE, kShareAll, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.access << " sharing " << row.share);
        {
            const OtherHandle other(path, row.access, row.share);
            EXPECT_EQ(Fio_IsWritableFile(path.c_str()), 0) << "it wants the file for itself";
            for (const bool exclusive : {false, true}) {
                Fio_LockFile(path.c_str(), exclusive);
                EXPECT_EQ(Fio_LockCount(path.c_str(), exclusive), row.count);
                Fio_UnlockFile(path.c_str(), exclusive);
            }
            Fio_LockFile(path.c_str(), false);
        }
        Fio_ChangeNELock(path.c_str(), true);
        EXPECT_EQ(Fio_IsWritableFile(path.c_str()), 1);
        EXPECT_EQ(open_to_writers(path), row.count == 0) << "the probe took the record's handle back";
        Fio_UnlockFile(path.c_str(), false);
    }
}

} // namespace
