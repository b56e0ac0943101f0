// What is left when the system refuses a call: an exception, no handle, no stray file, no lost document.
#include "qzfile.h"
#include "qzref.h"
#include "support/file_calls.h"
#include "support/file_failure.h"
#include "support/open_handles.h"
#include "support/scratch_folder.h"
#include "temporary.h"

#include <gtest/gtest.h>

#include <map>
#include <new>

namespace {

// Fails the n-th call of a function from now on, and counts.
class Refusal {
public:
    Refusal(const char* function, int at, DWORD error)
        : calls_([this, function, at, error](const char* called) -> DWORD {
              if (std::string_view(called) != function || ++seen_ != at) return 0;
              return error;
          }) {}
    bool happened(int at) const { return seen_ >= at; }

private:
    int seen_ = 0;
    FileCalls calls_;
};

void write_both_ways(IXFile& file) {
    const std::string large(6000, 'L');
    file.Write("small", 5);
    file.Write(large.data(), 6000);
    file.Write(std::string(70000, 'M').data(), 70000);
    file.WriteByte('s');
}

// Counted once everything is open that stays open after its first use.
unsigned handles_before() {
    {
        SCOPED_TRACE("a lock of the test framework");
        const ScratchFolder folder;
        Fio_Open(folder.file(L"first").c_str(), QZFILE_READ)->Release();
        failure_of([&] { Fio_Open(folder.path(L"none").c_str(), QZFILE_READ); });
    }
    return open_handles();
}

// Releases a file, again when the first time throws. @return what was thrown
std::string released(IXFile* file) {
    const std::string thrown = failure_of([&] { file->Release(); });
    if (!thrown.empty()) {
        EXPECT_EQ(file->Release(), 0u);
    }
    return thrown;
}

struct Row {
    const char* function;
    int at;
    DWORD error;
    unsigned code;
};

TEST(FileFailure, AFileForReadingIsNotOpened) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"document", "contents");
    const unsigned handles = handles_before();
    for (const Row& row :
         {Row{"CreateFileW", 1, ERROR_SHARING_VIOLATION, 8}, Row{"GetFileSizeEx", 1, ERROR_IO_DEVICE, 12},
          Row{"CreateFileMappingW", 1, ERROR_NOT_ENOUGH_MEMORY, 2},
          Row{"MapViewOfFile", 1, ERROR_OUTOFMEMORY, 2}}) {
        SCOPED_TRACE(row.function);
        const Refusal refusal(row.function, row.at, row.error);
        EXPECT_EQ(failure_of([&] { Fio_Open(path.c_str(), QZFILE_READ); }), failure(row.code, 1, path));
    }
    EXPECT_EQ(open_handles(), handles);
    EXPECT_EQ(Fio_LockCount(path.c_str(), false), 0);
    EXPECT_TRUE(DeleteFileW(path.c_str())) << "nobody holds it";
}

TEST(FileFailure, AFileForReadingThatCannotBeClosedSaysSo) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"document", "contents");
    const unsigned handles = handles_before();
    for (const char* function : {"UnmapViewOfFile", "CloseHandle"}) {
        SCOPED_TRACE(function);
        IXFile* const file = Fio_Open(path.c_str(), QZFILE_READ);
        file->AddRef();
        const Refusal refusal(function, 1, ERROR_INVALID_HANDLE);
        EXPECT_EQ(file->Release(), 1u);
        EXPECT_EQ(released(file), failure(2, 1, path));
    }
    EXPECT_EQ(open_handles(), handles);
}

