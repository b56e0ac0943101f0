// Endurance: several threads do random pieces of work for as long as they are told, with memory refused by
// chance. At quiet points, and at the end, nothing may be left: no memory, handle, view, file, key or lock.
//
//     soak [--seconds N] [--seed N] [--threads N] [--kind WORK] [--only THREAD.ROUND]
//
// A round of a thread depends on the seed and its number alone; --only repeats one. Ends with 0 when all was
// well, 1 after a fault, 3 after a crash or a hang.
#include "qzexception.h"
#include "qzstring.h"
#include "soak/leftovers.h"
#include "soak/refusal.h"
#include "soak/work.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include <windows.h>

namespace {

struct Kind {
    const char* name;
    void (*run)(Work&);
    unsigned share; // of the rounds
};
constexpr Kind kKinds[] = {
    {"memory tree", work_memory_tree, 4},
    {"forms", work_forms, 4},
    {"INI", work_ini, 1},
    {"registry", work_registry, 2},
    {"storage tree", work_storage_tree, 2},
    {"files", work_files, 4},
    {"output", work_output, 4},
    {"locks", work_locks, 1},
    {"texts", work_texts, 4},
};

struct Options {
    unsigned seconds = 15;
    unsigned long long seed = static_cast<unsigned long long>(std::time(nullptr));
    unsigned threads = 4;
    int only_thread = -1;
    unsigned only_round = 0;
    std::string kind; // of work; empty: all
};

// What a thread is at, for messages.
struct Post {
    std::atomic<unsigned> round = 0;
    std::atomic<const char*> kind = "nothing";
    std::atomic<unsigned long long> since = 0; // tick count
    std::atomic<bool> failed = false;
};

Options options;
Shared shared;
std::vector<Post> posts;
std::wstring folder;
std::string key;

unsigned long long seconds_since(std::chrono::steady_clock::time_point start) {
    return static_cast<unsigned long long>(
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start).count());
}

void tell_posts(const char* what) {
    std::printf("%s; seed %llu\n", what, options.seed);
    for (std::size_t i = 0; i < posts.size(); ++i)
        std::printf("  thread %u, round %u: %s\n", static_cast<unsigned>(i), posts[i].round.load(),
                    posts[i].kind.load());
    std::fflush(stdout);
}

LONG WINAPI tell_crash(EXCEPTION_POINTERS* crash) {
    std::printf("exception %08lX at %p\n", crash->ExceptionRecord->ExceptionCode,
                crash->ExceptionRecord->ExceptionAddress);
    tell_posts("crashed");
    TerminateProcess(GetCurrentProcess(), 3);
    return EXCEPTION_EXECUTE_HANDLER;
}

void tell_terminate() {
    tell_posts("ended by std::terminate");
    TerminateProcess(GetCurrentProcess(), 3);
}

// A round that does not end.
void watch() {
    constexpr unsigned long long kPatience = 180'000;
    while (true) {
        Sleep(5000);
        for (const Post& post : posts) {
            const unsigned long long since = post.since;
            if (since == 0 || GetTickCount64() - since < kPatience) continue;
            tell_posts("hangs");
            TerminateProcess(GetCurrentProcess(), 3);
        }
    }
}

const Kind& kind_for(Random& random) {
    for (const Kind& kind : kKinds)
        if (kind.name == options.kind) return kind;
    unsigned shares = 0;
    for (const Kind& kind : kKinds)
        shares += kind.share;
    auto at = static_cast<unsigned>(random.below(shares));
    for (const Kind& kind : kKinds) {
        if (at < kind.share) return kind;
        at -= kind.share;
    }
    return kKinds[0];
}

std::string what_was_thrown() {
    try {
        throw;
    } catch (const CXFileException& e) {
        std::string text =
            "code " + std::to_string(e.m_nCode) + ", operation " + std::to_string(e.m_nOperation) + ", ";
        for (const wchar_t* p = e.m_pszFileName; *p != 0; ++p)
            text += static_cast<char>(*p);
        return text;
    } catch (const CXException& e) {
        return "code " + std::to_string(e.m_nCode);
    } catch (const CXString& text) {
        return text.GetData();
    } catch (const std::exception& e) {
        return e.what();
    } catch (...) {
        return "something else";
    }
}

void run_round(unsigned thread, unsigned round, const Kind* chosen = nullptr) {
    Post& post = posts[thread];
    std::uint64_t seed = Random(options.seed + (static_cast<std::uint64_t>(thread) << 40) + round).next();
    Random choice(seed);
    const Kind& kind = chosen != nullptr ? *chosen : kind_for(choice);
    post.round = round;
    post.kind = kind.name;
    post.since = GetTickCount64();
    const std::wstring own_folder = folder + L"\\" + std::to_wstring(thread);
    const std::string own_key = key + "\\" + std::to_string(thread);
    try {
        Work work(shared, seed, own_folder, own_key);
        kind.run(work);
        work.require(std::filesystem::is_empty(own_folder), "files were left");
    } catch (...) {
        post.failed = true;
        const std::string what = what_was_thrown();
        std::printf("FAULT in %s: %s; repeat with --seed %llu --only %u.%u\n", kind.name, what.c_str(),
                    options.seed, thread, round);
        std::fflush(stdout);
    }
    post.since = 0;
}

void run_thread(unsigned thread, std::chrono::steady_clock::time_point until) {
    do
        run_round(thread, posts[thread].round + 1);
    while (!posts[thread].failed && std::chrono::steady_clock::now() < until);
}

