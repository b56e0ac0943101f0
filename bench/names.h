// Names for entries, and a fixed order to visit them in.
#pragma once

#include <algorithm>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

namespace bench {

/// Different names, whose hashes differ as well: the library's maps match by hash alone, and among 200,000
/// names of any make some would collide and overwrite each other. Applications have fewer names, or check as
/// this does.
inline std::vector<std::string> entry_names(unsigned count) {
    std::vector<std::string> names;
    std::unordered_set<unsigned> hashes;
    std::minstd_rand random(1);
    names.reserve(count);
    while (names.size() < count) {
        std::string name = "entry.";
        unsigned hash = 0;
        for (int letter = 0; letter < 8; ++letter)
            name += static_cast<char>('a' + random() % 26);
        for (const char c : name)
            hash = hash * 257 + static_cast<unsigned char>(c);
        if (hashes.insert(hash).second) names.push_back(name);
    }
    return names;
}

/// The numbers below count in an order that is random and always the same.
inline std::vector<unsigned> shuffled(unsigned count) {
    std::vector<unsigned> order(count);
    for (unsigned i = 0; i < count; ++i)
        order[i] = i;
    std::shuffle(order.begin(), order.end(), std::mt19937(count));
    return order;
}

} // namespace bench