TEST(FileFailure, WritingTellsTheDiskIsFull) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"document");
    const unsigned handles = handles_before();
    for (const Row& row :
         {Row{"CreateFileW", 1, ERROR_ACCESS_DENIED, 9}, Row{"CreateFileMappingW", 1, ERROR_DISK_FULL, 3},
          Row{"MapViewOfFile", 1, ERROR_NOT_ENOUGH_MEMORY, 2}, Row{"SetEndOfFile", 1, ERROR_DISK_FULL, 3},
          Row{"SetFilePointerEx", 1, ERROR_SEEK, 12}, Row{"UnmapViewOfFile", 2, ERROR_INVALID_HANDLE, 2}}) {
        SCOPED_TRACE(row.function);
        const Refusal refusal(row.function, row.at, row.error);
        const std::string thrown = failure_of([&] {
            IXFile* const file = Fio_Open(path.c_str(), QZFILE_WRITE);
            const std::string in_writing = failure_of([&] { write_both_ways(*file); });
            const std::string in_release = released(file);
            EXPECT_EQ(in_writing + in_release, failure(row.code, 2, path));
        });
        EXPECT_TRUE(thrown.empty() || thrown == failure(row.code, 2, path)) << thrown;
        EXPECT_TRUE(refusal.happened(row.at));
    }
    EXPECT_EQ(open_handles(), handles);
}

