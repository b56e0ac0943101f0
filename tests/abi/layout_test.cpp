// Sizes and offsets of the records and classes that cross the boundary. Code built against these headers long
// ago counts on every one of them.
#include "qzcore.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

static_assert(sizeof(tagRPOINT) == 16 && offsetof(tagRPOINT, y) == 8);
static_assert(sizeof(tagRSIZE) == 16 && offsetof(tagRSIZE, cy) == 8);
static_assert(sizeof(tagRRECT) == 32 && offsetof(tagRRECT, top) == 8 && offsetof(tagRRECT, right) == 16 &&
              offsetof(tagRRECT, bottom) == 24);
static_assert(sizeof(tagPOINT) == 8 && sizeof(tagSIZE) == 8 && sizeof(tagRECT) == 16);
static_assert(sizeof(tagQZBLOB) == 16 && offsetof(tagQZBLOB, cbSize) == 0 &&
              offsetof(tagQZBLOB, pBlobData) == 8);
static_assert(sizeof(tagQZVARIANT) == 40 && alignof(tagQZVARIANT) == 8 && offsetof(tagQZVARIANT, vt) == 0);
static_assert(offsetof(tagQZVARIANT, boolVal) == 8 && offsetof(tagQZVARIANT, ucharVal) == 8 &&
              offsetof(tagQZVARIANT, pszVal) == 8 && offsetof(tagQZVARIANT, rrectVal) == 8 &&
              offsetof(tagQZVARIANT, blobVal) == 8 && offsetof(tagQZVARIANT, pUnkVal) == 8);
static_assert(sizeof(CQZVariant) == sizeof(tagQZVARIANT) && sizeof(QZBlob) == sizeof(tagQZBLOB));
static_assert(sizeof(CQZRef<IQZUnknown>) == sizeof(void*));

// Interfaces are nothing but their table.
static_assert(sizeof(IQZUnknown) == 8 && sizeof(IXStream) == 8 && sizeof(IXStorage) == 8 &&
              sizeof(IParam) == 8 && sizeof(IHeap) == 8 && sizeof(IMemBlock) == 8 &&
              sizeof(IPersistXStream) == 8 && sizeof(IQZServiceContainer) == 8 &&
              sizeof(CTEnum<const char*>) == 8);

static_assert(sizeof(CXString) == 16 && sizeof(CXStringW) == 16);
static_assert(sizeof(CXException) == 24 && sizeof(CXMemException) == 24 && sizeof(CXEofException) == 24);
static_assert(sizeof(CXFileException) == 40 && sizeof(CXIFaceException) == 32);

template <class Object, class Member>
std::size_t offset_in(const Object& object, const Member& member) {
    return reinterpret_cast<std::uintptr_t>(&member) - reinterpret_cast<std::uintptr_t>(&object);
}

TEST(Layout, FieldsOfExceptions) {
    const CXFileException file(QZERR_EOF, QZOP_READ, L"name");
    EXPECT_EQ(offset_in(file, file.m_nCode), 8u);
    EXPECT_EQ(offset_in(file, file.m_hModule), 16u);
    EXPECT_EQ(offset_in(file, file.m_pszFileName), 24u);
    EXPECT_EQ(offset_in(file, file.m_nOperation), 32u);
    const CXIFaceException iface(typeid(IXStream));
    EXPECT_EQ(offset_in(iface, iface.m_pIid), 24u);
}

// The count lies right behind the table.
struct Counted : CQZUnknownImpl<IQZUnknown> {
    std::size_t count_offset() const { return offset_in(*this, m_cRef); }
    unsigned count() const { return m_cRef; }
};

TEST(Layout, TheCountOfAnObjectFollowsItsTable) {
    Counted object;
    EXPECT_EQ(object.count_offset(), 8u);
    EXPECT_EQ(object.count(), 1u);
}

TEST(Layout, AStringHoldsItsTextBehindItsTable) {
    const CXString text("abc");
    const CXStringW wide(L"abc");
    const char* narrow_text = nullptr;
    const wchar_t* wide_text = nullptr;
    std::memcpy(&narrow_text, reinterpret_cast<const char*>(&text) + 8, sizeof narrow_text);
    std::memcpy(&wide_text, reinterpret_cast<const char*>(&wide) + 8, sizeof wide_text);
    EXPECT_EQ(narrow_text, text.GetData());
    EXPECT_EQ(wide_text, wide.GetData());
}

TEST(Layout, NamesOfTypesThatOthersCompareByName) {
    const struct {
        const std::type_info& id;
        const char* name;
    } rows[] = {
        {typeid(IQZUnknown), "10IQZUnknown"},
        {typeid(IXStream), "8IXStream"},
        {typeid(IXStorage), "9IXStorage"},
        {typeid(IParam), "6IParam"},
        {typeid(IMemBlock), "9IMemBlock"},
        {typeid(IPersistX), "9IPersistX"},
        {typeid(IPersistXStream), "15IPersistXStream"},
        {typeid(IQZServiceContainer), "19IQZServiceContainer"},
        {typeid(IQZServiceSink), "14IQZServiceSink"},
        {typeid(IRegisterIface), "14IRegisterIface"},
        {typeid(CTEnum<const char*>), "6CTEnumIPKcE"},
        {typeid(CTEnum<IQZUnknown*>), "6CTEnumIP10IQZUnknownE"},
        {typeid(CXFileException), "15CXFileException"},
        {typeid(QZRFC::IProgress), "N5QZRFC9IProgressE"},
    };
    for (const auto& row : rows)
        EXPECT_STREQ(row.id.name(), row.name);
}

} // namespace
