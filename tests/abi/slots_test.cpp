// The order of the virtual operations of every interface. A virtual destructor takes two places.
#include "abi/slots.h"
#include "qzcore.h"
#include "qzref.h"

#include "support/live_blocks.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(Slots, StreamAndItsMemoryBlock) {
    IXStream* const stream = new_StreamOnMemory();
    check_root_slots(stream, typeid(IXStream));
    enum : unsigned {
        kRead = kFirstOwn,
        kWrite,
        kSeek,
        kGetPosition,
        kReadByte,
        kReadWord,
        kReadDWord,
        kReadDouble,
        kReadLineW,
        kReadLine,
        kReadVariant,
        kWriteVariant,
        kWriteByte,
        kWriteWord,
        kWriteDWord,
        kWriteDouble,
        kWriteStringW,
        kWriteString,
        kGetSize,
        kGetName,
        kDestroy,
        kDelete,
        kInternalAddRef,
        kInternalRelease,
        kInternalQuery,
    };
    static_assert(kGetName == 22 && kInternalAddRef == 25);

    call_slot<void>(stream, kWriteByte, static_cast<unsigned char>(1));
    call_slot<void>(stream, kWriteWord, static_cast<unsigned short>(0x0302));
    call_slot<void>(stream, kWriteDWord, 0x07060504u);
    call_slot<void>(stream, kWriteDouble, 1.5);
    call_slot<void>(stream, kWriteString, "ab");
    call_slot<void>(stream, kWriteStringW, L"c");
    CQZVariant value(5);
    call_slot<int>(stream, kWriteVariant, static_cast<const tagQZVARIANT*>(&value));
    call_slot<int>(stream, kWrite, "xyz", 3u);
    const unsigned size = call_slot<unsigned>(stream, kGetSize);
    EXPECT_EQ(size, 1u + 2 + 4 + 8 + 3 + 4 + 6 + 3);
    EXPECT_EQ(call_slot<unsigned>(stream, kGetPosition), size);
    EXPECT_NE(call_slot<const wchar_t*>(stream, kGetName), nullptr);

    EXPECT_EQ(call_slot<unsigned>(stream, kSeek, 0, 0u), 0u);
    EXPECT_EQ(call_slot<unsigned char>(stream, kReadByte), 1);
    EXPECT_EQ(call_slot<unsigned short>(stream, kReadWord), 0x0302);
    EXPECT_EQ(call_slot<unsigned>(stream, kReadDWord), 0x07060504u);
    EXPECT_EQ(call_slot<double>(stream, kReadDouble), 1.5);
    char line[16] = {};
    EXPECT_EQ(call_slot<int>(stream, kReadLine, line, 8), 3);
    EXPECT_STREQ(line, "ab");
    wchar_t wide_line[16] = {};
    EXPECT_EQ(call_slot<int>(stream, kReadLineW, wide_line, 8), 2);
    EXPECT_STREQ(wide_line, L"c");
    CQZVariant back;
    EXPECT_EQ(call_slot<int>(stream, kReadVariant, static_cast<tagQZVARIANT*>(&back)), 1);
    EXPECT_EQ(back == value, 1);
    char rest[4] = {};
    EXPECT_EQ(call_slot<unsigned>(stream, kRead, rest, 4u), 3u);
    EXPECT_STREQ(rest, "xyz");

    IQZUnknown* block = nullptr;
    ASSERT_EQ(stream->QueryInterface(typeid(IMemBlock), &block), 1);
    enum : unsigned { kBlockSize = kFirstOwn, kBlockData, kBlockSet };
    EXPECT_EQ(call_slot<unsigned>(block, kBlockSize), size);
    EXPECT_EQ(*call_slot<const char*>(block, kBlockData), 1);
    call_slot<void>(block, kBlockSet, "new", 3u);
    EXPECT_EQ(call_slot<unsigned>(stream, kGetSize), 3u);
    block->Release();

    // Behind the destructor pair the operations that the root slots forward to.
    EXPECT_EQ(call_slot<unsigned>(stream, kInternalAddRef), 2u);
    EXPECT_EQ(call_slot<unsigned>(stream, kInternalRelease), 1u);
    EXPECT_EQ(call_slot<int>(stream, kInternalQuery, id(typeid(IXStream)), nullptr), 1);
    EXPECT_EQ(call_slot<unsigned>(stream, kRelease), 0u);
}

TEST(Slots, Heap) {
    IHeap* const heap = new_MemoryHeap(0);
    EXPECT_EQ(call_slot<unsigned>(heap, kAddRef), 2u);
    EXPECT_EQ(call_slot<unsigned>(heap, kRelease), 1u);
    enum : unsigned { kAlloc = kFirstOwn, kFree, kRealloc, kGetSize, kGetOverhead };
    auto* block = call_slot<char*>(heap, kAlloc, 100ull);
    block[0] = 'x';
    EXPECT_EQ(call_slot<int>(heap, kGetSize, static_cast<const void*>(block)), 100);
    block = call_slot<char*>(heap, kRealloc, static_cast<void*>(block), 200ull);
    EXPECT_EQ(block[0], 'x');
    EXPECT_EQ(call_slot<int>(heap, kGetSize, static_cast<const void*>(block)), 200);
    EXPECT_EQ(call_slot<int>(heap, kGetOverhead), 8);
    EXPECT_NE(call_slot<int>(heap, kFree, static_cast<void*>(block)), 0);
    EXPECT_EQ(call_slot<unsigned>(heap, kRelease), 0u);
}