// A disk with so and so much room: a write that does not fit is refused, smaller ones still go.
TEST(FileFailure, WhatStillFitsIsWrittenAndNothingElseIsKept) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"document");
    for (const int refused : {1, 2, 3, 4}) {
        SCOPED_TRACE(refused);
        IXFile* const file = Fio_Open(path.c_str(), QZFILE_WRITE);
        file->Write("abc", 3);
        {
            int calls = 0;
            const FileCalls full([&](const char* function) -> DWORD {
                return std::string_view(function) == "WriteFile" && ++calls >= refused ? ERROR_DISK_FULL : 0;
            });
            EXPECT_EQ(failure_of([&] { file->Write(std::string(500'000, 'x').data(), 500'000); }),
                      refused == 1 ? failure(3, 2, path) : "");
        }
        EXPECT_EQ(file->GetPosition(), refused == 1 ? 3u : 500'003u);
        file->Seek(600'000, 0);
        file->WriteByte('e');
        file->Seek(3, 0);
        char byte = 'x';
        file->Read(&byte, 1);
        EXPECT_EQ(byte, refused == 1 ? '\0' : 'x');
        file->Release();
        EXPECT_EQ(file_bytes(path).size(), 600'001u);
    }
}

// The last bytes of a disk are taken in few steps, not one by one.
TEST(FileFailure, ADiskThatFillsUpIsFilledByByteSizedPieces) {
    const ScratchFolder folder;
    for (const bool output : {false, true}) {
        SCOPED_TRACE(output);
        int written = 0;
        int mapped = 0;
        const FileCalls nearly_full([&](const char* function) -> DWORD {
            mapped += std::string_view(function) == "CreateFileMappingW";
            written += std::string_view(function) == "WriteFile";
            return std::string_view(function) == "WriteFile" && written > 30 ? ERROR_DISK_FULL : 0;
        });
        unsigned size = 0;
        const auto fill = [&size](auto* file) {
            const std::string thrown = failure_of([&] {
                for (; size < 100'000'000; ++size)
                    file->WriteByte('x');
            });
            EXPECT_EQ(file->GetSize(), size);
            file->Release();
            return thrown.substr(0, 19);
        };
        const std::wstring path = folder.path(L"document");
        EXPECT_EQ(output ? fill(Fio_OpenOut(path.c_str(), QZFILE_WRITE))
                         : fill(Fio_Open(path.c_str(), QZFILE_WRITE)),
                  "code 3, operation 2");
        EXPECT_GT(size, 1'000'000u);
        EXPECT_LT(written, 60);
        EXPECT_LT(mapped, 20);
        EXPECT_TRUE(output || file_bytes(path) == std::string(size, 'x'));
    }
    EXPECT_EQ(folder.count(), 1u);
}

// Small pieces go through a view, large ones to the system; both end where the last span of 128 KiB does. The
// copy to append to is one hole, so that the disk holds it.
TEST(FileFailure, AFileEndsBefore4GiB) {
    constexpr static unsigned kMost = 0xFFFE0000;
    constexpr static unsigned kLeft = 300'000;
    const ImportMock copy("qzrcore.dll", "CopyFileW",
                          reinterpret_cast<void*>(+[](const wchar_t*, const wchar_t* to, BOOL) -> BOOL {
                              const HANDLE file =
                                  CreateFileW(to, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
                              const LARGE_INTEGER size = {.QuadPart = kMost - kLeft};
                              SetFilePointerEx(file, size, nullptr, FILE_BEGIN);
                              SetEndOfFile(file);
                              return CloseHandle(file);
                          }));
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"document");
    for (const unsigned piece : {1000u, 5000u}) {
        SCOPED_TRACE(piece);
        const auto file = CQZRef<IXOutFile>::Adopt(Fio_OpenOut(path.c_str(), QZFILE_WRITE | QZFILE_KEEP));
        const std::string bytes(piece, 'x');
        for (unsigned done = 0; done < kLeft; done += piece)
            file->Write(bytes.data(), piece);
        EXPECT_EQ(failure_of([&] { file->Write(bytes.data(), piece); }).substr(0, 19), "code 3, operation 2");
        EXPECT_EQ(file->ReadLine(std::string(12, ' ').data(), 10), 0) << "still at the end";
    }
}

// Each call of a whole replacement is refused once.
void refuse_each_call(int mode, bool exists, bool commit) {
    const std::string old = "the old document";
    const std::string added = std::string(5000, 'n') + "small";
    const std::string fresh = (mode & QZFILE_KEEP) != 0 && exists ? old + added : added;
    const unsigned handles = handles_before();
    std::map<std::string, int> outcomes;
    for (int at = 1, done = 0; done == 0; ++at) {
        const ScratchFolder folder;
        const std::wstring path = folder.path(L"document");
        if (exists) folder.file(L"document", old);
        std::string refused;
        {
            int calls = 0;
            const FileCalls watched([&](const char* function) -> DWORD {
                if (++calls != at) return 0;
                refused = function;
                return ERROR_DISK_FULL;
            });
            const std::string thrown = failure_of([&] {
                const auto file = CQZRef<IXOutFile>::Adopt(Fio_OpenOut(path.c_str(), mode));
                file->Write(added.data(), 5000);
                file->Write(added.data() + 5000, 5);
                if (commit) file->Commit();
            });
            SCOPED_TRACE(testing::Message() << "call " << at << " " << refused << ": " << thrown);
            const std::string document = folder.contents(L"document");
            const std::vector<std::string> left = temporaries(folder.path());
            if (refused == "MoveFileW" && exists) { // the target is gone: the temporary file is the document
                EXPECT_EQ(thrown, failure(3, 9, path));
                EXPECT_FALSE(folder.has(L"document"));
                EXPECT_EQ(left, std::vector<std::string>{"whole: " + fresh});
            } else if (thrown.empty() && commit) {
                EXPECT_TRUE(document == fresh);
                EXPECT_TRUE(left.empty());
            } else {
                EXPECT_EQ(folder.has(L"document"), exists);
                EXPECT_EQ(document, exists ? old : "");
                EXPECT_TRUE(left.empty() || (refused == "DeleteFileW" && !commit));
            }
            EXPECT_EQ(folder.count(), left.size() + folder.has(L"document")) << "and no part of a copy";
            EXPECT_EQ(Fio_LockCount(path.c_str(), false), 0);
            ++outcomes[thrown.empty() ? "done" : "thrown"];
        }
        EXPECT_EQ(open_handles(), handles) << refused;
        if (refused.empty()) done = 1;
    }
    EXPECT_GT(outcomes["thrown"], 4) << "calls that matter were refused";
}

TEST(FileFailure, EachCallOfReplacing) { refuse_each_call(QZFILE_WRITE, true, true); }
TEST(FileFailure, EachCallOfAppending) { refuse_each_call(QZFILE_WRITE | QZFILE_KEEP, true, true); }
TEST(FileFailure, EachCallOfCreating) { refuse_each_call(QZFILE_WRITE, false, true); }
TEST(FileFailure, EachCallOfAbandoning) { refuse_each_call(QZFILE_WRITE | QZFILE_KEEP, true, false); }

// File dialogs change the current directory while a document is written.
int objects_left = 0; // until there is no memory for objects any more

void* new_while_there_is(std::size_t size, const std::nothrow_t& none) {
    return objects_left-- > 0 ? ::operator new(size, none) : nullptr;
}

TEST(FileFailure, WithoutMemoryForItsObjectsNoDocumentIsReplaced) {
    const ScratchFolder folder;
    const std::wstring path = folder.file(L"document", "old");
    const ImportMock memory("qzrcore.dll", "_ZnwyRKSt9nothrow_t",
                            reinterpret_cast<void*>(&new_while_there_is));
    int opened = 0;
    for (int objects = 0; opened == 0; ++objects) {
        SCOPED_TRACE(objects);
        objects_left = objects;
        const std::string thrown = failure_of([&] {
            opened += static_cast<bool>(CQZRef<IXOutFile>::Adopt(Fio_OpenOut(path.c_str(), QZFILE_KEEP)));
        });
        EXPECT_EQ(thrown, objects == 1 ? "code 2" : "");
        EXPECT_EQ(folder.contents(L"document"), "old");
        EXPECT_EQ(folder.count(), 1u);
        EXPECT_EQ(Fio_LockCount(path.c_str(), false), 0);
    }
}

TEST(FileFailure, ATargetStaysWhereItWasWhenTheCurrentDirectoryMoves) {
    const std::wstring before = std::filesystem::current_path().wstring();
    for (const bool commit : {true, false}) {
        for (const wchar_t* const name : {L"document", L"../one/document"}) {
            SCOPED_TRACE(testing::Message() << (commit ? "commit " : "abandon ") << narrow(name));
            const ScratchFolder folder;
            Fio_CreateDirectory(folder.path(L"one").c_str());
            Fio_CreateDirectory(folder.path(L"two/one").c_str());
            folder.file(L"one/document", "old");
            folder.file(L"two/document", "another");
            Fio_SetCurrentDirectory(folder.path(L"one").c_str());
            {
                const auto file = CQZRef<IXOutFile>::Adopt(Fio_OpenOut(name, QZFILE_WRITE));
                EXPECT_STREQ(file->GetName(), name);
                file->Write("new", 3);
                Fio_SetCurrentDirectory(folder.path(L"two").c_str());
                if (commit) {
                    EXPECT_EQ(failure_of([&] { file->Commit(); }), "");
                }
            }
            EXPECT_EQ(folder.contents(L"one/document"), commit ? "new" : "old");
            EXPECT_EQ(folder.contents(L"two/document"), "another");
            EXPECT_TRUE(temporaries(folder.path(L"one")).empty());
            EXPECT_EQ(Fio_LockCount(name, false), 0);
            Fio_SetCurrentDirectory(before.c_str());
        }
    }
}

TEST(FileFailure, TheDirectoryDecidesWhatATemporaryFileFailsWith) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"document");
    const struct {
        DWORD error;
        unsigned code;
    } rows[] = {{3, 7},   {53, 7},  {123, 7}, {161, 7}, {267, 7}, {5, 9},  {64, 13},
                {65, 13}, {66, 13}, {67, 13}, {2, 2},   {8, 2},   {112, 2}};
    for (const auto& row : rows) {
        const Refusal refusal("GetTempFileNameW", 1, row.error);
        EXPECT_EQ(failure_of([&] { Fio_OpenOut(path.c_str(), QZFILE_WRITE); }),
                  "code " + std::to_string(row.code))
            << row.error;
    }
    EXPECT_EQ(failure_of([&] { Fio_OpenOut(folder.path(L"gone\\document").c_str(), QZFILE_WRITE); }),
              "code 7");
    const std::wstring deep = folder.path() + L'\\' + std::wstring(500 - folder.path().size(), L'd');
    EXPECT_EQ(failure_of([&] { Fio_OpenOut((deep + L"\\f").c_str(), QZFILE_WRITE); }), "code 2")
        << "the system is not asked for a name that does not fit";
    EXPECT_EQ(folder.count(), 0u);
}

} // namespace
