// Failures: what ends a piece of work, told in words.
#pragma once

#include <string>

namespace tool {

struct Failure {
    std::string text; // UTF-8, without the program's name
};

[[noreturn]] void fail(std::string text);

} // namespace tool
