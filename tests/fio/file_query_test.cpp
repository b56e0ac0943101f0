// What the file system tells of a file: size and time, existence, owner, whether it may be written.
#include "qzfile.h"
#include "qzstring.h"
#include "support/file_failure.h"
#include "support/import_mock.h"
#include "support/refused_call.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

TEST(FileInfo, SizeAndTimeOfTheLastWrite) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"a.txt", "12345");
    const SYSTEMTIME time = {2024, 2, 0, 29, 23, 58, 57, 0}; // a Thursday
    FILETIME stamp;
    ASSERT_TRUE(SystemTimeToFileTime(&time, &stamp));
    const HANDLE file =
        CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_TRUE(SetFileTime(file, nullptr, nullptr, &stamp));
    CloseHandle(file);
    for (const std::wstring& name : {path, folder.path(L"*.t?t"), folder.path() + L"/A.TXT"}) {
        SCOPED_TRACE(narrow(name.c_str()));
        FioFileInfo info = {};
        Fio_GetFileInfo(name.c_str(), &info);
        const unsigned found[] = {info.size, info.second,    info.minute, info.hour,
                                  info.day,  info.dayOfWeek, info.month,  info.year};
        const unsigned wanted[] = {5, 57, 58, 23, 29, 4, 2, 2024};
        EXPECT_TRUE(std::equal(std::begin(found), std::end(found), std::begin(wanted)));
    }
    Fio_GetFileInfo(path.c_str(), nullptr);
}

TEST(FileInfo, OfAMemoryPathIsTheSizeAlone) {
    const struct {
        const wchar_t* path;
        unsigned size;
    } rows[] = {
        {L"fmem::1,2", 2},    {L"FMem::1.2", 2},    {L"fmem::1,,.2x", 2},
        {L"fmem::,1,30", 30}, {L"fmem::1,-1", ~0u}, {L"fmem::1", 0},
        {L"fmem::", 0},       {L"fmem::1,x", 0},    {L"fmem::77,4096,9", 4096},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.path));
        FioFileInfo info = {7, 7, 7, 7, 7, 7, 7, 7};
        Fio_GetFileInfo(row.path, &info);
        EXPECT_EQ(info.size, row.size);
        EXPECT_EQ(info.second + info.minute + info.hour + info.day + info.dayOfWeek + info.month + info.year,
                  49u);
        EXPECT_EQ(Fio_IsFileExist(row.path), 1);
        EXPECT_EQ(Fio_IsWritableFile(row.path), 1);
        Fio_GetFileInfo(row.path, nullptr);
    }
}

TEST(FileInfo, OfNothingThrowsAndTheQueryAnswers0) {
    const ScratchFolder folder;
    const struct {
        const char* what;
        std::wstring path;
        unsigned code;
    } rows[] = {
        {"missing", folder.path(L"missing"), QZERR_NOT_FOUND},
        {"in no folder", folder.path(L"no\\where"), QZERR_BAD_PATH},
        {"pattern without a match", folder.path(L"*.zip"), QZERR_NOT_FOUND},
    };
    DWORD mode = GetThreadErrorMode();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        FioFileInfo info = {};
        EXPECT_EQ(failure_of([&] { Fio_GetFileInfo(row.path.c_str(), &info); }),
                  failure(row.code, QZOP_FILE_INFO, row.path));
        EXPECT_EQ(Fio_IsFileExist(row.path.c_str()), 0);
    }
    EXPECT_EQ(Fio_IsFileExist(nullptr), 0);
    EXPECT_EQ(Fio_IsFileExist(folder.path().c_str()), 1) << "a folder";
    EXPECT_EQ(GetThreadErrorMode(), mode) << "restored";

    // While it looks, the system asks the user nothing.
    static DWORD seen;
    const ImportMock mock("qzrcore.dll", "FindFirstFileW",
                          reinterpret_cast<void*>(+[](const wchar_t*, WIN32_FIND_DATAW*) -> HANDLE {
                              seen = GetThreadErrorMode();
                              SetLastError(ERROR_NOT_READY);
                              return INVALID_HANDLE_VALUE;
                          }));
    EXPECT_EQ(failure_of([] { Fio_GetFileInfo(L"a:\\x", nullptr); }), failure(QZERR_DEVICE, 12, L"a:\\x"));
    EXPECT_EQ(seen, DWORD{SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX});
}

