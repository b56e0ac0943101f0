// What a reader under attack brings along.
#pragma once

#include "qzexception.h"
#include "support/random.h"

#include <algorithm>
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
extern const Target kText, kTreeStream, kObject, kVariant, kDictionary, kInclude, kDialog, kImports, kStorage,
    kMemoryFile, kUrl, kRegistry, kIniFile;

// Keeps the input that is running, shows it and ends the program.
[[noreturn]] void fail(const char* what);

inline void require(bool holds, const char* what) {
    if (!holds) fail(what);
}

// What the library refuses is its own business.
template <class Call>
void tried(Call call) {
    try {
        call();
    } catch (const CXException&) {
    }
}

// The texts between "~", and some that cannot be written there.
inline std::vector<std::string> parts(std::string_view text, std::vector<std::string> all = {}) {
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('~', at), text.size());
        all.emplace_back(text.substr(at, end - at));
        at = end + 1;
    }
    return all;
}

} // namespace fuzz
