// What a failure midway leaves behind: exhausted memory, and objects that fail while they go.
#include "qzexception.h"
#include "qzstring.h"
#include "qzvariant.h"

#include "support/counting_object.h"
#include "support/limited_memory.h"
#include "support/live_blocks.h"
#include "support/variants.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

char bytes[] = "bytes";
const tagQZBLOB kBlob{5, bytes};

TEST(VariantFailure, ExhaustedMemoryLeavesTheOldValueOfAnAssignment) {
    CountingObject object;
    const CXString text("new");
    const CXStringW wide(L"new");
    for (CQZVariant& v : one_of_each(object)) {
        SCOPED_TRACE(v.vt);
        const std::string before = show(v);
        const unsigned short vt = v.vt;
        {
            const LimitedMemory none;
            EXPECT_THROW(v = "new", CXMemException);
            EXPECT_THROW(v = L"new", CXMemException);
            EXPECT_THROW(v = text, CXMemException);
            EXPECT_THROW(v = wide, CXMemException);
            EXPECT_THROW(v = kBlob, CXMemException);
        }
        EXPECT_EQ(v.vt, vt);
        EXPECT_EQ(show(v), before);
    }
}

TEST(VariantFailure, ExhaustedMemoryLeavesTheTargetOfACopyEmpty) {
    CountingObject object;
    const CQZVariant sources[] = {CQZVariant("text"), CQZVariant(L"wide"), CQZVariant(kBlob)};
    for (const CQZVariant& source : sources) {
        for (CQZVariant& v : one_of_each(object)) {
            SCOPED_TRACE(testing::Message() << "code " << source.vt << " onto " << v.vt);
            {
                const LimitedMemory none;
                EXPECT_THROW(QZVariantCopy(&v, &source), CXMemException);
                EXPECT_THROW(CQZVariant copy(source), CXMemException);
            }
            EXPECT_EQ(v.vt, QZVT_EMPTY);
        }
        EXPECT_EQ(object.references, 1u);
    }
}

TEST(VariantFailure, ExhaustedMemoryInAConversionOrABinding) {
    const std::size_t before = live_blocks();
    {
        CQZVariant number(5), apart("old");
        char* field = nullptr;
        const CQZVariant text("text");
        ASSERT_EQ(text.BindToValue(QZVT_TEXT, &field), 1);
        char* const held = field;
        {
            const LimitedMemory none;
            EXPECT_THROW(number.ChangeType(QZVT_TEXT), CXMemException);
            EXPECT_THROW(apart.ChangeType(QZVT_WTEXT, &number), CXMemException);
            EXPECT_THROW(text.BindToValue(QZVT_TEXT, &field), CXMemException);
            EXPECT_THROW(number.BindFromValue(QZVT_TEXT, &field), CXMemException);
            EXPECT_THROW(static_cast<wchar_t*>(text), CXMemException);
        }
        EXPECT_EQ(show(number), "5"); // in place: unchanged
        EXPECT_EQ(number.vt, QZVT_INT);
        EXPECT_EQ(apart.vt, QZVT_EMPTY);
        EXPECT_EQ(field, held);
        EXPECT_STREQ(field, "text");
        EXPECT_EQ(text.vt, QZVT_TEXT);
        CQZVariant owner;
        owner.vt = QZVT_TEXT;
        owner.pszVal = field;
    }
    EXPECT_EQ(live_blocks(), before);
}

TEST(VariantFailure, ExhaustedMemoryLeavesABlobAsItWas) {
    QZBlob blob(kBlob);
    const QZBlob other(100);
    {
        const LimitedMemory none;
        EXPECT_THROW(blob = other, CXMemException);
        EXPECT_THROW(QZBlob copy(other), CXMemException);
        EXPECT_THROW(QZBlob zeroes(0xFFFFFFFFul), CXMemException);
    }
    EXPECT_EQ(blob == kBlob, 1);
}

TEST(VariantFailure, AnObjectThatFailsWhileItGoes) {
    CountingObject object;
    object.on_release = [](void*) { throw CXException(4711); };
    { const CQZVariant v(&object); } // must not end the program
    EXPECT_EQ(object.references, 1u);

    CQZVariant v(&object);
    EXPECT_THROW(v.Clear(), CXException);
    EXPECT_EQ(v.vt, QZVT_EMPTY);
    EXPECT_EQ(v.pUnkVal, nullptr);
    v = static_cast<IQZUnknown*>(&object);
    EXPECT_THROW(v = 5, CXException);
    EXPECT_EQ(show(v), "5");
    EXPECT_EQ(object.references, 1u);
}

} // namespace