TEST(FileAccess, WritableFile) {
    const ScratchFolder folder;
    const std::wstring plain = folder.file(L"plain");
    const std::wstring read_only = folder.file(L"read_only");
    SetFileAttributesW(read_only.c_str(), FILE_ATTRIBUTE_READONLY);
    const std::wstring shared = folder.file(L"shared");
    Fio_LockFile(shared.c_str(), false);
    const std::wstring exclusive = folder.file(L"exclusive");
    Fio_LockFile(exclusive.c_str(), true);
    const std::wstring open = folder.file(L"open");
    std::ifstream reader{std::filesystem::path(open)};
    const struct {
        std::wstring path;
        int writable;
    } rows[] = {
        {plain, 1},
        {folder.path(L"missing"), 1},
        {folder.path(L"no\\where"), 1}, // as said of every path without attributes
        {read_only, 0},                 // by its attribute: who is root could open it
        {shared, 1},                    // the registry lets go for the test
        {exclusive, 0},
        {open, 0},
        {folder.path(), 0}, // a folder does not open
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.path.c_str()));
        EXPECT_EQ(Fio_IsWritableFile(row.path.c_str()), row.writable);
        CXStringW owner(L"untouched");
        EXPECT_EQ(Fio_IsWritableFile(row.path.c_str(), owner), row.writable);
        EXPECT_EQ(owner, L"untouched");
    }
    EXPECT_EQ(Fio_LockCount(exclusive.c_str(), true), 1);
    EXPECT_THROW(Fio_DeleteFile(shared.c_str()), CXFileException) << "and takes the file back afterwards";
    Fio_UnlockFile(shared.c_str(), false);
    Fio_UnlockFile(exclusive.c_str(), true);
}

// Each system call on the way, failing alone.
void expect_0_when_failing(const std::function<int()>& query, std::initializer_list<const char*> functions) {
    EXPECT_EQ(query(), 1);
    for (const char* const function : functions) {
        for (const DWORD error : {ERROR_ACCESS_DENIED, ERROR_INSUFFICIENT_BUFFER}) {
            SCOPED_TRACE(std::string(function) + " " + std::to_string(error));
            const RefusedCall refused(function, error);
            EXPECT_EQ(query(), 0);
        }
    }
    EXPECT_EQ(query(), 1);
}

TEST(FileAccess, WritableDir) {
    const ScratchFolder folder;
    expect_0_when_failing([&] { return Fio_IsWritableDir(folder.path().c_str()); },
                          {"GetFileSecurityW", "OpenProcessToken", "DuplicateToken", "AccessCheck"});
    for (const std::wstring& path : {folder.path(L"missing"), std::wstring(L"fmem::1,2"), std::wstring(L"")})
        EXPECT_EQ(Fio_IsWritableDir(path.c_str()), 0) << narrow(path.c_str());
}

TEST(FileAccess, OwnerIsAccountAndDomain) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"a");
    expect_0_when_failing(
        [&] {
            CXStringW owner;
            return Fio_GetSecurityInfo(path.c_str(), owner);
        },
        {"GetFileSecurityW", "GetSecurityDescriptorOwner", "LookupAccountSidW"});

    CXStringW owner;
    ASSERT_EQ(Fio_GetSecurityInfo(path.c_str(), owner), 1);
    wchar_t account[256] = L"";
    DWORD size = 256;
    ASSERT_TRUE(GetUserNameW(account, &size));
    EXPECT_EQ(owner.Find(account), 0) << narrow(owner.GetData()) << ", the account that made it";
    EXPECT_EQ(owner.GetAt(static_cast<unsigned>(wcslen(account))), L' ');
    CXStringW untouched(L"x");
    EXPECT_EQ(Fio_GetSecurityInfo(folder.path(L"missing").c_str(), untouched), 0);
    EXPECT_EQ(untouched, L"x");
}

} // namespace