TEST(Slots, ServiceContainer) {
    IQZUnknown* container = nullptr;
    ASSERT_EQ(CreateObject("CLSID_OFSERVICECONTAINER", nullptr, typeid(IQZServiceContainer), &container), 1);
    enum : unsigned { kEnumServices = kFirstOwn, kEnumNames, kGet, kAdd, kRemove, kRemoveAll };
    IXStream* const service = new_StreamOnMemory();
    EXPECT_EQ(call_slot<int>(container, kAdd, "stream", static_cast<IQZUnknown*>(service)), 1);
    IQZUnknown* found = nullptr;
    EXPECT_EQ(call_slot<int>(container, kGet, "stream", &found), 1);
    EXPECT_EQ(found, service);
    EXPECT_EQ(found->Release(), 2u);

    IQZUnknown* names = nullptr;
    EXPECT_EQ(call_slot<int>(container, kEnumNames, &names), 1);
    const char* name = nullptr;
    EXPECT_NE(call_slot<int>(names, kFirstOwn, 1, &name, static_cast<unsigned*>(nullptr)), 0);
    EXPECT_STREQ(name, "stream");
    names->Release();
    IQZUnknown* services = nullptr;
    EXPECT_EQ(call_slot<int>(container, kEnumServices, id(typeid(IXStream)), &services), 1);
    EXPECT_NE(call_slot<int>(services, kFirstOwn, 1, &found, static_cast<unsigned*>(nullptr)), 0);
    EXPECT_EQ(found, service);
    found->Release();
    services->Release();

    EXPECT_EQ(call_slot<int>(container, kRemove, "stream"), 1);
    EXPECT_EQ(call_slot<int>(container, kRemove, "stream"), 0);
    EXPECT_EQ(call_slot<int>(container, kAdd, "again", static_cast<IQZUnknown*>(service)), 1);
    call_slot<void>(container, kRemoveAll);
    EXPECT_EQ(call_slot<unsigned>(service, kRelease), 0u);
    EXPECT_EQ(call_slot<unsigned>(container, kRelease), 0u);
}

TEST(Slots, PersistentObject) {
    const auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    stream->WriteString("NobodyKnowsThisClass");
    stream->WriteDWord(3);
    stream->Write("abc", 3);
    stream->Seek(0, 0);
    CQZRef<IQZUnknown> object;
    ASSERT_EQ(ReadObjectFromXStream(stream.Get(), object.Put()), 1);
    const auto stand_in = CQZRef<IPersistXStream>::Require(object.Get());
    enum : unsigned { kGetClassName = kFirstOwn, kGetSizeMax, kLoad, kSave };
    EXPECT_STREQ(call_slot<const char*>(stand_in.Get(), kGetClassName), "NobodyKnowsThisClass");
    EXPECT_EQ(call_slot<unsigned>(stand_in.Get(), kGetSizeMax), 3u);

    const auto copy = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    call_slot<int>(stand_in.Get(), kSave, copy.Get());
    EXPECT_EQ(copy->GetSize(), 3u);
    copy->Seek(0, 0);
    call_slot<int>(stand_in.Get(), kLoad, copy.Get());
    EXPECT_EQ(copy->GetPosition(), 3u);
}

TEST(Slots, Exception) {
    enum : unsigned { kDestroy, kDelete, kGetCode, kReport };
    CXFileException failure(QZERR_SHARING, QZOP_WRITE, L"name");
    EXPECT_EQ(call_slot<unsigned>(&failure, kGetCode), QZERR_SHARING);
    call_slot<void>(&failure, kReport);
}

// What `delete` does to a string that came from elsewhere: the second of the destructor pair also frees it.
TEST(Slots, DestructorPairOfStrings) {
    enum : unsigned { kDestroy, kDelete };
    const auto round = [] {
        auto* const narrow = new CXString("a text that takes a block");
        call_slot<void>(narrow, kDelete);
        auto* const wide = new CXStringW(L"a text that takes a block");
        call_slot<void>(wide, kDelete);
        alignas(CXString) char place[sizeof(CXString)];
        call_slot<void>(new (place) CXString("text"), kDestroy);
    };
    round(); // recycled blocks are in place afterwards
    const std::size_t before = live_blocks();
    round();
    EXPECT_EQ(live_blocks(), before);
}

// Classes of clients are built on the template: here the slots of its instance in this program.
TEST(Slots, TemplateOfClientObjects) {
    struct Property final : CQZUnknownImpl<IQZProperty> {
        int GetProperty(const char*, tagQZVARIANT*) override { return 3; }
        int SetProperty(const char*, const tagQZVARIANT*) override { return 4; }
        unsigned InternalAddRef() override { return 40 + CQZUnknownImpl::InternalAddRef(); }
    };
    enum : unsigned {
        kGet = kFirstOwn,
        kSet,
        kDestroy,
        kDelete,
        kInternalAddRef,
        kInternalRelease,
        kInternalQuery
    };
    auto* const object = new Property;
    EXPECT_EQ(call_slot<int>(object, kGet, "", nullptr), 3);
    EXPECT_EQ(call_slot<int>(object, kSet, "", nullptr), 4);
    EXPECT_EQ(call_slot<unsigned>(object, kAddRef), 42u); // goes through the internal slot
    EXPECT_EQ(call_slot<unsigned>(object, kInternalRelease), 1u);
    IQZUnknown* found = nullptr;
    EXPECT_EQ(call_slot<int>(object, kInternalQuery, id(typeid(IQZProperty)), &found), 1);
    EXPECT_EQ(found, object);
    EXPECT_EQ(call_slot<unsigned>(object, kRelease), 1u);
    EXPECT_EQ(call_slot<unsigned>(object, kRelease), 0u);
}

} // namespace
