// Operations on files and directories: what they do, and what they throw.
#include "qzfile.h"
#include "qzstring.h"
#include "support/file_failure.h"
#include "support/import_mock.h"
#include "support/refused_call.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

namespace {

// Part of a name, in the run whose file system can hold it: under Wine that goes by the locale.
std::wstring cyrillic() {
    const char* const locale = std::getenv("QZR_LOCALE");
    return locale != nullptr && std::string(locale) == "C.UTF-8" ? L"\x0416\x0443\x043A" : L"";
}

TEST(FileOps, CopyRenameDelete) {
    const ScratchFolder folder;
    const std::wstring a = folder.file(L"a", "one");
    const std::wstring b = folder.path(L"b");
    Fio_CopyFile(a.c_str(), b.c_str(), 1);
    EXPECT_EQ(folder.contents(L"b"), "one");
    folder.file(L"a", "two");
    Fio_CopyFile(a.c_str(), b.c_str(), 0);
    EXPECT_EQ(folder.contents(L"b"), "two") << "replaces";
    const std::wstring c = folder.path(L"c" + cyrillic() + L".txt");
    Fio_RenameFile(b.c_str(), c.c_str());
    EXPECT_EQ(folder.contents(L"c" + cyrillic() + L".txt"), "two");
    Fio_DeleteFile(c.c_str());
    EXPECT_EQ(folder.count(), 1u);
}

TEST(FileOps, FailuresNameCodeOperationAndPath) {
    const ScratchFolder folder;
    const std::wstring a = folder.file(L"a", "a");
    const std::wstring b = folder.file(L"b", "b");
    const std::wstring missing = folder.path(L"missing");
    const std::wstring nowhere = folder.path(L"no\\where");
    const std::wstring under_file = folder.path(L"a\\x");
    const std::wstring held = folder.file(L"held");
    Fio_LockFile(held.c_str(), false);
    const struct {
        const char* what;
        std::function<void()> call;
        std::string thrown;
    } rows[] = {
        {"copy a missing file", [&] { Fio_CopyFile(missing.c_str(), b.c_str(), 0); }, failure(6, 8, missing)},
        {"copy over a file", [&] { Fio_CopyFile(a.c_str(), b.c_str(), 1); }, failure(11, 8, a)},
        {"copy into no folder", [&] { Fio_CopyFile(a.c_str(), nowhere.c_str(), 0); }, failure(7, 8, a)},
        {"copy out of memory", [&] { Fio_CopyFile(L"fmem::1,2", folder.path(L"c").c_str(), 0); },
         failure(7, 8, L"fmem::1,2")},
        {"copy into memory", [&] { Fio_CopyFile(a.c_str(), L"fmem::1,2", 0); }, failure(7, 8, a)},
        {"rename into memory", [&] { Fio_RenameFile(a.c_str(), L"Fmem::1,2"); }, failure(7, 9, a)},
        {"delete a missing file", [&] { Fio_DeleteFile(missing.c_str()); }, failure(6, 7, missing)},
        {"delete in no folder", [&] { Fio_DeleteFile(nowhere.c_str()); }, failure(7, 7, nowhere)},
        {"delete a held file", [&] { Fio_DeleteFile(held.c_str()); }, failure(8, 7, held)},
        {"delete a memory file", [] { Fio_DeleteFile(L"FMEM::1,2"); }, ""},
        {"rename to a name in use", [&] { Fio_RenameFile(a.c_str(), b.c_str()); }, failure(11, 9, a)},
        {"rename a missing file", [&] { Fio_RenameFile(missing.c_str(), nowhere.c_str()); },
         failure(6, 9, missing)},
        {"remove a missing folder", [&] { Fio_DeleteDirectory(missing.c_str()); }, failure(6, 11, missing)},
        {"remove a full folder", [&] { Fio_DeleteDirectory(folder.path().c_str()); },
         failure(11, 11, folder.path())},
        {"create below a file", [&] { Fio_CreateDirectory(under_file.c_str()); }, failure(7, 10, under_file)},
        {"create the bad name", [&] { Fio_CreateDirectory(folder.path(L"x?y\\z").c_str()); },
         failure(7, 10, folder.path(L"x?y"))},
        {"create in memory", [] { Fio_CreateDirectory(L"fmem::1,2"); }, ""},
        {"create nothing", [] { Fio_CreateDirectory(L""), Fio_CreateDirectory(nullptr); }, ""},
        {"create over a file", [&] { Fio_CreateDirectory(a.c_str()); }, ""},
        {"change to a missing folder", [&] { Fio_SetCurrentDirectory(missing.c_str()); },
         failure(6, 14, missing)},
        {"change to a URL", [] { Fio_SetCurrentDirectory(L"http://h/x"); }, failure(7, 14, L"http://h/x")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(failure_of(row.call), row.thrown);
    }
    Fio_UnlockFile(held.c_str(), false);
    EXPECT_EQ(folder.contents(L"b"), "b");
    EXPECT_EQ(folder.count(), 3u);
}

TEST(FileOps, CreateDirectoryMakesEveryParent) {
    const ScratchFolder folder;
    const std::wstring cyr = L"x" + cyrillic() + L"\\y" + cyrillic();
    const struct {
        const wchar_t* path;
        const wchar_t* made;
    } rows[] = {
        {L"one", L"one"},
        {L"two\\", L"two"},
        {L"a\\b\\c", L"a\\b\\c"},
        {L"a/b/d/", L"a\\b\\d"},
        {L"a\\\\e//f", L"a\\e\\f"},
        {cyr.c_str(), cyr.c_str()},
        {L"a\\..\\g\\.\\h", L"g\\h"},
    };
    for (const auto& row : rows) {
        for (int again = 0; again < 2; ++again) {
            SCOPED_TRACE(narrow(row.path));
            EXPECT_EQ(failure_of([&] { Fio_CreateDirectory((folder.path() + L"\\" + row.path).c_str()); }),
                      "");
            EXPECT_TRUE(folder.has(row.made));
        }
    }
    Fio_CreateDirectory((L"\\\\?\\" + folder.path(L"deep\\er")).c_str());
    EXPECT_TRUE(folder.has(L"deep\\er")) << "computer and share are no directories to be made";
    Fio_DeleteDirectory(folder.path(L"deep\\er").c_str());
    EXPECT_FALSE(folder.has(L"deep\\er"));
}

// Nothing exists, and everything can be made.
TEST(FileOps, CreateDirectoryLeavesOutDrivesComputersAndShares) {
    static std::string made;
    const ImportMock find("qzrcore.dll", "FindFirstFileW",
                          reinterpret_cast<void*>(+[](const wchar_t*, WIN32_FIND_DATAW*) -> HANDLE {
                              SetLastError(ERROR_FILE_NOT_FOUND);
                              return INVALID_HANDLE_VALUE;
                          }));
    const ImportMock create("qzrcore.dll", "CreateDirectoryW",
                            reinterpret_cast<void*>(+[](const wchar_t* path, SECURITY_ATTRIBUTES*) -> BOOL {
                                made += narrow(path) + "|";
                                return TRUE;
                            }));
    const struct {
        const wchar_t* path;
        const char* made;
    } rows[] = {
        {LR"(C:)", ""},
        {LR"(C:\)", ""},
        {LR"(C:\a\)", R"(C:\a|)"},
        {LR"(C:a)", R"(C:a|)"},
        {LR"(\\s\h)", ""},
        {LR"(\\s\h\a\b)", R"(\\s\h\a|\\s\h\a\b|)"},
        {LR"(//s/h/a)", R"(//s/h/a|)"},
        {LR"(\\?\C:\a)", R"(\\?\C:\a|)"},
        {LR"(\\?\unc\s\h\)", ""},
        {LR"(\\?\UNC\s\h\a\b)", R"(\\?\UNC\s\h\a|\\?\UNC\s\h\a\b|)"},
    };
    for (const auto& row : rows) {
        made.clear();
        Fio_CreateDirectory(row.path);
        EXPECT_EQ(made, row.made) << narrow(row.path);
    }
}

TEST(FileOps, CreateDirectoryTakesOneThatAppearsMeanwhile) {
    static decltype(CreateDirectoryW)* original;
    const ScratchFolder folder;
    const ImportMock mock(
        "qzrcore.dll", "CreateDirectoryW",
        reinterpret_cast<void*>(+[](const wchar_t* path, SECURITY_ATTRIBUTES* security) -> BOOL {
            original(path, security); // the other one
            return original(path, security);
        }));
    original = mock.original<decltype(CreateDirectoryW)>();
    EXPECT_EQ(failure_of([&] { Fio_CreateDirectory(folder.path(L"a\\b").c_str()); }), "");
    EXPECT_TRUE(folder.has(L"a\\b"));
}

TEST(FileOps, CurrentDirectory) {
    const ScratchFolder folder;
    const std::wstring before = std::filesystem::current_path().wstring();
    Fio_SetCurrentDirectory(folder.path().c_str());
    Fio_CreateDirectory(L"relative\\down");
    EXPECT_TRUE(folder.has(L"relative\\down"));
    const int fits = static_cast<int>(folder.path().size()) + 1;
    const struct {
        int size;
        std::wstring text;
    } rows[] = {
        {512, folder.path()}, {fits, folder.path()}, {fits - 1, L""}, {1, L""}, {0, L"*"}, {-1, L"*"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.size);
        wchar_t buffer[512] = L"*";
        Fio_GetCurrentDirectory(buffer, row.size);
        EXPECT_STREQ(buffer, row.text.c_str());
    }
    Fio_GetCurrentDirectory(nullptr, 5);
    Fio_SetCurrentDirectory(before.c_str());
}

TEST(FileOps, TempFileIsNewEmptyAndInABufferOfItsOwn) {
    const wchar_t* const first = Fio_GetTempFileName();
    const std::wstring one = first;
    const std::wstring two = Fio_GetTempFileName();
    EXPECT_EQ(first, Fio_GetTempFileName()) << "one buffer for all";
    const std::wstring three = first;
    EXPECT_NE(one, two);
    for (const std::wstring& path : {one, two, three}) {
        const std::filesystem::path file(path);
        EXPECT_EQ(file.filename().wstring().substr(0, 3), L"QZP");
        EXPECT_EQ(std::filesystem::file_size(file), 0u);
        std::filesystem::remove(file);
    }
}

TEST(FileOps, TheSystemMayNameNoDirectory) {
    const RefusedCall no_temporary_one("GetTempPathW", ERROR_TOO_MANY_OPEN_FILES);
    EXPECT_EQ(failure_of([] { Fio_GetTempFileName(); }), failure(14, 0, L""));
    const RefusedCall no_current_one("GetCurrentDirectoryW", ERROR_ACCESS_DENIED);
    wchar_t buffer[9] = L"*";
    Fio_GetCurrentDirectory(buffer, 9);
    EXPECT_STREQ(buffer, L"");
}

} // namespace
