// Stops a process before each call that changes the disk while it replaces a document, and looks at what is
// left.
#include "qzfile.h"
#include "qzref.h"
#include "support/child_process.h"
#include "support/file_calls.h"
#include "support/scratch_folder.h"
#include "temporary.h"

#include <gtest/gtest.h>

#include <set>

namespace {

constexpr DWORD kStopped = 77;
constexpr char kOld[] = "the old document";

// More than a page, less than a page and another large piece: every way of writing takes part. A document of
// more than 64 KiB ends its temporary life in another way than a smaller one.
std::string added(int mode) {
    return std::string(5000, 'n') + "small" + std::string((mode & QZFILE_KEEP) != 0 ? 9000 : 70000, 'w');
}

// Between two of these calls a disk does not change.
bool changes_something(std::string_view function) {
    for (const char* const name :
         {"GetTempFileNameW", "CopyFileW", "CreateFileW", "WriteFile", "CreateFileMappingW", "MapViewOfFile",
          "UnmapViewOfFile", "FlushFileBuffers", "SetEndOfFile", "DeleteFileW", "MoveFileW", "MoveFileExW"})
        if (function == name) return true;
    return false;
}

// The argument is "step mode path"; step 0 is the one that brings everything to the disk.
TEST(CommitSteps, DISABLED_Child) {
    const std::wstring argument = child_argument();
    wchar_t* end = nullptr;
    const long stop_at = std::wcstol(argument.c_str(), &end, 10);
    const int mode = static_cast<int>(std::wcstol(end, &end, 10));
    const std::wstring path = end + 1;
    long step = 0;
    const FileCalls calls([&](const char* function) -> DWORD {
        const bool here = stop_at == 0 ? std::string_view(function) == "FlushFileBuffers"
                                       : changes_something(function) && ++step == stop_at;
        if (here) TerminateProcess(GetCurrentProcess(), kStopped);
        return 0;
    });
    const auto file = CQZRef<IXOutFile>::Adopt(Fio_OpenOut(path.c_str(), mode));
    const std::string bytes = added(mode);
    file->Write(bytes.data(), 5000);
    file->Write(bytes.data() + 5000, 5);
    file->Write(bytes.data() + 5005, static_cast<unsigned>(bytes.size() - 5005));
    file->Commit();
}

// Runs the child once for each of its calls. @return the states that were found, told in short
std::set<std::string> stop_at_each_step(int mode, bool exists) {
    const std::string fresh = (mode & QZFILE_KEEP) != 0 && exists ? kOld + added(mode) : added(mode);
    std::set<std::string> states;
    for (int step = 1;; ++step) {
        const ScratchFolder folder;
        if (exists) folder.file(L"document", kOld);
        const ChildProcess child("CommitSteps.DISABLED_Child", std::to_wstring(step) + L' ' +
                                                                   std::to_wstring(mode) + L' ' +
                                                                   folder.path(L"document"));
        const DWORD code = child.exit_code();
        const std::vector<std::string> temporary = temporaries(folder.path());
        const bool has = folder.has(L"document");
        const std::string document = folder.contents(L"document");
        SCOPED_TRACE(testing::Message() << "step " << step << " of mode " << mode);
        std::string state = !has ? "none" : document == kOld ? "old" : document == fresh ? "new" : "broken";
        for (const std::string& told : temporary)
            state += told == "unfinished"                              ? " + unfinished"
                     : told == "whole: " + fresh                       ? " + new"
                     : exists && told == std::string("whole: ") + kOld ? " + old"
                                                                       : " + broken";
        EXPECT_EQ(state.find("broken"), std::string::npos) << state;
        states.insert(state);
        if (code != kStopped) {
            EXPECT_EQ(code, 0u);
            EXPECT_EQ(state, "new");
            return states;
        }
        if (step == 200) {
            ADD_FAILURE() << "the child does not come to an end";
            return states;
        }
    }
}

TEST(CommitSteps, ReplacingLeavesTheOldOrTheNewDocument) {
    EXPECT_EQ(stop_at_each_step(QZFILE_WRITE, true),
              (std::set<std::string>{"old", "old + unfinished", "old + new", "none + new", "new"}));
}

TEST(CommitSteps, AppendingLeavesTheOldOrTheNewDocument) {
    EXPECT_EQ(
        stop_at_each_step(QZFILE_WRITE | QZFILE_KEEP, true),
        (std::set<std::string>{"old", "old + unfinished", "old + old", "old + new", "none + new", "new"}));
}

TEST(CommitSteps, CreatingLeavesNothingOrTheNewDocument) {
    EXPECT_EQ(stop_at_each_step(QZFILE_WRITE, false),
              (std::set<std::string>{"none", "none + unfinished", "none + new", "new"}));
}

// The mark reaches the disk in any order with the data: no length stands in it before.
TEST(CommitSteps, ALargeDocumentIsUnfinishedUntilItIsOnTheDisk) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"document", kOld);
    EXPECT_EQ(ChildProcess("CommitSteps.DISABLED_Child", L"0 1 " + path).exit_code(), kStopped);
    EXPECT_EQ(folder.contents(L"document"), kOld);
    EXPECT_EQ(temporaries(folder.path()), std::vector<std::string>{"unfinished"});
}

// In the middle of the copy, which may take long.
TEST(CommitSteps, DISABLED_StopsWhileItCopies) {
    const ImportMock copy("qzrcore.dll", "CopyFileW",
                          reinterpret_cast<void*>(+[](const wchar_t*, const wchar_t* to, BOOL) -> BOOL {
                              std::ofstream(std::filesystem::path(to)) << "the old";
                              return TerminateProcess(GetCurrentProcess(), kStopped);
                          }));
    Fio_OpenOut(child_argument().c_str(), QZFILE_WRITE | QZFILE_KEEP);
}

TEST(CommitSteps, PartOfACopyIsNoDocument) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"document", kOld);
    EXPECT_EQ(ChildProcess("CommitSteps.DISABLED_StopsWhileItCopies", path).exit_code(), kStopped);
    EXPECT_EQ(folder.contents(L"document"), kOld);
    EXPECT_EQ(temporaries(folder.path()), std::vector<std::string>{"unfinished"});
}

} // namespace
