// The contract suite over every kind of file.
#include "contracts/file_contract.h"
#include "support/low_memory.h"
#include "support/scratch_folder.h"

#include <memory>

namespace {

// A file of its own for each one opened: several may be open in one test.
struct LocalKind {
    using File = IXFile;
    std::wstring name() { return folder.path(std::to_wstring(opened)); }
    bool names(const std::wstring& failing) { return failing == name(); }
    std::wstring new_file(std::string_view contents) {
        return folder.file(std::to_wstring(++opened), contents);
    }

    ScratchFolder folder;
    int opened = 0;
};

struct MappedReadKind : LocalKind {
    static constexpr unsigned kAccess = 1;
    static constexpr FileWriting kWriting = FileWriting::kThrows;
    static constexpr bool kStaysInside = true;
    IXFile* open(std::string_view contents) { return Fio_Open(new_file(contents).c_str(), QZFILE_READ); }
};

struct MappedWriteKind : LocalKind {
    static constexpr unsigned kAccess = 2;
    static constexpr FileWriting kWriting = FileWriting::kWrites;
    static constexpr bool kStaysInside = false;
    IXFile* open(std::string_view contents) {
        return Fio_Open(new_file(contents).c_str(), QZFILE_WRITE | QZFILE_KEEP | QZFILE_RANDOM);
    }
};

struct OutputKind : LocalKind {
    using File = IXOutFile;
    static constexpr unsigned kAccess = 2;
    static constexpr FileWriting kWriting = FileWriting::kWrites;
    static constexpr bool kStaysInside = false;
    bool names(const std::wstring& failing) { return failing.find(L"\\QZP") != std::wstring::npos; }
    IXOutFile* open(std::string_view contents) {
        IXOutFile* const file = Fio_OpenOut(new_file(contents).c_str(), QZFILE_WRITE | QZFILE_KEEP);
        EXPECT_EQ(file->GetPosition(), contents.size());
        file->Seek(0, 0);
        return file;
    }
};

template <class Interface>
struct MemoryKind {
    using File = Interface;
    static constexpr unsigned kAccess = 1;
    static constexpr FileWriting kWriting = FileWriting::kIgnores;
    static constexpr bool kStaysInside = true;
    std::wstring name() { return blocks.back()->path(); }
    bool names(const std::wstring& failing) { return failing == name(); }
    File* open(std::string_view contents) {
        blocks.push_back(std::make_unique<LowMemory>(contents));
        return open_path(blocks.back()->path().c_str(), static_cast<File*>(nullptr));
    }
    static IXFile* open_path(const wchar_t* path, IXFile*) { return Fio_Open(path, QZFILE_READ); }
    static IXOutFile* open_path(const wchar_t* path, IXOutFile*) { return Fio_OpenOut(path, QZFILE_READ); }
    std::vector<std::unique_ptr<LowMemory>> blocks;
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(MappedRead, FileContract, MappedReadKind);
INSTANTIATE_TYPED_TEST_SUITE_P(MappedWrite, FileContract, MappedWriteKind);
INSTANTIATE_TYPED_TEST_SUITE_P(Output, FileContract, OutputKind);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, FileContract, MemoryKind<IXFile>);
INSTANTIATE_TYPED_TEST_SUITE_P(MemoryOutput, FileContract, MemoryKind<IXOutFile>);
