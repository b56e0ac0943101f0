// Runs the rows. scripts/bench reads what this prints.
//
//   qzrbench [--benchmark_...]             time the rows
//   qzrbench --memory                      name the rows that measure memory
//   qzrbench --memory INDEX library|counterpart   print the bytes that one side of such a row takes
//   qzrbench --dictionary PAIRS FILE       write a dictionary, for a row that must not have done so itself
//
// The names are "group|work|beside|target|side".
#include "bench/dictionary_files.h"
#include "bench/ledger.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <regex>
#include <string_view>
#include <vector>
#include <windows.h>

#include <psapi.h>

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

// Memory that this process alone has committed, heaps and all. (Of what the counters below tell, Wine keeps
// the working set alone.)
unsigned long long private_bytes() {
    unsigned long long sum = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (const char* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0; at += region.RegionSize) {
        at = static_cast<const char*>(region.BaseAddress);
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) sum += region.RegionSize;
    }
    return sum;
}

PROCESS_MEMORY_COUNTERS counters() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters;
}

// Bytes before the work, and bytes after it. The peak is that of all pages that were in memory.
unsigned long long bytes_before(bench::Measure measure) {
    return measure == bench::Measure::kept ? private_bytes() : counters().WorkingSetSize;
}
unsigned long long bytes_after(bench::Measure measure) {
    return measure == bench::Measure::kept ? private_bytes() : counters().PeakWorkingSetSize;
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
    const unsigned long long before = bytes_before(row.measure);
    const std::function<void()> keep =
        std::strcmp(argv[3], "library") == 0 ? row.library() : row.counterpart();
    std::printf("%llu\n", bytes_after(row.measure) - before);
    keep();
    return 0;
}

// Which rows are asked for.
std::regex filter(int argc, char** argv) {
    constexpr std::string_view kOption = "--benchmark_filter=";
    for (int i = 1; i < argc; ++i)
        if (std::string_view(argv[i]).starts_with(kOption)) return std::regex(argv[i] + kOption.size());
    return std::regex("");
}

// Everything is checked before anything is timed: a wrong result has no speed.
bool check(const Rows& rows, const std::regex& wanted) {
    bool right = true;
    for (const bench::Row& row : rows.timed) {
        if (!std::regex_search(label(row), wanted) || row.check()) continue;
        std::fprintf(stderr, "wrong result: %s: %s\n", row.group.c_str(), row.work.c_str());
        right = false;
    }
    return right;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 3 && std::strcmp(argv[1], "--dictionary") == 0) {
        bench::write_dictionary_file(static_cast<unsigned>(std::atoi(argv[2])), argv[3]);
        return 0;
    }
    Rows rows;
    bench::string_rows(rows);
    bench::variant_rows(rows);
    bench::heap_rows(rows);
    bench::lock_rows(rows);
    bench::stream_rows(rows);
    bench::tree_rows(rows);
    bench::tree_memory_rows(rows);
    bench::tree_form_rows(rows);
    bench::object_rows(rows);
    bench::dictionary_rows(rows);
    bench::hook_rows(rows);
    bench::file_rows(rows);
    bench::ini_rows(rows);
    bench::storage_rows(rows);

    if (argc > 1 && std::strcmp(argv[1], "--memory") == 0) return measure_memory(rows, argc, argv);
    if (!check(rows, filter(argc, argv))) return 1;
    for (const bench::Row& row : rows.timed) {
        benchmark::RegisterBenchmark((label(row) + "|library").c_str(), row.library)->UseRealTime();
        benchmark::RegisterBenchmark((label(row) + "|counterpart").c_str(), row.counterpart)->UseRealTime();
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
