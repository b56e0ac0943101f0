// The order of the virtual operations of files.
#include "abi/slots.h"
#include "qzfile.h"
#include "support/scratch_folder.h"

namespace {

enum : unsigned {
    kRead = kFirstOwn,
    kWrite,
    kSeek,
    kGetPosition,
    kFlush,
    kReadByte,
    kReadWord,
    kReadDWord,
    kReadDouble,
    kWriteByte,
    kWriteWord,
    kWriteDWord,
    kWriteDouble,
    kWriteStringW,
    kWriteString,
    kReadLineW,
    kReadLine,
    kGetSize,
    kGetName,
    kCommit, // of an output file; in a file the destructor pair begins here
};
static_assert(kGetName == 21);

void use_every_slot(const void* file, const std::wstring& path) {
    call_slot<void>(file, kWriteByte, static_cast<unsigned char>(1));
    call_slot<void>(file, kWriteWord, static_cast<unsigned short>(0x0302));
    call_slot<void>(file, kWriteDWord, 0x07060504u);
    call_slot<void>(file, kWriteDouble, 1.5);
    call_slot<void>(file, kWriteStringW, L"w\n");
    call_slot<void>(file, kWriteString, "n\n");
    call_slot<void>(file, kWrite, "xyz", 3u);
    EXPECT_EQ(call_slot<unsigned>(file, kGetSize), 1u + 2 + 4 + 8 + 6 + 3 + 3);
    EXPECT_EQ(call_slot<unsigned>(file, kGetPosition), 27u);
    EXPECT_NE(call_slot<int>(file, kFlush), 0);
    EXPECT_EQ(call_slot<const wchar_t*>(file, kGetName), path);

    EXPECT_EQ(call_slot<unsigned>(file, kSeek, 0u, 0u), 0u);
    EXPECT_EQ(call_slot<unsigned char>(file, kReadByte), 1);
    EXPECT_EQ(call_slot<unsigned short>(file, kReadWord), 0x0302);
    EXPECT_EQ(call_slot<unsigned>(file, kReadDWord), 0x07060504u);
    EXPECT_EQ(call_slot<double>(file, kReadDouble), 1.5);
    wchar_t wide[8] = L"";
    EXPECT_EQ(call_slot<int>(file, kReadLineW, &wide[0], 6), 1);
    call_slot<unsigned>(file, kSeek, 2u, 1u);
    char narrow[8] = "";
    EXPECT_EQ(call_slot<int>(file, kReadLine, &narrow[0], 6), 1);
    EXPECT_STREQ(narrow, "n\n");
    call_slot<unsigned>(file, kSeek, 1u, 1u);
    EXPECT_EQ(call_slot<unsigned>(file, kRead, static_cast<void*>(narrow), 8u), 3u);
}

TEST(Slots, File) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"document");
    IXFile* const file = Fio_Open(path.c_str(), QZFILE_WRITE);
    check_root_slots(file, typeid(IXFile));
    use_every_slot(file, path);
    EXPECT_EQ(call_slot<unsigned>(file, kCommit + 2), 2u) << "InternalAddRef, behind the destructor pair";
    EXPECT_EQ(call_slot<unsigned>(file, kCommit + 3), 1u) << "InternalRelease";
    EXPECT_EQ(call_slot<unsigned>(file, kRelease), 0u);
    EXPECT_EQ(folder.contents(L"document").size(), 27u);
}

TEST(Slots, OutputFile) {
    const ScratchFolder folder;
    const std::wstring path = folder.path(L"document");
    IXOutFile* const file = Fio_OpenOut(path.c_str(), QZFILE_WRITE);
    check_root_slots(file, typeid(IXOutFile));
    use_every_slot(file, path);
    call_slot<void>(file, kCommit);
    EXPECT_EQ(folder.contents(L"document").size(), 27u);
    EXPECT_EQ(call_slot<unsigned>(file, kCommit + 3), 2u) << "InternalAddRef, behind the destructor pair";
    EXPECT_EQ(call_slot<unsigned>(file, kCommit + 4), 1u) << "InternalRelease";
    EXPECT_EQ(call_slot<unsigned>(file, kRelease), 0u);
}

} // namespace
