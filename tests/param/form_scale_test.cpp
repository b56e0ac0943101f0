// Large and deep trees in both forms: time and stack must not grow faster than the data.
#include "forms.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace forms;
using namespace std::string_literals;

// Four characters: no two of these names share a hash.
std::string name_of(int i) {
    constexpr std::string_view kCharacters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::string name(4, 'a');
    for (char& c : name) {
        c = kCharacters[static_cast<std::size_t>(i) % kCharacters.size()];
        i /= static_cast<int>(kCharacters.size());
    }
    return name;
}

std::string int_statements(int count) {
    std::string text = "[\\]|";
    for (int i = 0; i < count; ++i)
        text += name_of(i) + "=i" + std::to_string(i) + "|";
    return text;
}

// Seconds of the fastest of three runs.
template <class Action>
double seconds(Action action) {
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        const auto start = std::chrono::steady_clock::now();
        action();
        best =
            std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

// A thread's stack is 2 MiB here at most; one frame a level would pass it early.
TEST(FormScale, TakesHalfAMillionLevelsOfABinaryForm) {
    constexpr int kLevels = 500000;
    std::string bytes;
    for (int i = 0; i < kLevels; ++i)
        bytes += "n\0"s;
    bytes += std::string(2 * kLevels + 2, '\0');
    const Tree tree = tree_of_bytes(bytes);
    EXPECT_EQ(bytes_of(*tree), bytes);
    const Tree cut = tree_of_bytes(std::string_view(bytes).substr(0, 2 * kLevels));
    EXPECT_EQ(bytes_of(*cut), bytes);
}

TEST(FormScale, TakesAHundredThousandSections) {
    std::string text = "[\\]|";
    for (int i = 0; i < 100000; ++i)
        text += "[\\" + name_of(i) + "]|";
    EXPECT_TRUE(text_of(*tree_from(text)) == text);
}

TEST(FormScale, TakesDeepSections) {
    std::string path;
    std::string text = "[\\]|";
    for (int i = 0; i < 3000; ++i) {
        path += "\\n";
        text += "[" + path + "]|";
    }
    EXPECT_TRUE(text_of(*tree_from(text)) == text);
}

// Sixteen times the data takes sixteen times as long, give or take a busy machine; with quadratic work, 256
// times. Both trees are too large for the processor's caches.
TEST(FormScale, TakesTimeInProportion) {
    const std::string small = int_statements(40000);
    const std::string large = int_statements(640000);
    const Tree small_tree = tree_from(small);
    const Tree large_tree = tree_from(large);
    const std::string small_bytes = bytes_of(*small_tree);
    const std::string large_bytes = bytes_of(*large_tree);
    EXPECT_TRUE(text_of(*tree_of_bytes(large_bytes)) == large);
    EXPECT_TRUE(bytes_of(*tree_from(text_of(*large_tree))) == large_bytes);
    constexpr double kMost = 80;
    EXPECT_LT(seconds([&] { tree_from(large); }), kMost * seconds([&] { tree_from(small); }));
    EXPECT_LT(seconds([&] { text_of(*large_tree); }), kMost * seconds([&] { text_of(*small_tree); }));
    EXPECT_LT(seconds([&] { tree_of_bytes(large_bytes); }),
              kMost * seconds([&] { tree_of_bytes(small_bytes); }));
    EXPECT_LT(seconds([&] { bytes_of(*large_tree); }), kMost * seconds([&] { bytes_of(*small_tree); }));
}

} // namespace
