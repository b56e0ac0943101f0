// Local files: how they are opened and shared, what is left when they are closed, and their limits.
#include "qzfile.h"
#include "qzref.h"
#include "support/file_failure.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using File = CQZRef<IXFile>;

File open_file(const std::wstring& path, int mode) { return File::Adopt(Fio_Open(path.c_str(), mode)); }

std::string open_failure(const std::wstring& path, int mode) {
    return failure_of([&] { open_file(path, mode); });
}

HANDLE open_raw(const std::wstring& path, DWORD access, DWORD sharing, DWORD disposition = OPEN_EXISTING) {
    return CreateFileW(path.c_str(), access, sharing, nullptr, disposition, 0, nullptr);
}

// A file without any data on the disk. False when the disk does not take it.
bool make_sparse(const std::wstring& path, long long size) {
    const HANDLE file = open_raw(path, GENERIC_WRITE, 0, CREATE_ALWAYS);
    LARGE_INTEGER end;
    end.QuadPart = size;
    const bool made =
        SetFilePointerEx(file, end, nullptr, FILE_BEGIN) != FALSE && SetEndOfFile(file) != FALSE;
    CloseHandle(file);
    return made;
}

TEST(LocalFile, FailuresOfOpeningNameTheFile) {
    const ScratchFolder folder;
    const std::wstring locked = folder.file(L"locked");
    Fio_LockFile(locked.c_str(), true);
    const struct {
        const char* what;
        std::wstring path;
        unsigned code;
        unsigned code_for_writing;
    } rows[] = {
        {"missing", folder.path(L"missing"), 6, 6},
        {"missing directory", folder.path(L"missing\\file"), 7, 7},
        {"a directory", folder.path(), 9, 9},
        {"a wildcard", folder.path(L"*.txt"), 7, 7},
        {"512 characters", std::wstring(512, L'x'), 7, 7},
        {"exclusively locked", locked, 5, 5},
        {"a console", L"CON", 11, 11},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const bool no_access_kind = row.code == 5; // the registry's failure, not the file's
        EXPECT_EQ(open_failure(row.path, QZFILE_READ), failure(row.code, no_access_kind ? 0 : 1, row.path));
        EXPECT_EQ(open_failure(row.path, QZFILE_WRITE | QZFILE_KEEP),
                  failure(row.code_for_writing, no_access_kind ? 0 : 2, row.path));
    }
    Fio_UnlockFile(locked.c_str(), true);
}

TEST(LocalFile, ReadersShareAndAWriterSharesWithNobody) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"document", "contents");
    {
        const File one = open_file(path, QZFILE_READ);
        const File two = open_file(path, QZFILE_READ | QZFILE_RANDOM);
        EXPECT_EQ(one->ReadByte() + two->ReadByte(), 2 * 'c');
        const HANDLE writer = open_raw(path, GENERIC_WRITE, FILE_SHARE_READ);
        EXPECT_NE(writer, INVALID_HANDLE_VALUE);
        CloseHandle(writer);
        EXPECT_EQ(open_failure(path, QZFILE_WRITE | QZFILE_KEEP), failure(8, 2, path));
    }
    const File writer = open_file(path, QZFILE_WRITE | QZFILE_KEEP);
    EXPECT_EQ(open_failure(path, QZFILE_READ), failure(8, 1, path));
}

TEST(LocalFile, ALockedPathIsOpenToTheLibraryAndClosedToOthersAfterwards) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"document");
    Fio_LockFile(path.c_str(), false);
    const auto writable_by_others = [&] {
        const HANDLE writer = open_raw(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
        return writer != INVALID_HANDLE_VALUE && CloseHandle(writer) != FALSE;
    };
    EXPECT_FALSE(writable_by_others());
    open_file(path, QZFILE_WRITE | QZFILE_KEEP)->WriteByte('y');
    EXPECT_FALSE(writable_by_others());
    EXPECT_EQ(open_file(path, QZFILE_READ)->ReadByte(), 'y');
    Fio_UnlockFile(path.c_str(), false);
    EXPECT_TRUE(writable_by_others());
}

