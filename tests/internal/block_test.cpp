// Recycled blocks: their sizes, and how they grow.
#include "core/allocator.h"
#include "qzexception.h"
#include "qzheap.h"
#include "qzstring.h"
#include "string/string_access.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

namespace {

using namespace qzr;

constexpr std::size_t kRefused = std::size_t{1} << 40; // more than the heap is given

TEST(Blocks, AreRoundedUpByAnEighthAtMost) {
    const struct {
        std::size_t asked, given;
    } rows[] = {
        {0, 16},      {1, 16},        {16, 16},       {17, 32},       {128, 128},          {129, 144},
        {256, 256},   {257, 288},     {511, 512},     {512, 512},     {513, 576},          {1024, 1024},
        {1025, 1152}, {65535, 65536}, {65536, 65536}, {65537, 65537}, {kRefused, kRefused}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.asked);
        EXPECT_EQ(BlockCache::rounded(row.asked), row.given);
        EXPECT_EQ(BlockCache::rounded(row.given), row.given);
    }
}

// A block that comes back for a size of its class has room for the largest of them.
TEST(Blocks, ComeBackForEachSizeOfTheirClass) {
    for (std::size_t n = 1; n <= 520; ++n) {
        SCOPED_TRACE(n);
        const std::size_t size = BlockCache::rounded(n);
        void* const first = block_alloc(n);
        EXPECT_GE(static_cast<std::size_t>(Mem_DefaultHeap(0)->GetSize(first)), size);
        block_free(first, n);
        void* const again = block_alloc(size);
        if (BlockCache::keeps(n)) {
            EXPECT_EQ(again, first);
        }
        block_free(again, size);
    }
}

TEST(Blocks, KeepTheirBytesWhileTheyGrow) {
    std::string expected(1, 'a');
    auto* block = static_cast<char*>(block_alloc(1));
    block[0] = 'a';
    while (expected.size() < 100'000) {
        const std::size_t n = expected.size();
        const std::size_t grown = n < 1000 ? n + 1 : n + n / 7;
        block = static_cast<char*>(block_grow(block, n, grown));
        ASSERT_EQ(std::memcmp(block, expected.data(), n), 0) << n << " to " << grown;
        while (expected.size() < grown)
            expected += static_cast<char>('a' + expected.size() % 26);
        std::memcpy(block + n, expected.data() + n, grown - n);
    }
    block_free(block, expected.size());
}

TEST(Blocks, StayAsTheyAreWhenTheyCannotGrow) {
    for (const std::size_t n : {20U, 512U, 513U, 70'000U}) {
        SCOPED_TRACE(n);
        auto* const block = static_cast<char*>(block_alloc(n));
        std::memset(block, 'x', n);
        EXPECT_THROW(block_grow(block, n, kRefused), CXMemException);
        EXPECT_EQ(std::string(block, n), std::string(n, 'x'));
        block_free(block, n);
    }
}

// Also at the end of a class, where the unit behind the area is the block's last.
template <class String, class Unit>
void cut_and_grow(Unit filler) {
    for (std::size_t n = 1; n < 600; ++n) {
        SCOPED_TRACE(n);
        String s(std::basic_string<Unit>(n, filler).c_str());
        const Unit two[] = {Unit('x'), Unit('y'), 0};
        s.Insert(0, two);
        EXPECT_EQ(s.GetAllocSize(), static_cast<int>((n + 3) * sizeof(Unit)));
        s.Replace(0, 2, two + 1);
        const std::basic_string<Unit> expected = Unit('y') + std::basic_string<Unit>(n, filler);
        EXPECT_EQ(s.GetData(), expected);
        EXPECT_EQ(s.GetAllocSize(), static_cast<int>((n + 2) * sizeof(Unit)));
        EXPECT_THROW(CXStringAccess::reserve(s, INT_MAX), CXMemException);
        EXPECT_EQ(s.GetData(), expected);
        s.Insert(1, s.GetData()); // reads itself
        EXPECT_EQ(s.GetData(), Unit('y') + expected + std::basic_string<Unit>(n, filler));
    }
}

TEST(Texts, AreExactWhereverTheirBlocksEnd) {
    cut_and_grow<CXString>('a');
    cut_and_grow<CXStringW>(L'a');
}

} // namespace
