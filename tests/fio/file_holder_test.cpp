// qz::File and qz::OutFile when the system refuses.
#include "qzfileio.h"

#include "support/file_calls.h"
#include "support/open_handles.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

namespace {

FileCalls refuse_unmapping(const bool& refuse) {
    return FileCalls([&refuse](const char* function) -> DWORD {
        return refuse && std::string_view(function) == "UnmapViewOfFile" ? ERROR_INVALID_HANDLE : 0;
    });
}

TEST(FileHolder, CloseTellsItsFailureOnceAndTheDestructorNothing) {
    const ScratchFolder folder;
    const auto path = folder.file(L"a", "abc");
    bool refuse = false;
    const FileCalls calls = refuse_unmapping(refuse);
    unsigned after_first = 0;
    for (int round = 0; round < 2; ++round) { // the first exception of a process opens handles for good
        qz::File told(path);
        qz::File silent(path);
        refuse = true;
        EXPECT_THROW(told.close(), CXFileException);
        EXPECT_FALSE(told);
        EXPECT_NO_THROW(told.close());
        silent = std::move(told);
        EXPECT_FALSE(silent);
        refuse = false;
        if (round == 0) after_first = open_handles();
    }
    EXPECT_EQ(open_handles(), after_first);
}

TEST(FileHolder, FailedCommitLeavesTheTargetAndEndsTheWriting) {
    const ScratchFolder folder;
    const auto path = folder.file(L"a", "old");
    bool refuse = false;
    const FileCalls calls([&](const char* function) -> DWORD {
        return refuse && std::string_view(function) == "FlushFileBuffers" ? ERROR_DISK_FULL : 0;
    });
    qz::OutFile file(path);
    file.write("new");
    refuse = true;
    EXPECT_THROW(file.commit(), CXFileException);
    EXPECT_FALSE(file);
    EXPECT_EQ(folder.contents(L"a"), "old");
    EXPECT_EQ(folder.count(), 1u);
}

} // namespace