TEST(LocalFile, ClosingLeavesExactlyWhatWasWritten) {
    const ScratchFolder folder;
    for (const unsigned size : {0u, 1u, 63u, 4095u, 4096u, 4097u, 65536u, 131071u, 131072u, 131073u}) {
        for (const unsigned piece : {1000u, 5000u}) {
            SCOPED_TRACE(testing::Message() << size << " by " << piece);
            const std::wstring path = folder.file(L"document", std::string(200'000, 'o'));
            const std::string bytes(size, 'n');
            {
                const File file = open_file(path, QZFILE_WRITE);
                EXPECT_EQ(file->GetSize(), 0u) << "emptied";
                for (unsigned at = 0; at < size; at += piece)
                    file->Write(bytes.data() + at, std::min(piece, size - at));
                file->Seek(size + 10'000, 0); // going there writes nothing
            }
            EXPECT_TRUE(folder.contents(L"document") == bytes);
        }
    }
    const std::wstring path = folder.file(L"document", "0123456789");
    {
        const File file = open_file(path, QZFILE_WRITE | QZFILE_KEEP);
        EXPECT_EQ(file->Flush(), 1) << "nothing is mapped";
        file->Write("ab", 2);
        EXPECT_NE(file->Flush(), 0);
        EXPECT_EQ(file->ReadByte(), '2');
    }
    EXPECT_EQ(folder.contents(L"document"), "ab23456789");
}

TEST(LocalFile, WithoutAPathATemporaryFileIsMade) {
    for (const int mode : {QZFILE_WRITE + 0, QZFILE_WRITE | QZFILE_TEMPORARY}) {
        SCOPED_TRACE(mode);
        std::wstring path;
        {
            const File file = File::Adopt(Fio_Open(nullptr, mode));
            path = file->GetName();
            EXPECT_NE(path.find(L"\\QZP"), std::wstring::npos);
            file->WriteByte('x');
        }
        EXPECT_EQ(DeleteFileW(path.c_str()) != FALSE, mode == QZFILE_WRITE) << "otherwise it is gone already";
    }
}

TEST(LocalFile, TransfersPassTwoGibibytesAndSeeksDoNot) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"document");
    if (!make_sparse(path, INT_MAX)) GTEST_SKIP() << "the disk takes no file of 2 GiB";
    const std::string bytes = std::string(10'000, 'a') + "b";
    {
        const File file = open_file(path, QZFILE_WRITE | QZFILE_KEEP);
        EXPECT_EQ(file->Seek(0, 2), unsigned{INT_MAX});
        file->Write(bytes.data(), 10'000); // a large piece, then a small one
        file->Write("b", 1);
        file->WriteString("end");
    }
    const File file = open_file(path, QZFILE_READ);
    EXPECT_EQ(file->GetSize(), 0u) << "sizes from 2 GiB up count as negative";
    file->Seek(INT_MAX, 0);
    std::string back(bytes.size(), '\0');
    EXPECT_EQ(file->Read(back.data(), static_cast<unsigned>(back.size())), back.size());
    EXPECT_TRUE(back == bytes);
    char line[8] = "-------";
    EXPECT_EQ(file->ReadLine(line, 6), 4);
    EXPECT_STREQ(line, "end");
    EXPECT_EQ(file->GetPosition(), 0u) << "and so do positions, which then are 0";
}

TEST(LocalFile, NoFileGrowsBeyondFourGibibytes) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"document");
    {
        const File file = open_file(path, QZFILE_WRITE);
        file->Seek(INT_MAX, 0);
        // Refused before a byte of the buffer is looked at.
        EXPECT_EQ(failure_of([&] { file->Write("", 0x80000000u); }), failure(3, 2, path));
        EXPECT_EQ(failure_of([&] { file->Write("", 0xFFFFFFFFu); }), failure(3, 2, path));
        EXPECT_EQ(file->GetPosition(), unsigned{INT_MAX});
    }
    EXPECT_EQ(folder.contents(L"document"), "");
    constexpr long long kTooLarge = 0x100000000;
    if (!make_sparse(path, kTooLarge)) GTEST_SKIP() << "the disk takes no file of 4 GiB";
    EXPECT_EQ(open_failure(path, QZFILE_READ), failure(3, 1, path));
    EXPECT_EQ(open_failure(path, QZFILE_WRITE | QZFILE_KEEP), failure(3, 2, path));
    EXPECT_EQ(std::filesystem::file_size(path), std::uintmax_t{kTooLarge}) << "not cut to its low 32 bits";
}

} // namespace
