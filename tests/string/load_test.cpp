// Loading string resources of the test program (strings.rc).
#include "string_kinds.h"

namespace {

template <class Kind>
class StringResources : public testing::Test {};
TYPED_TEST_SUITE(StringResources, BothKinds, KindNames);

// The text of every resource counts through the digits.
std::string digits(std::size_t n) {
    std::string s;
    for (std::size_t i = 0; i < n; ++i)
        s += static_cast<char>('0' + i % 10);
    return s;
}

TYPED_TEST(StringResources, AreLoadedWhole) {
    const struct {
        unsigned id;
        std::size_t length;
        int units; // of the block: the capacity that sufficed, and two
    } rows[] = {
        {100, 5, 257}, {101, 254, 257}, {102, 255, 513}, {103, 256, 513}, {104, 300, 513}, {105, 511, 769},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.id);
        Open<TypeParam> s("old");
        EXPECT_EQ(s.Load(GetModuleHandleA(nullptr), row.id), 1);
        EXPECT_EQ(narrow(s.GetData()), digits(row.length));
        EXPECT_EQ(s.GetAllocSize(), row.units * TypeParam::kUnit);
        EXPECT_EQ(s.count(), 1);
    }
}

TYPED_TEST(StringResources, MissingAndEmptyOnesGiveTheEmptyText) {
    for (const unsigned id : {106U, 107U, 4711U}) {
        SCOPED_TRACE(id);
        Open<TypeParam> s("old");
        const auto shared = s;
        EXPECT_EQ(s.Load(GetModuleHandleA(nullptr), id), 0);
        EXPECT_EQ(s.GetSize(), 0U);
        EXPECT_EQ(s.GetAllocSize(), 257 * TypeParam::kUnit);
        EXPECT_EQ(s.count(), 1);
        EXPECT_EQ(narrow(shared.GetData()), "old");
    }
}

} // namespace
