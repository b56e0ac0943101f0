// What the library executed and compared while an input ran. In builds without instrumentation nothing is
// ever recorded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fuzz {

// Two different numbers that the library compared, as bytes of an input may hold them.
struct Comparison {
    std::uint64_t a, b;
    unsigned size; // in bytes: 1, 2, 4 or 8

    friend bool operator==(const Comparison&, const Comparison&) = default;
};

namespace coverage {

bool available(); // whether the library was ever seen to report

void begin(); // forgets the last input
void end();

// Of the last input: how many edges, and how many counts of executions in orders of magnitude, no input
// before it had. Takes them up.
struct News {
    unsigned edges = 0;
    unsigned counts = 0;
};
News take_news();
void forget_all();    // that take_news took up
unsigned all_edges(); // that it took up

std::vector<Comparison> comparisons(); // of the last input, each once

} // namespace coverage
} // namespace fuzz
