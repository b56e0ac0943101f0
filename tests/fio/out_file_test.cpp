// Output files: the target changes on Commit alone, and then as a whole.
#include "qzfile.h"
#include "qzref.h"
#include "support/file_failure.h"
#include "support/scratch_folder.h"
#include "temporary.h"

#include <gtest/gtest.h>

namespace {

using OutFile = CQZRef<IXOutFile>;

OutFile open_out(const std::wstring& path, int mode = QZFILE_WRITE) {
    return OutFile::Adopt(Fio_OpenOut(path.c_str(), mode));
}

TEST(OutFile, TheTargetChangesOnCommit) {
    const ScratchFolder folder;
    const struct {
        const char* what;
        bool exists;
        int mode;
        unsigned position;
        const char* expected;
    } rows[] = {{"new", false, QZFILE_WRITE, 0, "new"},
                {"new, nothing to keep", false, QZFILE_WRITE | QZFILE_KEEP, 0, "new"},
                {"replaced", true, QZFILE_WRITE, 0, "new"},
                {"appended", true, QZFILE_WRITE | QZFILE_KEEP, 3, "oldnew"},
                {"writing is understood", true, QZFILE_KEEP, 3, "oldnew"},
                {"not deleted on closing", true, QZFILE_WRITE | QZFILE_TEMPORARY, 0, "new"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const std::wstring path = folder.path(L"document");
        if (row.exists) folder.file(L"document", "old");
        for (const bool commit : {false, true}) {
            const OutFile file = open_out(path, row.mode);
            EXPECT_EQ(std::wstring(file->GetName()), path);
            EXPECT_EQ(file->GetPosition(), row.position);
            EXPECT_EQ(Fio_LockCount(path.c_str(), false), row.exists ? 1 : 0);
            file->Write("new", 3);
            EXPECT_EQ(folder.count(), row.exists ? 2u : 1u);
            EXPECT_EQ(folder.contents(L"document"), row.exists ? "old" : "");
            if (!commit) continue;
            file->Commit();
            EXPECT_EQ(Fio_LockCount(path.c_str(), false), 0);
            EXPECT_EQ(folder.contents(L"document"), row.expected);
            file->Commit(); // once and for all
            EXPECT_EQ(failure_of([&] { file->Write("x", 1); }), failure(11, 2, path));
        }
        EXPECT_EQ(folder.contents(L"document"), row.expected);
        EXPECT_EQ(folder.count(), 1u) << "no temporary file";
        EXPECT_EQ(Fio_LockCount(path.c_str(), false), 0);
        DeleteFileW(path.c_str());
    }
}

TEST(OutFile, ATargetThatCannotBeWrittenIsRefused) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"document", "old");
    const auto refusal = [&] { return failure_of([&] { open_out(path); }); };
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(refusal(), "code 9");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);

    const HANDLE other =
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(refusal(), "code 9");
    CloseHandle(other);

    Fio_LockFile(path.c_str(), true);
    EXPECT_EQ(refusal(), "code 9");
    Fio_UnlockFile(path.c_str(), true);

    EXPECT_EQ(failure_of([&] { open_out(L"C:\\" + std::wstring(509, L'x')); }).substr(0, 20),
              "code 7, operation 2,");
    EXPECT_EQ(folder.count(), 1u);
    EXPECT_EQ(folder.contents(L"document"), "old");
}

TEST(OutFile, ACommitThatIsNotPossibleLeavesTheTarget) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"document", "old");
    {
        const OutFile file = open_out(path);
        file->Write("new", 3);
        Fio_LockFile(path.c_str(), true);
        EXPECT_EQ(failure_of([&] { file->Commit(); }), failure(5, 0, path));
        Fio_UnlockFile(path.c_str(), true);
        file->Commit();
        EXPECT_EQ(folder.contents(L"document"), "old") << "what was written is gone";
    }
    EXPECT_EQ(folder.count(), 1u);
    EXPECT_EQ(Fio_LockCount(path.c_str(), false), 0);
    {
        const OutFile file = open_out(path);
        file->Write("new", 3);
        // A reader that was let in while the target was locked against writers.
        const HANDLE reader = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(reader, INVALID_HANDLE_VALUE);
        EXPECT_EQ(failure_of([&] { file->Commit(); }), failure(8, 7, path));
        CloseHandle(reader);
    }
    EXPECT_EQ(folder.count(), 1u);
    EXPECT_EQ(folder.contents(L"document"), "old");
    {
        const OutFile file = open_out(folder.path(L"fresh"));
        file->Write("new", 3);
        CreateDirectoryW(folder.path(L"fresh").c_str(), nullptr);
        EXPECT_NE(failure_of([&] { file->Commit(); }), "");
    }
    EXPECT_EQ(folder.count(), 2u) << "the document and the directory";
}

// Two output files of one target: each has its own lock and its own temporary file; the last commit wins.
TEST(OutFile, SeveralForOneTarget) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"document", "old");
    {
        const OutFile one = open_out(path);
        const OutFile two = open_out(path, QZFILE_WRITE | QZFILE_KEEP);
        const OutFile three = open_out(path);
        EXPECT_EQ(Fio_LockCount(path.c_str(), false), 3);
        EXPECT_EQ(failure_of([&] { open_out(folder.path(L".\\document")); }), "code 9")
            << "another spelling is another path, and finds the file locked";
        one->Write("one", 3);
        two->Write("two", 3);
        one->Commit();
        EXPECT_EQ(folder.contents(L"document"), "one");
        two->Commit();
        EXPECT_EQ(folder.contents(L"document"), "oldtwo");
        EXPECT_EQ(Fio_LockCount(path.c_str(), false), 1);
    }
    EXPECT_EQ(Fio_LockCount(path.c_str(), false), 0);
    EXPECT_EQ(folder.contents(L"document"), "oldtwo");
}

// commit_steps_test.cpp reads the mark itself, in files of processes that were stopped.
TEST(OutFile, TheTemporaryFileHasRoomForItsMarkUntilItIsWhole) {
    const ScratchFolder folder;
    const OutFile file = open_out(folder.path(L"document"));
    const auto size = [&] { return std::filesystem::directory_iterator(folder.path())->file_size(); };
    std::uintmax_t written = 0;
    EXPECT_EQ(size(), 0u);
    for (const unsigned piece : {1u, 4095u, 4096u, 100'000u, 1u, 300'000u, 5u}) {
        file->Write(std::string(piece, 'x').data(), piece);
        written += piece;
        EXPECT_GE(size(), written + 32) << "behind " << written;
    }
    file->Commit();
    EXPECT_EQ(size(), written);
}

} // namespace
