// Names for entries, and a fixed order to visit them in.
#pragma once

#include <algorithm>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

namespace bench {

/// What `make` makes of its number and eight random letters, so many times. The hashes of all differ: the
/// library's maps match by hash alone, and among 200,000 texts of any make some would collide and overwrite
/// each other. Applications have fewer, or check as this does.
template <class Make>
std::vector<std::string> texts_of_different_hashes(unsigned count, Make make) {
    std::vector<std::string> texts;
    std::unordered_set<unsigned> hashes;
    std::minstd_rand random(1);
    texts.reserve(count);
    while (texts.size() < count) {
        std::string letters;
        unsigned hash = 0;
        for (int letter = 0; letter < 8; ++letter)
            letters += static_cast<char>('a' + random() % 26);
        std::string text = make(texts.size(), letters);
        for (const char c : text)
            hash = hash * 257 + static_cast<unsigned char>(c);
        if (hashes.insert(hash).second) texts.push_back(std::move(text));
    }
    return texts;
}

inline std::vector<std::string> entry_names(unsigned count) {
    return texts_of_different_hashes(
        count, [](std::size_t, const std::string& letters) { return "entry." + letters; });
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
