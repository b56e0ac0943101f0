// Variants as values: what constructors and assignments make of each type, what copies own, what casts read.
#include "qzexception.h"
#include "qzheap.h"
#include "qzstring.h"
#include "qzvariant.h"

#include "support/counting_object.h"
#include "support/live_blocks.h"
#include "support/variants.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

namespace {

bool is_all_zero(const tagQZVARIANT& v) {
    static const unsigned char zeroes[sizeof v] = {};
    return v.vt == 0 && std::memcmp(&v.rrectVal, zeroes, sizeof v.rrectVal) == 0;
}

using Assignment = std::function<void(CQZVariant&)>;

const char* const kSamples[QZVT_COUNT] = {
    "",    "1",    "200",      "60000", "4000000000", "-70000",    "3000000000",  "-5",     "-2.5",   "3.75",
    "'7'", "3,-4", "2.5,-2.5", "-7,8",  "1.4,-1.6",   "0,0,11,10", "0,0,9.6,9.4", "0102FF", "object", "'42'",
};

TEST(Variant, ConstructorsGiveTheTypeOfTheirArgument) {
    CountingObject object;
    const auto samples = one_of_each(object);
    ASSERT_EQ(samples.size(), std::size_t{QZVT_COUNT});
    for (unsigned short vt = 0; vt < QZVT_COUNT; ++vt) {
        SCOPED_TRACE(vt);
        EXPECT_EQ(samples[vt].vt, vt);
        EXPECT_EQ(show(samples[vt]), kSamples[vt]);
    }
    const CQZVariant narrow{CXString("text")};
    EXPECT_EQ(narrow.vt, QZVT_TEXT);
    EXPECT_EQ(show(narrow), "'text'");
    const CQZVariant wide{CXStringW(L"wide")};
    EXPECT_EQ(wide.vt, QZVT_WTEXT);
    EXPECT_EQ(show(wide), "'wide'");
}

TEST(Variant, TheSecondArgumentOfIntegersAsksForABoolean) {
    const struct {
        CQZVariant made;
        unsigned short vt;
        const char* value;
    } rows[] = {
        {CQZVariant(5, 1), QZVT_BOOL, "1"},
        {CQZVariant(0, 1), QZVT_BOOL, "0"},
        {CQZVariant(5, 0), QZVT_INT, "5"},
        {CQZVariant(static_cast<unsigned char>(200), 1), QZVT_BOOL, "1"},
        {CQZVariant(static_cast<unsigned char>(200), 2), QZVT_UCHAR, "200"},
        {CQZVariant(static_cast<unsigned short>(256), 1), QZVT_BOOL, "1"},
        {CQZVariant(static_cast<unsigned short>(256), 3), QZVT_USHORT, "256"},
        {CQZVariant(0x80000000u, 1), QZVT_BOOL, "1"},
        {CQZVariant(7u, 65535), QZVT_UINT, "7"},
        {CQZVariant(7l, 1), QZVT_BOOL, "1"},
        {CQZVariant(-7l, 5), QZVT_LONG, "-7"},
        {CQZVariant(9ul, 6), QZVT_ULONG, "9"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "row " << (&row - rows));
        EXPECT_EQ(row.made.vt, row.vt);
        EXPECT_EQ(show(row.made), row.value);
    }
}

TEST(Variant, InitAndClearLeaveOnlyZeroes) {
    tagQZVARIANT v;
    std::memset(&v, 0xCC, sizeof v);
    QZVariantInit(&v);
    EXPECT_TRUE(is_all_zero(v));

    CountingObject object;
    for (CQZVariant& sample : one_of_each(object)) {
        SCOPED_TRACE(sample.vt);
        sample.Clear();
        EXPECT_TRUE(is_all_zero(sample));
    }
    EXPECT_EQ(object.references, 1u);

    for (const unsigned short vt : {20, 16384, 65535}) { // owns nothing, whatever its bytes look like
        SCOPED_TRACE(vt);
        std::memset(&v, 0xCC, sizeof v);
        v.vt = vt;
        QZVariantClear(&v);
        EXPECT_TRUE(is_all_zero(v));
    }
}

TEST(Variant, CopiesAreIndependent) {
    CountingObject object;
    auto samples = one_of_each(object);
    for (const CQZVariant& sample : samples) {
        SCOPED_TRACE(sample.vt);
        CQZVariant copy("old");
        copy = sample;
        EXPECT_EQ(copy.vt, sample.vt);
        EXPECT_EQ(show(copy), kSamples[sample.vt]);
    }
    CQZVariant text_copy(samples[QZVT_TEXT]), wide_copy(samples[QZVT_WTEXT]), blob_copy(samples[QZVT_BLOB]);
    CQZVariant object_copy(&static_cast<tagQZVARIANT&>(samples[QZVT_OBJECT]));
    EXPECT_NE(text_copy.pszVal, samples[QZVT_TEXT].pszVal);
    EXPECT_NE(wide_copy.pwszVal, samples[QZVT_WTEXT].pwszVal);
    EXPECT_NE(blob_copy.blobVal.pBlobData, samples[QZVT_BLOB].blobVal.pBlobData);
    EXPECT_EQ(object.references, 3u);
    samples.clear();
    EXPECT_EQ(show(text_copy), "'7'");
    EXPECT_EQ(show(wide_copy), "'42'");
    EXPECT_EQ(show(blob_copy), "0102FF");
    EXPECT_EQ(object.references, 2u);
    object_copy.Clear();
    EXPECT_EQ(object.references, 1u);
}

TEST(Variant, CopyingARecordOntoItselfEmptiesIt) {
    CountingObject object;
    const Assignment ways[] = {
        [](CQZVariant& v) { QZVariantCopy(&v, &v); },
        [](CQZVariant& v) { v = *&v; },
        [](CQZVariant& v) { v = static_cast<const tagQZVARIANT&>(v); },
        [](CQZVariant& v) { v = static_cast<const tagQZVARIANT*>(&v); },
    };
    for (const Assignment& way : ways) {
        for (CQZVariant& v : one_of_each(object)) {
            SCOPED_TRACE(testing::Message() << "code " << v.vt << ", way " << (&way - ways));
            way(v);
            EXPECT_TRUE(is_all_zero(v));
        }
        EXPECT_EQ(object.references, 1u);
    }
}

TEST(Variant, AssigningItsOwnPartKeepsTheValue) {
    CountingObject object;
    CQZVariant text("some text"), wide(L"wide"), holder(&object), bytes, rect(tagRRECT{1, 2, 3, 4});
    text = static_cast<const char*>(text.pszVal);
    EXPECT_EQ(show(text), "'some text'");
    text = text.pszVal + 5;
    EXPECT_EQ(show(text), "'text'");
    wide = static_cast<const wchar_t*>(wide.pwszVal);
    EXPECT_EQ(show(wide), "'wide'");
    holder = static_cast<IQZUnknown*>(holder);
    EXPECT_EQ(show(holder), "object");
    EXPECT_EQ(object.references, 2u);
    char data[] = {10, 11, 12};
    bytes = tagQZBLOB{3, data};
    bytes = static_cast<tagQZBLOB>(bytes);
    EXPECT_EQ(show(bytes), "0A0B0C");
    bytes = bytes.blobVal;
    EXPECT_EQ(show(bytes), "0A0B0C");
    rect = rect.rpointVal; // lies in the bytes that are cleared
    EXPECT_EQ(show(rect), "1,2");
}

template <class T>
Assignment assigning(T value) {
    return [value](CQZVariant& v) { v = value; };
}

// Assigning to a variant of every type gives the argument's type, and for five integers a boolean stays one.
TEST(Variant, AssignmentsTakeTheNewTypeExceptIntegersInABoolean) {
    CountingObject object;
    char hi[] = "hi";
    const struct {
        unsigned short vt;
        Assignment assign;
        const char* value;
        const char* in_boolean = nullptr; // null: the boolean ends
    } rows[] = {
        {QZVT_UCHAR, assigning(static_cast<unsigned char>(7)), "7"},
        {QZVT_USHORT, assigning(static_cast<unsigned short>(7)), "7", "1"},
        {QZVT_INT, assigning(-7), "-7", "1"},
        {QZVT_INT, assigning(0), "0", "0"},
        {QZVT_UINT, assigning(0x80000000u), "2147483648", "1"},
        {QZVT_LONG, assigning(-9l), "-9", "1"},
        {QZVT_ULONG, assigning(256ul), "256", "1"},
        {QZVT_FLOAT, assigning(0.5f), "0.5"},
        {QZVT_DOUBLE, assigning(0.25), "0.25"},
        {QZVT_TEXT, assigning("abc"), "'abc'"},
        {QZVT_TEXT, assigning(CXString("abc")), "'abc'"},
        {QZVT_WTEXT, assigning(L"abc"), "'abc'"},
        {QZVT_WTEXT, assigning(CXStringW(L"abc")), "'abc'"},
        {QZVT_SIZE, assigning(tagSIZE{1, 2}), "1,2"},
        {QZVT_RSIZE, assigning(tagRSIZE{1, 2}), "1,2"},
        {QZVT_POINT, assigning(tagPOINT{1, 2}), "1,2"},
        {QZVT_RPOINT, assigning(tagRPOINT{1, 2}), "1,2"},
        {QZVT_RECT, assigning(tagRECT{1, 2, 3, 4}), "1,2,3,4"},
        {QZVT_RRECT, assigning(tagRRECT{1, 2, 3, 4}), "1,2,3,4"},
        {QZVT_BLOB, assigning(tagQZBLOB{2, hi}), "6869"},
        {QZVT_OBJECT, assigning(static_cast<IQZUnknown*>(nullptr)), "null"},
    };
    for (const auto& row : rows) {
        for (CQZVariant& v : one_of_each(object)) {
            SCOPED_TRACE(testing::Message() << "code " << row.vt << " assigned to code " << v.vt);
            const bool stays = v.vt == QZVT_BOOL && row.in_boolean != nullptr;
            row.assign(v);
            EXPECT_EQ(v.vt, stays ? unsigned{QZVT_BOOL} : row.vt);
            EXPECT_EQ(show(v), stays ? row.in_boolean : row.value);
        }
        EXPECT_EQ(object.references, 1u) << row.vt;
    }
}

TEST(Variant, NothingLeaks) {
    const auto round = [] {
        CountingObject object;
        auto samples = one_of_each(object);
        for (CQZVariant& target : samples)
            for (const CQZVariant& source : one_of_each(object))
                target = source;
        QZBlob blob(100), copy(blob);
        copy = &blob;
        blob = copy;
        blob.Clear();
        samples.clear();
        EXPECT_EQ(object.references, 1u);
    };
    round();
    const std::size_t before = live_blocks();
    round();
    EXPECT_EQ(live_blocks(), before);
}

TEST(Variant, CastsReadTheMemberWhateverTheCode) {
    const CQZVariant number(300);
    EXPECT_EQ(static_cast<unsigned char>(number), 44);
    EXPECT_EQ(static_cast<unsigned short>(number), 300);
    EXPECT_EQ(static_cast<int>(number), 300);
    EXPECT_EQ(static_cast<unsigned int>(number), 300u);
    EXPECT_EQ(static_cast<long>(number), 300l);
    EXPECT_EQ(static_cast<unsigned long>(number), 300ul);
    EXPECT_EQ(static_cast<tagPOINT>(number).x, 300);
    const CQZVariant real(1.5); // 0x3FF8000000000000
    EXPECT_EQ(static_cast<double>(real), 1.5);
    EXPECT_EQ(static_cast<float>(CQZVariant(0.5f)), 0.5f);
    EXPECT_EQ(static_cast<tagSIZE>(real).cy, 0x3FF80000);
    const CQZVariant rect(tagRRECT{1, 2, 3, 4});
    EXPECT_EQ(static_cast<tagRRECT>(rect).bottom, 4);
    EXPECT_EQ(static_cast<tagRSIZE>(rect).cy, 2);
    EXPECT_EQ(static_cast<tagRPOINT>(rect).x, 1);
    EXPECT_EQ(static_cast<tagRECT>(CQZVariant(tagRECT{1, 2, 3, 4})).bottom, 4);

    CountingObject object;
    const CQZVariant holder(&object), text("abc"), blob(tagQZBLOB{2, const_cast<char*>("hi")});
    EXPECT_EQ(static_cast<IQZUnknown*>(holder), &object);
    EXPECT_EQ(object.references, 2u);
    EXPECT_STREQ(static_cast<char*>(text), "abc");
    EXPECT_EQ(static_cast<tagQZBLOB>(blob).pBlobData, blob.blobVal.pBlobData);
}

TEST(Variant, TheWideCastTurnsNarrowTextIntoWideText) {
    const CQZVariant text("abc");
    EXPECT_STREQ(static_cast<wchar_t*>(text), L"abc");
    EXPECT_EQ(text.vt, QZVT_WTEXT);
    EXPECT_STREQ(static_cast<wchar_t*>(text), L"abc");

    const CQZVariant nothing(static_cast<const char*>(nullptr));
    EXPECT_STREQ(static_cast<wchar_t*>(nothing), L"");
    const CQZVariant number(5);
    EXPECT_EQ(reinterpret_cast<unsigned long long>(static_cast<wchar_t*>(number)), 5u);
    EXPECT_EQ(number.vt, QZVT_INT);
}

TEST(Variant, NullTextsStayNullAndReadAsEmpty) {
    const CQZVariant narrow(static_cast<const char*>(nullptr)), wide(static_cast<const wchar_t*>(nullptr));
    EXPECT_EQ(show(narrow), "null");
    EXPECT_EQ(show(wide), "null");
    EXPECT_EQ(show(CQZVariant(narrow)), "null");
    EXPECT_EQ(show(CQZVariant(wide)), "null");
    EXPECT_EQ(narrow == CQZVariant(""), 1);
    EXPECT_EQ(CQZVariant(L"") == wide, 1);
    EXPECT_EQ(narrow == CQZVariant("a"), 0);
}

TEST(Variant, AttachAndDetachMoveTheValue) {
    CountingObject object;
    CQZVariant from("text"), to(&object);
    const char* const text = from.pszVal;
    to.Attach(from);
    EXPECT_EQ(object.references, 1u);
    EXPECT_EQ(from.vt, QZVT_EMPTY);
    EXPECT_EQ(from.pszVal, text); // left behind, owned by the other
    EXPECT_EQ(to.pszVal, text);

    tagQZVARIANT record = to.Detach();
    EXPECT_EQ(to.vt, QZVT_EMPTY);
    EXPECT_EQ(record.vt, QZVT_TEXT);
    EXPECT_EQ(record.pszVal, text);
    to = 5; // does not free what was given away
    EXPECT_STREQ(record.pszVal, "text");
    to.Attach(record);
    EXPECT_EQ(show(to), "'text'");
    to.Attach(to);
    EXPECT_TRUE(is_all_zero(to));
}

TEST(Variant, AReleasedObjectFindsTheNewValue) {
    CQZVariant v;
    static unsigned short seen;
    const auto look = [](void* watched) { seen = static_cast<tagQZVARIANT*>(watched)->vt; };
    CountingObject object;
    object.on_release = look;
    object.watched = &v;
    const struct {
        const char* what;
        void (*change)(CQZVariant& v);
        unsigned short expected;
    } rows[] = {
        {"clear", [](CQZVariant& x) { x.Clear(); }, QZVT_EMPTY},
        {"int", [](CQZVariant& x) { x = 5; }, QZVT_INT},
        {"text", [](CQZVariant& x) { x = "text"; }, QZVT_TEXT},
        {"copy", [](CQZVariant& x) { x = CQZVariant(2.5); }, QZVT_DOUBLE},
        {"borrow", [](CQZVariant& x) { x.ChangeType(QZVT_OBJECT_REF); }, QZVT_OBJECT_REF},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        v = static_cast<IQZUnknown*>(&object);
        seen = 0xFFFF;
        row.change(v);
        EXPECT_EQ(seen, row.expected);
        EXPECT_EQ(object.references, 1u);
    }
}

TEST(Blob, CopiesItsBytes) {
    char data[] = "bytes";
    const tagQZBLOB record{5, data};
    const QZBlob none, zeroes(3), from_record(record), from_pointer(&record), from_blob(from_record);
    EXPECT_EQ(none.cbSize, 0u);
    EXPECT_EQ(none.pBlobData, nullptr);
    EXPECT_EQ(zeroes.cbSize, 3u);
    EXPECT_EQ(std::memcmp(zeroes.pBlobData, "\0\0\0", 3), 0);
    for (const QZBlob* blob : {&from_record, &from_pointer, &from_blob}) {
        EXPECT_NE(blob->pBlobData, record.pBlobData);
        EXPECT_EQ(*blob == record, 1);
    }
    EXPECT_NE(from_blob.pBlobData, from_record.pBlobData);

    QZBlob target(2);
    target = &record;
    EXPECT_EQ(target == &record, 1);
    target = zeroes;
    EXPECT_EQ(target == zeroes, 1);
    target = *&target;
    EXPECT_EQ(target == zeroes, 1);
    const tagQZBLOB own = target;
    target = own; // another record over the very same bytes
    EXPECT_EQ(target == zeroes, 1);
    target.Clear();
    EXPECT_EQ(target.cbSize, 0u);
    EXPECT_EQ(target.pBlobData, nullptr);
}

TEST(Blob, EqualityOfBytes) {
    char abc[] = "abc", abd[] = "abd";
    const struct {
        tagQZBLOB left, right;
        int equal;
    } rows[] = {
        {{0, nullptr}, {0, nullptr}, 1}, {{0, abc}, {0, nullptr}, 1}, {{3, abc}, {3, abc}, 1},
        {{3, abc}, {3, abd}, 0},         {{2, abc}, {2, abd}, 1},     {{2, abc}, {3, abc}, 0},
        {{3, nullptr}, {3, nullptr}, 1}, {{3, nullptr}, {3, abc}, 0}, {{3, abc}, {3, nullptr}, 0},
        {{3, nullptr}, {4, nullptr}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "row " << (&row - rows));
        EXPECT_EQ(QZBlob(row.left) == row.right, row.equal);
        EXPECT_EQ(CQZVariant(row.left) == CQZVariant(row.right), row.equal);
    }
    const QZBlob copy(tagQZBLOB{7, nullptr});
    EXPECT_EQ(copy.cbSize, 7u);
    EXPECT_EQ(copy.pBlobData, nullptr);
}

} // namespace
