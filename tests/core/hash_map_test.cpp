// The map below names and services, with hashes that no caller can make equal. The header is compiled into
// this test.
#include "core/hash_map.h"
#include "qzheap.h"

#include <gtest/gtest.h>

#include <deque>

namespace qzr {
void* mem_alloc(std::size_t n) { return Mem_DefaultHeap()->Alloc(n); }
void mem_free(void* p) noexcept {
    if (p != nullptr) Mem_DefaultHeap()->Free(p);
}
} // namespace qzr

namespace {

struct Node : qzr::HashLink {};
using Map = qzr::HashMap<Node, 17>;

TEST(HashMap, FindsTheNewestOfEqualHashes) {
    for (const unsigned others : {0u, 254u, 300u, 2000u}) {
        for (const unsigned hash : {0u, 1u, 77u}) {
            SCOPED_TRACE(testing::Message() << others << " others, hash " << hash);
            Map map;
            std::deque<Node> filler(others);
            for (unsigned i = 0; i < others; ++i)
                map.insert(&filler[i], 1000 + i * 17);
            Node nodes[4];
            for (Node& node : nodes)
                map.insert(&node, hash);
            const int removed[] = {1, 3, 2, 0}, newest[] = {3, 3, 2, 0};
            for (int i = 0; i < 4; ++i) {
                EXPECT_EQ(map.find(hash), &nodes[newest[i]]);
                map.remove(&nodes[removed[i]]);
            }
            EXPECT_EQ(map.find(hash), nullptr);
            EXPECT_EQ(map.size(), others);
            map.take_all([](Node*) {});
        }
    }
}

} // namespace
