// Values to and from plain memory: how wide they are there, and who owns what afterwards.
#include "qzheap.h"
#include "qzvariant.h"

#include "support/counting_object.h"
#include "support/live_blocks.h"
#include "support/variants.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(VariantBind, PlainTypesTakeTheirWidth) {
    unsigned char counting[40];
    for (unsigned i = 0; i < sizeof counting; ++i)
        counting[i] = static_cast<unsigned char>(i + 1);
    const double reals[] = {1.5, -2.25, 3.75, 1e300, 0};
    const float single[10] = {0.5f};
    const struct {
        unsigned short vt;
        const void* field;
        unsigned bytes;
        const char* value;
    } rows[] = {
        {QZVT_BOOL, counting, 4, "67305985"}, // 0x04030201, not normalised
        {QZVT_UCHAR, counting, 1, "1"},
        {QZVT_USHORT, counting, 2, "513"},
        {QZVT_ULONG, counting, 4, "67305985"},
        {QZVT_INT, counting, 4, "67305985"},
        {QZVT_UINT, counting, 4, "67305985"},
        {QZVT_LONG, counting, 4, "67305985"},
        {QZVT_DOUBLE, reals, 8, "1.5"},
        {QZVT_FLOAT, single, 4, "0.5"},
        {QZVT_SIZE, counting, 8, "67305985,134678021"},
        {QZVT_RSIZE, reals, 16, "1.5,-2.25"},
        {QZVT_POINT, counting, 8, "67305985,134678021"},
        {QZVT_RPOINT, reals, 16, "1.5,-2.25"},
        {QZVT_RECT, counting, 16, "67305985,134678021,202050057,269422093"},
        {QZVT_RRECT, reals, 32, "1.5,-2.25,3.75,1e+300"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.vt);
        alignas(8) unsigned char field[40], back[40];
        std::memcpy(field, row.field, sizeof field);
        CQZVariant v("old");
        EXPECT_EQ(v.BindFromValue(row.vt, field), 1);
        EXPECT_EQ(v.vt, row.vt);
        EXPECT_EQ(show(v), row.value);
        std::memset(back, 0xEE, sizeof back);
        EXPECT_EQ(v.BindToValue(row.vt, back), 1);
        EXPECT_EQ(std::memcmp(back, field, row.bytes), 0);
        for (unsigned i = row.bytes; i < sizeof back; ++i)
            EXPECT_EQ(back[i], 0xEE) << "byte " << i << " lies behind the field";
    }
}

TEST(VariantBind, EmptyAndInvalidCodesAreRefused) {
    for (const unsigned short vt : {0, 20, 16384, 65535}) {
        SCOPED_TRACE(vt);
        char field[40] = "field";
        CQZVariant v("old");
        EXPECT_EQ(v.BindToValue(vt, field), 0);
        EXPECT_STREQ(field, "field");
        EXPECT_EQ(v.BindFromValue(vt, field), 0);
        EXPECT_EQ(v.vt, vt); // the code stays, without a value
        EXPECT_EQ(v.pszVal, nullptr);
    }
}

