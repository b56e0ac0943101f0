// The compiler calls the functions below from each block and each comparison of the library. This file must
// not be instrumented itself.
#include "fuzz/coverage.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kCells = 1 << 16; // edges share one rarely: a reader has some thousands
constexpr std::size_t kMostComparisons = 512;

unsigned char counts[kCells]; // of the running input
unsigned char known[kCells];  // a bit for each order of magnitude seen
bool recording, ever;
std::uintptr_t previous;

fuzz::Comparison compared[kMostComparisons];
std::size_t comparisons_seen;

// Executions in orders of magnitude, as bits.
constexpr unsigned char bucket(unsigned char count) {
    if (count <= 3) return static_cast<unsigned char>(1 << (count - 1));
    if (count <= 7) return 8;
    if (count <= 15) return 16;
    if (count <= 31) return 32;
    return count <= 127 ? 64 : 128;
}

void note(std::uint64_t a, std::uint64_t b, unsigned size) {
    if (!recording || a == b) return;
    compared[comparisons_seen++ % kMostComparisons] = {a, b, size};
}

} // namespace

extern "C" {

void __sanitizer_cov_trace_pc() {
    ever = true;
    if (!recording) return;
    auto here = reinterpret_cast<std::uintptr_t>(__builtin_return_address(0));
    here = (here ^ here >> 15) * 0x9E3779B1u >> 7;
    unsigned char& count = counts[(here ^ previous) % kCells];
    if (count != 255) ++count;
    previous = here >> 1;
}

void __sanitizer_cov_trace_cmp1(std::uint8_t a, std::uint8_t b) { note(a, b, 1); }
void __sanitizer_cov_trace_cmp2(std::uint16_t a, std::uint16_t b) { note(a, b, 2); }
void __sanitizer_cov_trace_cmp4(std::uint32_t a, std::uint32_t b) { note(a, b, 4); }
void __sanitizer_cov_trace_cmp8(std::uint64_t a, std::uint64_t b) { note(a, b, 8); }
void __sanitizer_cov_trace_const_cmp1(std::uint8_t a, std::uint8_t b) { note(b, a, 1); }
void __sanitizer_cov_trace_const_cmp2(std::uint16_t a, std::uint16_t b) { note(b, a, 2); }
void __sanitizer_cov_trace_const_cmp4(std::uint32_t a, std::uint32_t b) { note(b, a, 4); }
void __sanitizer_cov_trace_const_cmp8(std::uint64_t a, std::uint64_t b) { note(b, a, 8); }
void __sanitizer_cov_trace_cmpf(float, float) {}
void __sanitizer_cov_trace_cmpd(double, double) {}

// cases: their number, the size of the value in bits, then the cases.
void __sanitizer_cov_trace_switch(std::uint64_t value, std::uint64_t* cases) {
    if (!recording) return;
    const auto size = static_cast<unsigned>(cases[1] / 8);
    for (std::uint64_t i = 0; i < std::min<std::uint64_t>(cases[0], 32); ++i)
        note(value, cases[2 + i], size);
}
}

namespace fuzz::coverage {

bool available() { return ever; }

void begin() {
    std::memset(counts, 0, sizeof counts);
    comparisons_seen = 0;
    previous = 0;
    recording = true;
}

void end() { recording = false; }

News take_news() {
    News news;
    for (std::size_t i = 0; i < kCells; i += 8) {
        std::uint64_t eight;
        std::memcpy(&eight, counts + i, sizeof eight);
        if (eight == 0) continue;
        for (std::size_t j = i; j < i + 8; ++j) {
            if (counts[j] == 0) continue;
            const unsigned char bit = bucket(counts[j]);
            if ((known[j] & bit) != 0) continue;
            if (known[j] == 0) ++news.edges;
            ++news.counts;
            known[j] |= bit;
        }
    }
    return news;
}

void forget_all() { std::memset(known, 0, sizeof known); }

unsigned all_edges() {
    return static_cast<unsigned>(
        std::count_if(known, known + kCells, [](unsigned char bits) { return bits != 0; }));
}

std::vector<Comparison> comparisons() {
    std::vector<Comparison> all;
    const std::size_t n = std::min(comparisons_seen, kMostComparisons);
    for (std::size_t i = 0; i < n; ++i)
        if (compared[i].size != 0 && std::find(all.begin(), all.end(), compared[i]) == all.end())
            all.push_back(compared[i]);
    return all;
}

} // namespace fuzz::coverage
