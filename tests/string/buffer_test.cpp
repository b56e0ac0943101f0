// The counted block: sharing, exact sizes, the members for derived classes.
#include "string_kinds.h"

#include "qzexception.h"

#include <climits>
#include <utility>

namespace {

template <class Kind>
class StringBlocks : public testing::Test {};
TYPED_TEST_SUITE(StringBlocks, BothKinds, KindNames);

TYPED_TEST(StringBlocks, EmptyStringsShareOneTextAndAllocateNothing) {
    using String = typename TypeParam::String;
    const String plain;
    const typename TypeParam::Unit* const nothing = nullptr;
    const String by_null(nothing);
    const String by_empty = string_of<TypeParam>("");
    String assigned = string_of<TypeParam>("abc");
    assigned = plain;
    const String copied(plain);
    String extracted;
    string_of<TypeParam>("abc").Extract(1, 0, extracted);
    const typename TypeParam::OtherUnit other_empty[] = {0};
    const String other_width(other_empty);
    const String joined = plain + by_null;
    for (const String* s : {&by_null, &by_empty, &std::as_const(assigned), &copied, &std::as_const(extracted),
                            &other_width, &joined}) {
        EXPECT_EQ(s->GetData(), plain.GetData());
        EXPECT_EQ(s->GetAllocSize(), 0);
    }
    EXPECT_EQ(*plain.GetData(), 0);
}

// Units of the text area; a text built by copying has more room in the wide class.
TYPED_TEST(StringBlocks, BlocksAreExactlyAsLargeAsTheOperationNeeds) {
    using S = Open<TypeParam>;
    using Unit = typename TypeParam::Unit;
    const auto t = [](const char* s) { return text<TypeParam>(s); };
    const struct {
        const char* what;
        void (*apply)(S&, const std::basic_string<Unit>& xy);
        const char* result;
        int units;
    } rows[] = {
        {"nothing", [](S&, const auto&) {}, "abcdef", 6 + TypeParam::kCopyExtra},
        {"GetBuffer of less", [](S& s, const auto&) { s.GetBuffer(2), s.ReleaseBuffer(); }, "abcdef",
         6 + TypeParam::kCopyExtra},
        {"GetBuffer of more", [](S& s, const auto&) { s.GetBuffer(20), s.ReleaseBuffer(); }, "abcdef", 21},
        {"GetBuffer below 0", [](S& s, const auto&) { s.GetBuffer(INT_MIN), s.ReleaseBuffer(); }, "abcdef",
         6 + TypeParam::kCopyExtra},
        {"AllocBuffer", [](S& s, const auto&) { s.AllocBuffer(9); }, "", 9},
        {"AllocBuffer of 0", [](S& s, const auto&) { s.AllocBuffer(0); }, "", 0},
        {"ReallocBuffer", [](S& s, const auto&) { s.ReallocBuffer(30); }, "abcdef", 30},
        {"AssignCopy", [](S& s, const auto& xy) { s.AssignCopy(xy.c_str(), 1); }, "x",
         1 + TypeParam::kCopyExtra},
        {"ConcatCopy", [](S& s, const auto& xy) { s.ConcatCopy(xy.c_str(), 2); }, "abcdefxy", 9},
        {"ConcatCopyTo inside", [](S& s, const auto& xy) { s.ConcatCopyTo(1, xy.c_str(), 2); }, "axy",
         6 + TypeParam::kCopyExtra},
        {"ConcatCopyTo over the end", [](S& s, const auto& xy) { s.ConcatCopyTo(5, xy.c_str(), 2); },
         "abcdexy", 8},
        {"ConcatCopyTo behind the end", [](S& s, const auto& xy) { s.ConcatCopyTo(99, xy.c_str(), 2); },
         "abcdefxy", 9},
        {"Insert", [](S& s, const auto& xy) { s.Insert(1, xy.c_str()); }, "axybcdef", 9},
        {"Delete", [](S& s, const auto&) { s.Delete(1, 2); }, "adef", 6 + TypeParam::kCopyExtra},
        {"Replace by less", [](S& s, const auto& xy) { s.Replace(1, 4, xy.c_str()); }, "axyf", 5},
        {"Replace by more", [](S& s, const auto& xy) { s.Replace(1, 1, xy.c_str()); }, "axycdef", 8},
        {"Extract", [](S& s, const auto&) { s.Extract(1, 3); }, "bcd", 3 + TypeParam::kCopyExtra},
        {"Extract from the start", [](S& s, const auto&) { s.Extract(0, 3); }, "abc",
         3 + TypeParam::kCopyExtra},
        {"FindReplace", [](S& s, const auto& xy) { s.FindReplace(Unit('c'), xy.c_str()); }, "abxydef", 9},
        {"FindReplace in vain", [](S& s, const auto& xy) { s.FindReplace(Unit('z'), xy.c_str()); }, "abcdef",
         9},
        {"TrimLeft", [](S& s, const auto&) { s.TrimLeft(); }, "abcdef", 8},
        {"TrimRight", [](S& s, const auto&) { s.TrimRight(); }, "abcdef", 8},
        {"Upper", [](S& s, const auto&) { s.Upper(); }, "ABCDEF", 14},
        {"Lower", [](S& s, const auto&) { s.Lower(); }, "abcdef", 14},
        {"nothing at all", [](S& s, const auto&) { s.FreeExtra(), s.CharToOemA(), s.OemToCharA(); }, "abcdef",
         6 + TypeParam::kCopyExtra},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        S s("abcdef");
        row.apply(s, t("xy"));
        EXPECT_EQ(narrow(s.GetData()), row.result);
        EXPECT_EQ(s.GetAllocSize(), row.units * TypeParam::kUnit);
        EXPECT_EQ(s.count(), 1);
    }
}

TYPED_TEST(StringBlocks, TrimmingReservesOnAnEmptyStringAndCaseMappingDoesNot) {
    typename TypeParam::String trimmed, mapped;
    trimmed.TrimLeft();
    EXPECT_EQ(trimmed.GetAllocSize(), 2 * TypeParam::kUnit);
    mapped.Upper();
    mapped.Lower();
    EXPECT_EQ(mapped.GetAllocSize(), 0);
}

TYPED_TEST(StringBlocks, JoiningMakesOneExactBlock) {
    using String = typename TypeParam::String;
    using Unit = typename TypeParam::Unit;
    const String a = string_of<TypeParam>("abc");
    const String none;
    const Unit* const null = nullptr;
    const auto de = text<TypeParam>("de");
    const struct {
        String joined;
        const char* expected;
    } rows[] = {
        {a + a, "abcabc"},       {a + de.c_str(), "abcde"}, {de.c_str() + a, "deabc"},
        {a + Unit('x'), "abcx"}, {Unit('x') + a, "xabc"},   {a + null, "abc"},
        {null + a, "abc"},       {a + none, "abc"},         {none + de.c_str(), "de"},
        {a + Unit(0), "abc"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(narrow(row.joined.GetData()), row.expected);
        EXPECT_EQ(row.joined.GetAllocSize(), (int(std::strlen(row.expected)) + 1) * TypeParam::kUnit);
        EXPECT_NE(row.joined.GetData(), a.GetData());
    }
}

TYPED_TEST(StringBlocks, CopiesShareTheBlockUntilOneIsChanged) {
    using S = Open<TypeParam>;
    S first("abc");
    S second(first);
    S third("old text");
    third = second;
    EXPECT_EQ(second.GetData(), first.GetData());
    EXPECT_EQ(third.GetData(), first.GetData());
    EXPECT_EQ(first.count(), 3);

    second.Delete(0, 1);
    EXPECT_EQ(narrow(second.GetData()), "bc");
    EXPECT_EQ(second.GetAllocSize(), 4 * TypeParam::kUnit);
    EXPECT_EQ(narrow(first.GetData()), "abc");
    EXPECT_EQ(first.count(), 2);

    third = third;
    EXPECT_EQ(first.count(), 2);
    // A search in vain ends the sharing as well.
    EXPECT_EQ(third.FindReplace(text<TypeParam>("zz").c_str(), text<TypeParam>("y").c_str()), 0);
    EXPECT_EQ(first.count(), 1);
    EXPECT_EQ(narrow(third.GetData()), "abc");
    third.Release();
    EXPECT_EQ(third.GetAllocSize(), 0);
}

TYPED_TEST(StringBlocks, ALockedStringIsCopiedAndNotShared) {
    using S = Open<TypeParam>;
    S locked("abc");
    auto* const writable = locked.GetBuffer(5);
    EXPECT_EQ(locked.count(), -1);
    EXPECT_EQ(locked.GetAllocSize(), 6 * TypeParam::kUnit);
    const S copy(locked);
    S assigned;
    assigned = locked;
    writable[0] = 'X';
    for (const S* s : {&copy, static_cast<const S*>(&assigned)}) {
        EXPECT_EQ(narrow(s->GetData()), "abc");
        EXPECT_EQ(s->GetAllocSize(), (3 + TypeParam::kCopyExtra) * TypeParam::kUnit);
        EXPECT_EQ(s->count(), 1);
    }
    EXPECT_EQ(narrow(locked.GetData()), "Xbc");
    locked.ReleaseBuffer(77);
    EXPECT_EQ(locked.count(), 1);
    const S shared(locked);
    EXPECT_EQ(shared.GetData(), locked.GetData());
    locked.ReleaseBuffer(); // not locked: must not forget the other owner
    EXPECT_EQ(locked.count(), 2);
}

TYPED_TEST(StringBlocks, LockingEndsSharingAndGrowsOnlyWhenNeeded) {
    using S = Open<TypeParam>;
    S first("abc");
    S second(first);
    second.GetBuffer(0)[0] = 0;
    EXPECT_EQ(narrow(first.GetData()), "abc");
    second.ReleaseBuffer();

    S locked("abc");
    const auto* const before = locked.GetBuffer(1);
    EXPECT_EQ(locked.GetBuffer(2), before);
    EXPECT_NE(locked.GetBuffer(100), before);
    EXPECT_EQ(narrow(locked.GetData()), "abc");
    EXPECT_EQ(locked.count(), -1);
    // The string goes while it is locked: the heap check after the test sees a block lost or freed twice.
}

TYPED_TEST(StringBlocks, ReleasingAnEmptyStringLeavesTheCommonTextAlone) {
    Open<TypeParam> s;
    s.ReleaseBuffer();
    s.Release();
    EXPECT_EQ(s.count(), -1);
    EXPECT_EQ(s.GetAllocSize(), 0);
}

TYPED_TEST(StringBlocks, ReservingCutsALongerTextOnlyWhenItHasToMove) {
    using S = Open<TypeParam>;
    S alone("abcdef");
    alone.ReallocBuffer(3);
    EXPECT_EQ(narrow(alone.GetData()), "abcdef");

    S first("abcdef");
    S second(first);
    second.ReallocBuffer(3);
    EXPECT_EQ(narrow(second.GetData()), "abc");
    EXPECT_EQ(second.GetAllocSize(), 3 * TypeParam::kUnit);
    EXPECT_EQ(narrow(first.GetData()), "abcdef");
}

TYPED_TEST(StringBlocks, NewRoomIsZero) {
    Open<TypeParam> s("abc");
    s.ReallocBuffer(300);
    for (int i = 3; i < 300; ++i)
        ASSERT_EQ(s.GetData()[i], 0) << i;
    s.AllocBuffer(300);
    for (int i = 0; i < 300; ++i)
        ASSERT_EQ(s.GetData()[i], 0) << i;
}

TYPED_TEST(StringBlocks, ArgumentsMayLieInTheStringItself) {
    using S = Open<TypeParam>;
    const struct {
        const char* what;
        void (*apply)(S&);
        const char* result;
    } rows[] = {
        {"assigning the own text", [](S& s) { s.AssignCopy(s.GetData(), 2); }, "abcdef"},
        {"assigning a part", [](S& s) { s.AssignCopy(s.GetData() + 2, 3); }, "cde"},
        {"appending itself", [](S& s) { s.ConcatCopy(s.GetData(), 6); }, "abcdefabcdef"},
        {"appending a part over the end", [](S& s) { s.ConcatCopyTo(3, s.GetData() + 1, 5); }, "abcbcdef"},
        {"inserting a part", [](S& s) { s.Insert(1, s.GetData() + 3); }, "adefbcdef"},
        {"inserting a part at the end", [](S& s) { s.Insert(6, s.GetData() + 3); }, "abcdefdef"},
        {"replacing by a part", [](S& s) { s.Replace(0, 5, s.GetData() + 1); }, "bcdeff"},
        {"replacing by as much", [](S& s) { s.Replace(0, 3, s.GetData() + 3); }, "defdef"},
        {"replacing what was found", [](S& s) { s.FindReplace(s.GetData() + 4, s.GetData()); }, "abcdabcdef"},
        {"extracting to itself", [](S& s) { s.Extract(4, -2, s); }, "cd"},
        {"an extension of its own", [](S& s) { s.ChangeFileExt(s.GetData() + 4); }, "abcdef.ef"},
    };
    for (const int room : {0, 40}) // with and without a block to spare
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(row.what) + (room != 0 ? " with room" : ""));
            S s("abcdef");
            s.ReallocBuffer(static_cast<unsigned>(room));
            row.apply(s);
            EXPECT_EQ(narrow(s.GetData()), row.result);
        }
    // Where there is room a text that is being written stays so, in its place.
    for (const auto& row : rows) {
        const std::string_view what = row.what;
        if (!what.starts_with("appending") && !what.starts_with("inserting") && !what.ends_with("found"))
            continue;
        SCOPED_TRACE(row.what);
        S s("abcdef");
        const auto* const writable = s.GetBuffer(39);
        row.apply(s);
        EXPECT_EQ(narrow(s.GetData()), row.result);
        EXPECT_EQ(s.GetData(), writable);
        EXPECT_EQ(s.count(), -1);
    }
}

