// What a reader under attack brings along.
#pragma once

#include "support/random.h"

#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

struct Target {
    const char* name;
    // Reads one input, and calls fail() when what comes out cannot be. Exceptions of the library are its
    // own business; any that leaves is a fault. What one input leaves behind must not change the next.
    void (*run)(const std::string& input);
    std::vector<std::string> (*seeds)();
    std::vector<std::string> (*pieces)(); // that matter to the form, for inserting
    std::size_t longest = 4096;           // of an input
    // Changes an input in a way of the form's own; false leaves it to the engine. May be null.
    bool (*mutate)(std::string& input, Random& random) = nullptr;
    unsigned long long most_memory = 200 << 20; // that one input may ask for, all requests together
};

// Each file of targets/ defines one.
extern const Target kText, kTreeStream, kObject, kVariant, kDictionary, kCompanion, kInclude, kDialog,
    kImports, kStorage, kMemoryFile, kUrl;

// Keeps the input that is running, shows it and ends the program.
[[noreturn]] void fail(const char* what);

inline void require(bool holds, const char* what) {
    if (!holds) fail(what);
}

} // namespace fuzz