TEST(VariantBind, TextIsDuplicatedBothWays) {
    const std::size_t before = live_blocks();
    {
        char text[] = "text";
        wchar_t wide[] = L"wide";
        char* field = text;
        wchar_t* wide_field = wide;
        CQZVariant v, w;
        EXPECT_EQ(v.BindFromValue(QZVT_TEXT, &field), 1);
        EXPECT_EQ(w.BindFromValue(QZVT_WTEXT, &wide_field), 1);
        text[0] = 'X';
        wide[0] = 'X';
        EXPECT_EQ(show(v), "'text'");
        EXPECT_EQ(show(w), "'wide'");

        field = static_cast<char*>(Mem_DefaultHeap()->Alloc(10)); // will be freed
        EXPECT_EQ(v.BindToValue(QZVT_TEXT, &field), 1);
        EXPECT_STREQ(field, "text");
        EXPECT_NE(field, v.pszVal);
        wide_field = nullptr;
        EXPECT_EQ(w.BindToValue(QZVT_WTEXT, &wide_field), 1);
        EXPECT_STREQ(wide_field, L"wide");
        EXPECT_NE(wide_field, w.pwszVal);

        // A field that is the variant's own text gets another copy of it.
        EXPECT_EQ(QZVariantBindToValue(QZVT_TEXT, &v.pszVal, &v), 1);
        EXPECT_EQ(show(v), "'text'");
        EXPECT_EQ(QZVariantBindFromValue(QZVT_TEXT, &v.pszVal, &v), 1);
        EXPECT_EQ(show(v), "'text'");
        // A null text in the variant leaves a null in the field.
        EXPECT_EQ(CQZVariant(static_cast<const char*>(nullptr)).BindToValue(QZVT_TEXT, &field), 1);
        EXPECT_EQ(field, nullptr);
        EXPECT_EQ(v.BindFromValue(QZVT_TEXT, &field), 1);
        EXPECT_EQ(show(v), "null");
        Mem_DefaultHeap()->Free(wide_field);
    }
    EXPECT_EQ(live_blocks(), before);
}

TEST(VariantBind, InterfacesAreCountedBothWays) {
    CountingObject first, second;
    IQZUnknown* field = &first;
    {
        CQZVariant v;
        EXPECT_EQ(v.BindFromValue(QZVT_OBJECT, &field), 1);
        EXPECT_EQ(first.references, 2u);

        field = &second; // carries the test's reference, which the field gives up
        EXPECT_EQ(v.BindToValue(QZVT_OBJECT, &field), 1);
        EXPECT_EQ(field, &first);
        EXPECT_EQ(first.references, 3u);
        EXPECT_EQ(second.references, 0u);

        EXPECT_EQ(v.BindToValue(QZVT_OBJECT, &field), 1); // the same again
        EXPECT_EQ(first.references, 3u);
        v = static_cast<IQZUnknown*>(nullptr);
        EXPECT_EQ(v.BindToValue(QZVT_OBJECT, &field), 1);
        EXPECT_EQ(field, nullptr);
        EXPECT_EQ(v.BindFromValue(QZVT_OBJECT, &field), 1);
        EXPECT_EQ(show(v), "null");
    }
    EXPECT_EQ(first.references, 1u);
}

TEST(VariantBind, BlobBytesChangeHandsWithoutACopy) {
    const std::size_t before = live_blocks();
    {
        tagQZBLOB field{3, Mem_DefaultHeap()->Alloc(3)};
        std::memcpy(field.pBlobData, "abc", 3);
        CQZVariant v;
        EXPECT_EQ(v.BindFromValue(QZVT_BLOB, &field), 1);
        EXPECT_EQ(v.blobVal.pBlobData, field.pBlobData); // now the variant's

        tagQZBLOB shared{1, nullptr};
        EXPECT_EQ(v.BindToValue(QZVT_BLOB, &shared), 1);
        EXPECT_EQ(shared.cbSize, 3u);
        EXPECT_EQ(shared.pBlobData, v.blobVal.pBlobData); // still the variant's

        EXPECT_EQ(v.BindFromValue(QZVT_BLOB, &shared), 1); // what it owns already
        EXPECT_EQ(show(v), "616263");
    }
    EXPECT_EQ(live_blocks(), before);
}

TEST(VariantBind, TheSourceIsReadAsTheTypeAskedFor) {
    int field = 0;
    EXPECT_EQ(CQZVariant(tagSIZE{3, 4}).BindToValue(QZVT_INT, &field), 1);
    EXPECT_EQ(field, 3);
    tagPOINT point = {};
    EXPECT_EQ(CQZVariant(-1).BindToValue(QZVT_POINT, &point), 1);
    EXPECT_EQ(point.x, -1);
    EXPECT_EQ(point.y, 0);
}

} // namespace