TYPED_TEST(StringBlocks, TextsBeyondTwoGigabytesAreRefusedBeforeAnythingChanges) {
    using S = Open<TypeParam>;
    const auto x = text<TypeParam>("x");
    S s("abc");
    EXPECT_THROW(s.GetBuffer(INT_MAX), CXMemException);
    EXPECT_THROW(s.ReallocBuffer(UINT_MAX), CXMemException);
    EXPECT_THROW(s.AllocBuffer(0x7FFFFFFF), CXMemException);
    EXPECT_THROW(s.AssignCopy(x.c_str(), UINT_MAX - 1), CXMemException);
    EXPECT_THROW(s.ConcatCopy(x.c_str(), UINT_MAX), CXMemException);
    EXPECT_EQ(narrow(s.GetData()), "abc");
    EXPECT_EQ(s.count(), 1);
}

TEST(WideText, NullTextAppendsNothing) {
    Open<WideKind> s("abc");
    s.ConcatCopy(nullptr, 3);
    s.ConcatCopyTo(1, nullptr, 3);
    EXPECT_EQ(narrow(s.GetData()), "abc");
    EXPECT_EQ(s.GetAllocSize(), 10);
}

struct CharacterString : CXString {
    using CXString::AssignChar;
};

TEST(NarrowCharacter, TakesTwoBytesWhenItsHighByteIsALeadByte) {
    const struct {
        Page page;
        wchar_t c;
        const char* bytes;
        int capacity;
    } rows[] = {
        {Page::kAny, L'a', "a", 2},          {Page::kAny, 0, "", 2},
        {Page::kAny, 0x1261, "a", 2},        {Page::kSingleByte, 0x8340, "@", 2},
        {Page::k932, 0x8340, "\x83\x40", 3}, {Page::k932, 0x8300, "\x83", 3},
        {Page::k932, 0x0083, "\x83", 2},     {Page::k932, 0x4181, "\x81", 2},
    };
    for (const auto& row : rows) {
        if (!applies(row.page)) continue;
        SCOPED_TRACE(static_cast<unsigned>(row.c));
        CharacterString s;
        s.AssignChar(row.c);
        EXPECT_STREQ(s.GetData(), row.bytes);
        EXPECT_EQ(s.GetAllocSize(), row.capacity);
        const CXString joined = CXString("x") + row.c;
        EXPECT_EQ(std::string(joined.GetData()), std::string("x") + row.bytes);
        EXPECT_EQ(joined.GetAllocSize(), int(std::strlen(row.bytes)) + 2);
    }
}

} // namespace
