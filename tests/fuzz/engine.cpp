#include "fuzz/engine.h"

#include "fuzz/coverage.h"
#include "fuzz/guard.h"
#include "fuzz/mutation.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fuzz {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

struct File {
    fs::path path;
    std::string bytes;
};

void take(std::vector<File>& files, const fs::path& folder) {
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(folder, missing)) {
        std::ifstream in(entry.path(), std::ios::binary);
        files.push_back({entry.path(), {std::istreambuf_iterator<char>(in), {}}});
    }
}

std::string name_of(const std::string& bytes) {
    char name[20];
    std::snprintf(name, sizeof name, "%016zx", std::hash<std::string>()(bytes));
    return name;
}

class Engine {
public:
    Engine(const Target& target, const Run& run)
        : target_(target), run_(run), work_(fs::path(run.work) / target.name), mutator_(target, run.seed) {
        const std::string found =
            (fs::path(run.work) / (std::string(target.name) + "-found")).generic_string();
        fs::create_directories(work_);
        fs::create_directories(found);
        start_guard({target.name, found, kPatience, target.most_memory});
    }

    int run() {
        load();
        const auto until = Clock::now() + std::chrono::seconds(run_.seconds);
        const unsigned long long loaded = inputs_;
        const auto start = Clock::now();
        while (Clock::now() < until)
            try_next();
        check_heaps();
        if (!run_.distil.empty()) distil();
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        std::printf("%-12s %9llu inputs, %7.0f a second, %u edges, %zu kept (%llu new), slowest %u ms, most "
                    "memory %u KiB%s\n",
                    target_.name, inputs_, static_cast<double>(inputs_ - loaded) / std::max(seconds, 0.001),
                    coverage::all_edges(), mutator_.corpus().size(), added_, static_cast<unsigned>(slowest_),
                    static_cast<unsigned>(most_memory_ / 1024),
                    coverage::available() ? "" : "; without guidance");
        return 0;
    }

private:
    coverage::News execute(const std::string& input) {
        constexpr unsigned kHeapsEvery = 5000;
        const auto start = Clock::now();
        coverage::begin();
        input_begins(input);
        target_.run(input);
        coverage::end();
        if (++inputs_ % kHeapsEvery == 0) check_heaps();
        input_ends();
        most_memory_ = std::max(most_memory_, memory_asked_for());
        slowest_ =
            std::max(slowest_, std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        return coverage::take_news();
    }

    // Small ones first, so that larger ones have to bring something of their own. What guided runs kept is
    // for guided runs.
    void load() {
        std::vector<File> files;
        for (std::string& seed : target_.seeds())
            files.push_back({{}, std::move(seed)});
        take(files, fs::path(run_.corpus) / target_.name);
        take(files, fs::path(run_.found) / target_.name);
        execute(files.front().bytes); // tells whether there is guidance
        coverage::forget_all();
        if (coverage::available()) take(files, work_);
        std::stable_sort(files.begin(), files.end(),
                         [](const File& a, const File& b) { return a.bytes.size() < b.bytes.size(); });
        for (const File& file : files) {
            const bool useful = execute(file.bytes).counts != 0;
            if (useful || !coverage::available()) {
                mutator_.keep({file.bytes, coverage::comparisons()});
            } else if (file.path.parent_path() == work_) {
                fs::remove(file.path);
            }
        }
    }

    void try_next() {
        const std::string input = mutator_.next();
        if (execute(input).counts == 0) return;
        mutator_.keep({input, coverage::comparisons()});
        ++added_;
        std::ofstream(work_ / name_of(input), std::ios::binary) << input;
    }

    void distil() {
        std::vector<Kept> all = mutator_.corpus();
        std::sort(all.begin(), all.end(),
                  [](const Kept& a, const Kept& b) { return a.bytes.size() < b.bytes.size(); });
        fs::create_directories(run_.distil);
        coverage::forget_all();
        for (const std::string& seed : target_.seeds()) // these are there anyway
            execute(seed);
        for (const Kept& kept : all)
            if (execute(kept.bytes).edges != 0)
                std::ofstream(fs::path(run_.distil) / name_of(kept.bytes), std::ios::binary) << kept.bytes;
    }

    const Target& target_;
    const Run& run_;
    const fs::path work_;
    Mutator mutator_;
    unsigned long long inputs_ = 0, added_ = 0, most_memory_ = 0;
    double slowest_ = 0; // milliseconds
};

} // namespace

int run_target(const Target& target, const Run& run) { return Engine(target, run).run(); }

} // namespace fuzz
