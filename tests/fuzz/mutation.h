// Deterministic mutation for the programs of this folder: the same seed gives the same inputs on every
// machine.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <windows.h>

namespace fuzz {

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

private:
    std::uint64_t state_;
};

// Makes inputs from a corpus and from pieces that matter to the form under test.
class Mutator {
public:
    Mutator(std::vector<std::string> corpus, std::vector<std::string> pieces, std::uint64_t seed)
        : corpus_(std::move(corpus)), pieces_(std::move(pieces)), random_(seed) {}

    std::string next() {
        std::string input = corpus_[random_.below(corpus_.size())];
        for (std::size_t steps = 1 + random_.below(6); steps != 0; --steps)
            mutate(input);
        return input;
    }

    // Lets later inputs grow from this one.
    void keep(const std::string& input) {
        constexpr std::size_t kMostKept = 2000;
        if (input.size() > kMostBytes) return;
        if (corpus_.size() < kMostKept) {
            corpus_.push_back(input);
        } else {
            corpus_[random_.below(kMostKept)] = input;
        }
    }

private:
    static constexpr std::size_t kMostBytes = 4096;

    void mutate(std::string& input) {
        const std::size_t at = random_.below(input.size() + 1);
        const std::size_t rest = input.size() - at;
        switch (random_.below(7)) {
        case 0:
            if (rest != 0) input[at] = static_cast<char>(random_.next());
            break;
        case 1:
            if (rest != 0) input[at] = static_cast<char>(input[at] ^ (1 << random_.below(8)));
            break;
        case 2:
            input.erase(at, random_.below(rest + 1));
            break;
        case 3:
            input.insert(at, std::string(input, at, random_.below(rest + 1)));
            break;
        case 4: {
            const std::string& other = corpus_[random_.below(corpus_.size())];
            input.resize(at);
            input.append(other, random_.below(other.size() + 1));
            break;
        }
        default:
            input.insert(at, pieces_[random_.below(pieces_.size())]);
            break;
        }
        if (input.size() > kMostBytes) input.resize(kMostBytes);
    }

    std::vector<std::string> corpus_;
    std::vector<std::string> pieces_;
    Random random_;
};

// Ends the program, showing the input as C source.
[[noreturn]] inline void fail(const char* what, std::string_view input) {
    std::printf("%s, input of %u bytes:\n\"", what, static_cast<unsigned>(input.size()));
    for (const char c : input)
        std::printf("\\x%02X", static_cast<unsigned char>(c));
    std::printf("\"\n");
    std::exit(1);
}

inline void check_heaps(std::string_view last_input) {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    for (DWORD i = 0; i < count && i < 64; ++i)
        if (!HeapValidate(heaps[i], 0, nullptr)) fail("a damaged heap", last_input);
}

// Runs inputs until the time is up or there were enough, and says how many. `run` gets an input and answers
// whether later inputs are to grow from it. Argument 1 of the program, when given, is the number of inputs.
template <class Run>
int main_loop(int argc, char** argv, Mutator mutator, unsigned inputs, Run run) {
    constexpr unsigned kHeapsEvery = 1000;
    if (argc > 1) inputs = static_cast<unsigned>(std::atoi(argv[1]));
    const ULONGLONG start = GetTickCount64();
    ULONGLONG slowest = 0;
    for (unsigned i = 0; i < inputs; ++i) {
        const std::string input = mutator.next();
        const ULONGLONG before = GetTickCount64();
        if (run(input)) mutator.keep(input);
        const ULONGLONG taken = GetTickCount64() - before;
        if (taken > 5000) fail("more than five seconds", input);
        if (taken > slowest) slowest = taken;
        if (i % kHeapsEvery == 0) check_heaps(input);
    }
    check_heaps("");
    std::printf("%u inputs in %u ms, the slowest %u ms\n", inputs,
                static_cast<unsigned>(GetTickCount64() - start), static_cast<unsigned>(slowest));
    return 0;
}

} // namespace fuzz
