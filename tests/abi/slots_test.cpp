// The order of the virtual operations of every interface: code that was built long ago calls them by their
// number. A virtual destructor takes two places.
#include "qzcore.h"
#include "qzref.h"

#include "support/live_blocks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

// The number in the table: a pointer to a virtual operation is its place there in bytes, and one.
template <class Operation>
std::uintptr_t slot_of(Operation operation) {
    std::uintptr_t place = 0;
    std::memcpy(&place, &operation, sizeof place);
    return (place - 1) / sizeof(void*);
}

// Operations that follow one another from a slot on.
template <class... Operations>
void expect_slots(const char* interface_name, unsigned first, Operations... operations) {
    SCOPED_TRACE(interface_name);
    unsigned expected = first;
    const std::uintptr_t found[] = {slot_of(operations)...};
    for (const std::uintptr_t slot : found)
        EXPECT_EQ(slot, expected++);
}

constexpr unsigned kOwn = 3; // the first behind those of IQZUnknown

// What objects of the library have behind the operations of their interface and the destructor.
template <class Interface>
void expect_template(const char* interface_name, unsigned first) {
    using Object = CQZUnknownImpl<Interface>;
    expect_slots(interface_name, 0, &Object::AddRef, &Object::Release, &Object::QueryInterface);
    expect_slots(interface_name, first, &Object::InternalAddRef, &Object::InternalRelease,
                 &Object::InternalQueryInterface);
}

TEST(Slots, OfCoreInterfaces) {
    expect_slots("unknown", 0, &IQZUnknown::AddRef, &IQZUnknown::Release, &IQZUnknown::QueryInterface);
    using Names = CTEnum<const char*>;
    expect_slots("enumerator", kOwn, &Names::Next, &Names::Skip, &Names::Reset);
    expect_slots("property", kOwn, &IQZProperty::GetProperty, &IQZProperty::SetProperty);
    expect_slots("heap", kOwn, &IHeap::Alloc, &IHeap::Free, &IHeap::Realloc, &IHeap::GetSize,
                 &IHeap::GetOverhead);
    expect_slots("low memory", 0, &ILowMemoryNotifySink::OnLowMemory);
    expect_slots("section", kOwn, &ICritSect::Lock, &ICritSect::Unlock);
    expect_slots("event", kOwn, &IEvent::Set, &IEvent::Reset, &IEvent::Wait);
    expect_slots("exception", 2, &CXException::GetCode, &CXException::Report);
    expect_slots("persistent object", kOwn, &IPersistXStream::GetClassName, &IPersistXStream::GetSizeMax,
                 &IPersistXStream::Load, &IPersistXStream::Save);
    using Container = IQZServiceContainer;
    expect_slots("service container", kOwn, &Container::EnumServices, &Container::EnumServiceNames,
                 &Container::GetService, &Container::AddService, &Container::RemoveService,
                 &Container::RemoveAllServices);
    expect_slots("service sink", kOwn, &IQZServiceSink::OnServiceAdded, &IQZServiceSink::OnServiceRemoved);
    expect_template<Names>("enumerator", 8);
    expect_template<IQZProperty>("property", 7);
}

TEST(Slots, OfStreamsAndStorages) {
    expect_slots("stream", kOwn, &IXStream::Read, &IXStream::Write, &IXStream::Seek, &IXStream::GetPosition,
                 &IXStream::ReadByte, &IXStream::ReadWord, &IXStream::ReadDWord, &IXStream::ReadDouble,
                 &IXStream::ReadLineW, &IXStream::ReadLine, &IXStream::ReadVariant, &IXStream::WriteVariant,
                 &IXStream::WriteByte, &IXStream::WriteWord, &IXStream::WriteDWord, &IXStream::WriteDouble,
                 &IXStream::WriteStringW, &IXStream::WriteString, &IXStream::GetSize, &IXStream::GetName);
    expect_template<IXStream>("stream", 25);
    expect_slots("memory block", kOwn, &IMemBlock::GetSize, &IMemBlock::GetData, &IMemBlock::SetData);
    expect_slots("progress", kOwn, &QZRFC::IProgress::CheckCancel);
    expect_slots("storage", kOwn, &IXStorage::CreateStorage, &IXStorage::OpenStorage,
                 &IXStorage::DestroyStorage, &IXStorage::GetParent, &IXStorage::EnumStorages,
                 &IXStorage::CreateStream, &IXStorage::OpenStream, &IXStorage::DestroyStream,
                 &IXStorage::Commit, &IXStorage::EnumStreams, &IXStorage::GetName);
    expect_template<IXStorage>("storage", 16);
    using Info = IDocStrorageInfo;
    expect_slots("document", kOwn, &Info::GetStorage, &Info::Reserved2, &Info::GetDocStorage,
                 &Info::Reserved4, &Info::GetRawStream, &Info::Reserved6, &Info::GetFlags);
}

