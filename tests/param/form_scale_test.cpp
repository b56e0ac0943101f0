// Large and deep trees in both forms: the stack must not grow with the data.
#include "forms.h"

#include <gtest/gtest.h>

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

} // namespace
