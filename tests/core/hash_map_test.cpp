// The map below names and services, at sizes that callers seldom reach. The header is compiled into this
// test.
#include "core/hash_map.h"

#include "core/name_hash.h"
#include "core/name_hash_block.h"
#include "qzheap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace qzr {
void* mem_alloc(std::size_t n) { return Mem_DefaultHeap()->Alloc(n); }
void mem_free(void* p) noexcept {
    if (p != nullptr) Mem_DefaultHeap()->Free(p);
}
} // namespace qzr

namespace {

struct Node : qzr::HashLink {
    int id = 0;
};
using Map = qzr::HashMap<Node, 17>;

std::vector<int> ids_in(const Map& map) {
    std::vector<int> ids;
    for (const Node* node = map.first(); node != nullptr; node = map.next(node))
        ids.push_back(node->id);
    return ids;
}

void empty(Map& map) {
    map.take_all([](Node*) {});
}

// Bucket by bucket and newest first within one, as by plain chains.
std::vector<int> expected_order(const std::deque<Node>& inserted, std::size_t count) {
    std::vector<int> ids;
    for (unsigned bucket = 0; bucket < 17; ++bucket)
        for (std::size_t i = count; i-- > 0;)
            if (inserted[i].hash % 17 == bucket) ids.push_back(inserted[i].id);
    return ids;
}

TEST(NameHash, TakesBytesAsSigned) {
    struct Row {
        const char* name;
        unsigned hash, folded;
    };
    for (const Row& row :
         {Row{"", 0, 0}, Row{"a", 97, 97}, Row{"A", 65, 97}, Row{"ab", 25027, 25027}, Row{"AB", 16771, 25027},
          Row{"Z[", 23221, 31445}, Row{"\x80", 0xFFFFFF80, 0xFFFFFF80}, Row{"a\xFF", 24928, 24928},
          Row{"abcde", 0xE9D2D5EF, 0xE9D2D5EF}}) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(qzr::hash_name(row.name), row.hash);
        EXPECT_EQ(qzr::hash_name_folded(row.name), row.folded);
    }
}

TEST(NameHash, IsTheSameSixteenAtATime) {
    std::minstd_rand random(7);
    for (unsigned size = 0; size <= 16; ++size) {
        std::string before = "a\xFF", block(16, '\0');
        for (char& c : block)
            c = static_cast<char>(random());
        EXPECT_EQ(qzr::hash_block(qzr::hash_name(before), qzr::load_block(block.data()), size),
                  qzr::hash_name(before + block.substr(0, size)))
            << size;
    }
}

// The order of a walk is visible to callers, so it must not change when the index takes over at 256 entries.
TEST(HashMap, WalksInTheOrderOfItsChainsAtEverySize) {
    Map map;
    EXPECT_EQ(map.first(), nullptr);
    EXPECT_EQ(map.find(0), nullptr);
    std::deque<Node> nodes(600);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        nodes[i].id = static_cast<int>(i);
        map.insert(&nodes[i], qzr::hash_name("name" + std::to_string(i)));
        if (i < 3 || i % 97 == 0 || (i > 250 && i < 260)) {
            ASSERT_EQ(ids_in(map), expected_order(nodes, i + 1)) << i;
        }
    }
    std::vector<int> taken;
    const std::vector<int> order = ids_in(map);
    map.take_all([&](Node* node) {
        EXPECT_EQ(map.size(), 0u) << "emptied before the first node is handed out";
        taken.push_back(node->id);
    });
    EXPECT_EQ(taken, order);
    EXPECT_EQ(map.first(), nullptr);
    map.insert(&nodes[5], 5);
    EXPECT_EQ(map.find(5), &nodes[5]);
    empty(map);
}

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
            empty(map);
        }
    }
}

TEST(HashMap, AgreesWithAStandardMapOverManyRandomOperations) {
    std::mt19937 random(20240601);
    for (const unsigned spread : {300u, 20'000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(spread);
        Map map;
        std::unordered_map<unsigned, Node> model;
        for (int i = 0; i < 70'000; ++i) {
            // Neighbours, as the hashes of numbered names are; hash 0 among them.
            const unsigned hash = std::uniform_int_distribution<unsigned>(0, spread)(random);
            Node* const found = map.find(hash);
            const auto known = model.find(hash);
            ASSERT_EQ(found, known != model.end() ? &known->second : nullptr);
            // Grow at first, then shrink.
            if (known == model.end() && (i < 40'000 || i % 4 == 0)) {
                map.insert(&model[hash], hash);
            } else if (known != model.end() && (i >= 40'000 || i % 3 == 0)) {
                map.remove(found);
                model.erase(known);
            }
            ASSERT_EQ(map.size(), model.size());
        }
        std::size_t walked = 0;
        for (const Node* node = map.first(); node != nullptr; node = map.next(node), ++walked)
            ASSERT_EQ(model.count(node->hash), 1u);
        EXPECT_EQ(walked, model.size());
        while (!model.empty()) {
            map.remove(&model.begin()->second);
            model.erase(model.begin());
        }
        EXPECT_EQ(map.first(), nullptr);
    }
}

} // namespace