template <class File>
void expect_file(const char* name) {
    expect_slots(name, kOwn, &File::Read, &File::Write, &File::Seek, &File::GetPosition, &File::Flush,
                 &File::ReadByte, &File::ReadWord, &File::ReadDWord, &File::ReadDouble, &File::WriteByte,
                 &File::WriteWord, &File::WriteDWord, &File::WriteDouble, &File::WriteStringW,
                 &File::WriteString, &File::ReadLineW, &File::ReadLine, &File::GetSize, &File::GetName);
}

TEST(Slots, OfFiles) {
    expect_file<IXFile>("file");
    expect_template<IXFile>("file", 24);
    expect_file<IXOutFile>("output file");
    expect_slots("output file", 22, &IXOutFile::Commit);
    expect_template<IXOutFile>("output file", 25);
}

TEST(Slots, OfParameterTrees) {
    expect_slots("tree", kOwn, &IParam::CreateSubParam, &IParam::OpenSubParam, &IParam::DeleteSubParam,
                 &IParam::DeleteAllSubParams, &IParam::EnumSubParams, &IParam::GetValue, &IParam::SetValue,
                 &IParam::DeleteValue, &IParam::DeleteAllValues, &IParam::EnumValues, &IParam::Clear);
    expect_template<IParam>("tree", 16);
    expect_slots("directory", kOwn, &IRegisterIface::RegisterIface, &IRegisterIface::UnregisterIface);
}

template <class Result, class... Arguments>
Result call_slot(const void* object, unsigned slot, Arguments... arguments) {
    using Function = Result (*)(const void*, Arguments...);
    return (*static_cast<Function const* const*>(object))[slot](object, arguments...);
}

// What `delete` does to a string that came from elsewhere: the second of the destructor pair also frees it.
TEST(Slots, DestructorPairOfStrings) {
    enum : unsigned { kDestroy, kDelete };
    const auto round = [] {
        call_slot<void>(new CXString("a text that takes a block"), kDelete);
        call_slot<void>(new CXStringW(L"a text that takes a block"), kDelete);
        alignas(CXString) char place[sizeof(CXString)];
        call_slot<void>(new (place) CXString("text"), kDestroy);
    };
    round(); // recycled blocks are in place afterwards
    const std::size_t before = live_blocks();
    round();
    EXPECT_EQ(live_blocks(), before);
}

// Classes of clients are built on the template, and may replace what its first three operations go through.
TEST(Slots, TheFirstGoThroughTheInternalOnes) {
    struct Property final : CQZUnknownImpl<IQZProperty> {
        int GetProperty(const char*, tagQZVARIANT*) override { return 3; }
        int SetProperty(const char*, const tagQZVARIANT*) override { return 4; }
        unsigned InternalAddRef() override { return 40 + CQZUnknownImpl::InternalAddRef(); }
    };
    auto* const object = new Property;
    EXPECT_EQ(call_slot<unsigned>(object, 0), 42u);
    IQZUnknown* found = nullptr;
    EXPECT_EQ(call_slot<int>(object, 2, &typeid(IQZProperty), &found), 1);
    EXPECT_EQ(found, object);
    EXPECT_EQ(call_slot<unsigned>(object, 8), 2u);
    EXPECT_EQ(call_slot<unsigned>(object, 1), 1u);
    EXPECT_EQ(call_slot<unsigned>(object, 1), 0u);
}

} // namespace
