// Runs the rows. scripts/bench reads what this prints.
//
//   qzrbench [--benchmark_...]             time the rows
//   qzrbench --memory                      name the rows that measure memory
//   qzrbench --memory INDEX library|counterpart   print the bytes that one side of such a row takes
//
// The names are "group|work|beside|target|side".
#include "bench/ledger.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>
#include <windows.h>

namespace {

template <class R>
std::string label(const R& row) {
    char target[32];
    std::snprintf(target, sizeof target, "%g", row.target);
    return row.group + '|' + row.work + '|' + row.beside + '|' + target;
}

struct Rows final : bench::Ledger {
    void row(bench::Row row) override { timed.push_back(std::move(row)); }
    void row(bench::MemoryRow row) override { memory.push_back(std::move(row)); }

    std::vector<bench::Row> timed;
    std::vector<bench::MemoryRow> memory;
};

// Memory that this process alone has committed, heaps and all. (Wine does not keep the process's own
// counters.)
unsigned long long private_bytes() {
    unsigned long long sum = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (const char* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0; at += region.RegionSize) {
        at = static_cast<const char*>(region.BaseAddress);
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) sum += region.RegionSize;
    }
    return sum;
}

int measure_memory(const Rows& rows, int argc, char** argv) {
    if (argc < 4) {
        for (const bench::MemoryRow& row : rows.memory)
            std::printf("%s|%u\n", label(row).c_str(), row.entries);
        return 0;
    }
    const auto index = static_cast<std::size_t>(std::atoi(argv[2]));
    if (index >= rows.memory.size()) return 2;
    const bench::MemoryRow& row = rows.memory[index];
    row.prepare();
    const unsigned long long before = private_bytes();
    const std::function<void()> keep =
        std::strcmp(argv[3], "library") == 0 ? row.library() : row.counterpart();
    std::printf("%llu\n", private_bytes() - before);
    keep();
    return 0;
}

// Everything is checked before anything is timed: a wrong result has no speed.
bool check(const Rows& rows) {
    bool right = true;
    for (const bench::Row& row : rows.timed) {
        if (row.check()) continue;
        std::fprintf(stderr, "wrong result: %s: %s\n", row.group.c_str(), row.work.c_str());
        right = false;
    }
    return right;
}

} // namespace

int main(int argc, char** argv) {
    Rows rows;
    bench::string_rows(rows);
    bench::variant_rows(rows);
    bench::heap_rows(rows);
    bench::stream_rows(rows);
    bench::tree_rows(rows);
    bench::tree_form_rows(rows);
    bench::object_rows(rows);
    bench::dictionary_rows(rows);

    if (argc > 1 && std::strcmp(argv[1], "--memory") == 0) return measure_memory(rows, argc, argv);
    if (!check(rows)) return 1;
    for (const bench::Row& row : rows.timed) {
        benchmark::RegisterBenchmark((label(row) + "|library").c_str(), row.library)->UseRealTime();
        benchmark::RegisterBenchmark((label(row) + "|counterpart").c_str(), row.counterpart)->UseRealTime();
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
