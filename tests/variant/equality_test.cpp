// When two variants are equal.
#include "qzvariant.h"

#include "support/counting_object.h"
#include "support/variants.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A real size whose bytes read as the two integers are equal to it: x in the low, y in the high half.
tagRSIZE size_of_integers(int x, int y) {
    const tagSIZE integers{x, y};
    tagRSIZE size{0, 0};
    std::memcpy(&size, &integers, sizeof integers);
    return size;
}

TEST(VariantEquality, ByType) {
    CountingObject a, b;
    const struct {
        CQZVariant left, right;
        int equal;
    } rows[] = {
        {CQZVariant(), CQZVariant(), 1},
        {CQZVariant(5), CQZVariant(5), 1},
        {CQZVariant(5), CQZVariant(6), 0},
        {CQZVariant(5, 1), CQZVariant(7, 1), 1},
        {CQZVariant(5), CQZVariant(5l), 0}, // of different types
        {CQZVariant(5u), CQZVariant(5ul), 0},
        {CQZVariant(0), CQZVariant(), 0},
        {CQZVariant(static_cast<unsigned char>(200)), CQZVariant(static_cast<unsigned char>(201)), 0},
        {CQZVariant(static_cast<unsigned short>(60000)), CQZVariant(static_cast<unsigned short>(1)), 0},
        {CQZVariant(0.5), CQZVariant(0.5), 1},
        {CQZVariant(0.5), CQZVariant(0.5000001), 0},
        {CQZVariant(0.0), CQZVariant(-0.0), 1},
        {CQZVariant(kNaN), CQZVariant(kNaN), 1},
        {CQZVariant(static_cast<float>(kNaN)), CQZVariant(static_cast<float>(kNaN)), 1},
        {CQZVariant(1.f), CQZVariant(2.f), 0},
        {CQZVariant("abc"), CQZVariant("abc"), 1},
        {CQZVariant("abc"), CQZVariant("abd"), 0},
        {CQZVariant("abc"), CQZVariant("ab"), 0},
        {CQZVariant(""), CQZVariant(""), 1},
        {CQZVariant("abc"), CQZVariant(L"abc"), 0},
        {CQZVariant(tagSIZE{1, 2}), CQZVariant(tagSIZE{1, 3}), 0},
        {CQZVariant(tagSIZE{1, 2}), CQZVariant(tagPOINT{1, 2}), 0},
        {CQZVariant(tagPOINT{1, 2}), CQZVariant(tagPOINT{0, 2}), 0},
        {CQZVariant(tagRPOINT{1, 2}), CQZVariant(tagRPOINT{1.0009, 1.9991}), 1},
        {CQZVariant(tagRPOINT{1, 2}), CQZVariant(tagRPOINT{1.0011, 2}), 0},
        {CQZVariant(tagRPOINT{1, 2}), CQZVariant(tagRPOINT{1, 1.9989}), 0},
        {CQZVariant(&a), CQZVariant(&a), 1},
        {CQZVariant(&a), CQZVariant(&b), 0},
        {CQZVariant(static_cast<IQZUnknown*>(nullptr)), CQZVariant(&b), 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << "row " << (&row - rows) << ": " << show(row.left) << " and " << show(row.right));
        EXPECT_EQ(row.left == row.right, row.equal);
        EXPECT_EQ(row.right == row.left, row.equal);
        EXPECT_EQ(row.left == static_cast<const tagQZVARIANT&>(row.right), row.equal);
        EXPECT_EQ(row.left == static_cast<const tagQZVARIANT*>(&row.right), row.equal);
    }
}

// But for the real size, which is read as integers on the left.
TEST(VariantEquality, CopiesAreEqual) {
    CountingObject object;
    for (const CQZVariant& sample : one_of_each(object))
        EXPECT_EQ(sample == CQZVariant(sample), sample.vt != QZVT_RSIZE ? 1 : 0) << sample.vt;
}

