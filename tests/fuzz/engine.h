// The loop that runs a target.
#pragma once

#include "fuzz/target.h"

namespace fuzz {

struct Run {
    unsigned seconds = 10;
    unsigned long long seed = 1;
    std::string corpus = "tests/fuzz/corpus"; // /<target>: inputs that lead far
    std::string found = "tests/fuzz/found";   // /<target>: inputs that once did harm
    std::string work = "build/fuzz-work";     // /<target>: what guided runs keep; /<target>-found: bad inputs
    std::string distil;                       // when given, the fewest inputs that reach every edge go here
};

// Runs the kept inputs, then what grows from them until the time is up. A guided run keeps, and gives to the
// next run, what reached something new; kept inputs that reach nothing of their own go.
int run_target(const Target& target, const Run& run);

} // namespace fuzz
