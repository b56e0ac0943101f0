// Numbers that look like chance and are the same on every machine: a seed gives one sequence.
#pragma once

#include <cstddef>
#include <cstdint>

class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() {
        std::uint64_t z = state_ += 0x9E3779B97F4A7C15U;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31);
    }
    std::size_t below(std::size_t n) { return static_cast<std::size_t>(next() % n); } // n > 0
    bool one_in(std::size_t n) { return below(n) == 0; }

private:
    std::uint64_t state_;
};