TEST(VariantEquality, EmptyRectanglesAreEqual) {
    const struct {
        tagRECT left, right;
        int equal;
    } integers[] = {
        {{1, 2, 3, 4}, {1, 2, 3, 4}, 1}, {{1, 2, 3, 4}, {1, 2, 3, 5}, 0}, {{1, 2, 3, 4}, {0, 2, 3, 4}, 0},
        {{1, 1, 1, 1}, {5, 9, 0, 0}, 1}, {{1, 1, 1, 9}, {0, 7, 9, 7}, 1}, {{1, 1, 1, 1}, {1, 1, 2, 2}, 0},
    };
    for (const auto& row : integers) {
        SCOPED_TRACE(testing::Message() << "row " << (&row - integers));
        EXPECT_EQ(CQZVariant(row.left) == CQZVariant(row.right), row.equal);
    }
    const struct {
        tagRRECT left, right;
        int equal;
    } reals[] = {
        {{1, 2, 3, 4}, {1.0009, 2, 3, 3.9991}, 1}, {{1, 2, 3, 4}, {1, 2, 3, 4.0011}, 0},
        {{1, 1, 1, 1}, {2, 2, 2, 2}, 0}, // of zero width, not empty
        {{1, 1, 0.5, 1}, {2, 2, 2, 1}, 1},         {{1, 1, 0.5, 1}, {2, 2, 2, 2}, 0},
    };
    for (const auto& row : reals) {
        SCOPED_TRACE(testing::Message() << "row " << (&row - reals));
        EXPECT_EQ(CQZVariant(row.left) == CQZVariant(row.right), row.equal);
    }
}

TEST(VariantEquality, OfWideTextsTheFirstHalfDecides) {
    const struct {
        const wchar_t *left, *right;
        int equal;
    } rows[] = {
        {L"", L"", 1},
        {L"abcd", L"abXY", 1},
        {L"abcd", L"aXcd", 0},
        {L"abcd", L"abc", 0},
        {L"abc", L"abX", 1},
        {L"a\x100", L"aXX", 0}, // of different lengths
        {L"\x141g", L"\x141z", 1},
        // An odd length ends within a unit, whose low byte still counts.
        {L"\x141", L"\x241", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "row " << (&row - rows));
        EXPECT_EQ(CQZVariant(row.left) == CQZVariant(row.right), row.equal);
    }
}

TEST(VariantEquality, TheLeftRealSizeIsReadAsIntegers) {
    const CQZVariant size(tagRSIZE{2.5, 3.5}), copy(size);
    EXPECT_EQ(size == size, 1); // the same record
    EXPECT_EQ(size == copy, 0);
    EXPECT_EQ(CQZVariant(tagRSIZE{0, 0}) == CQZVariant(tagRSIZE{0, 0}), 1);
    EXPECT_EQ(CQZVariant(size_of_integers(7, 9)) == CQZVariant(tagRSIZE{7, 9}), 1);
    EXPECT_EQ(CQZVariant(size_of_integers(7, 9)) == CQZVariant(tagRSIZE{7.0009, 8.9991}), 1);
    EXPECT_EQ(CQZVariant(size_of_integers(7, 9)) == CQZVariant(tagRSIZE{7, 9.0011}), 0);
    EXPECT_EQ(CQZVariant(tagRSIZE{7, 9}) == CQZVariant(size_of_integers(7, 9)), 0);
}

TEST(VariantEquality, CoordinatesThatAreNoNumbersDoNotDiffer) {
    EXPECT_EQ(CQZVariant(tagRPOINT{kNaN, 1}) == CQZVariant(tagRPOINT{5, 1}), 1);
    EXPECT_EQ(CQZVariant(tagRPOINT{kNaN, 1}) == CQZVariant(tagRPOINT{5, 2}), 0);
    EXPECT_EQ(CQZVariant(tagRPOINT{kInfinity, 1}) == CQZVariant(tagRPOINT{kInfinity, 1}), 1);
    EXPECT_EQ(CQZVariant(tagRPOINT{kInfinity, 1}) == CQZVariant(tagRPOINT{-kInfinity, 1}), 0);
}

TEST(VariantEquality, InvalidCodesAreEqualOnlyToThemselves) {
    CQZVariant left, right;
    left.vt = right.vt = 20;
    EXPECT_EQ(left == right, 0);
    EXPECT_EQ(left == left, 1);
    left.vt = right.vt = QZVT_OBJECT_REF;
    EXPECT_EQ(left == right, 0);
}

} // namespace