// What the platform sets up once, at the first use of anything.
void warm_up() {
    for (const Kind& kind : kKinds)
        run_round(0, 0, &kind);
}

// All threads work until the time is up.
void run_lap(unsigned seconds) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < options.threads; ++i)
        threads.emplace_back(run_thread, i, until);
    for (std::thread& thread : threads)
        thread.join();
}

bool failed() {
    for (const Post& post : posts)
        if (post.failed) return true;
    if (const unsigned damaged = damaged_heaps(); damaged != 0) {
        std::printf("FAULT: %u damaged heaps\n", damaged);
        return true;
    }
    return false;
}

unsigned long long rounds() {
    unsigned long long all = 0;
    for (const Post& post : posts)
        all += post.round;
    return all;
}

void tell_progress(const char* head, unsigned long long seconds, const std::string& left) {
    const RefusalCounts refusals = refusal_counts();
    std::printf("%s%llu:%02llu:%02llu, %llu rounds, %llu checks, memory refused %llu times, %llu requests "
                "tried again; "
                "left over: %s\n",
                head, seconds / 3600, seconds / 60 % 60, seconds % 60, rounds(), shared.checks.load(),
                refusals.refused, refusals.tried_again, left.c_str());
    std::fflush(stdout);
}

// Threads that ended let go of their last handles a moment later.
Leftovers count_patiently(const Leftovers& first) {
    constexpr int kTries = 5;
    Leftovers now = count_leftovers(folder, key);
    for (int i = 0; i < kTries && !now.within(first); ++i) {
        Sleep(500);
        now = count_leftovers(folder, key);
    }
    return now;
}

int endure() {
    constexpr unsigned kLapsAtLeast = 4, kLongestLap = 30;
    const auto start = std::chrono::steady_clock::now();
    const unsigned lap = std::max(1u, std::min(options.seconds / kLapsAtLeast, kLongestLap));
    warm_up();
    run_lap(lap); // caches fill
    bool fault = failed();
    const Leftovers first = count_leftovers(folder, key);
    std::string left = "not yet compared";
    tell_progress("", seconds_since(start), left);
    while (!fault && seconds_since(start) < options.seconds) {
        load_dictionary(shared, folder);
        hook_and_unhook(shared);
        run_lap(lap);
        const Leftovers now = count_patiently(first);
        left = now.above(first);
        fault = failed() || !now.within(first);
        tell_progress("", seconds_since(start), left);
    }
    tell_progress(fault ? "FAULT. " : "Done. ", seconds_since(start), left);
    return fault ? 1 : 0;
}

void parse(int argc, char** argv) {
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        char* rest = nullptr;
        const unsigned long long number = std::strtoull(argv[i + 1], &rest, 10);
        if (option == "--seconds")
            options.seconds = static_cast<unsigned>(number);
        else if (option == "--seed")
            options.seed = number;
        else if (option == "--threads")
            options.threads = static_cast<unsigned>(number);
        else if (option == "--kind")
            options.kind = argv[i + 1];
        else if (option == "--only" && *rest == '.') {
            options.only_thread = static_cast<int>(number);
            options.only_round = static_cast<unsigned>(std::strtoul(rest + 1, nullptr, 10));
        } else {
            std::printf("soak [--seconds N] [--seed N] [--threads N] [--kind WORK] [--only THREAD.ROUND]\n");
            std::exit(2);
        }
    }
    options.threads = std::max({1u, options.threads, static_cast<unsigned>(options.only_thread + 1)});
}

// The process's temporary files go into its own folder too, so that none escapes the count.
void make_places() {
    folder =
        (std::filesystem::temp_directory_path() / ("soak" + std::to_string(GetCurrentProcessId()))).wstring();
    key = "Software\\qzrcore soak " + std::to_string(GetCurrentProcessId());
    for (unsigned i = 0; i < options.threads; ++i) {
        std::filesystem::create_directories(folder + L"\\" + std::to_wstring(i));
        HKEY made = nullptr;
        RegCreateKeyExA(HKEY_CURRENT_USER, (key + "\\" + std::to_string(i)).c_str(), 0, nullptr, 0,
                        KEY_ALL_ACCESS, nullptr, &made, nullptr);
        RegCloseKey(made);
    }
    SetEnvironmentVariableW(L"TMP", folder.c_str());
    SetEnvironmentVariableW(L"TEMP", folder.c_str());
}

void remove_places() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    RegDeleteTreeA(HKEY_CURRENT_USER, key.c_str());
}

} // namespace

int main(int argc, char** argv) {
    parse(argc, argv);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(tell_crash);
    std::set_terminate(tell_terminate);
    posts = std::vector<Post>(options.threads);
    make_places();
    install_refusals();
    std::thread(watch).detach();
    std::printf("seed %llu, %u threads, %u seconds\n", options.seed, options.threads, options.seconds);
    std::fflush(stdout);
    int result = 0;
    try {
        load_dictionary(shared, folder);
        hook_and_unhook(shared);
        if (options.only_thread >= 0) {
            run_round(static_cast<unsigned>(options.only_thread), options.only_round);
            result = failed() ? 1 : 0;
        } else {
            result = endure();
        }
    } catch (...) {
        std::printf("FAULT: %s\n", what_was_thrown().c_str());
        result = 1;
    }
    remove_places();
    return result;
}
