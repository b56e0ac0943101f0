// What the rounds of an endurance run do. Each function does one piece of work from its beginning to its end,
// compares what the library answers with what it must answer, and leaves nothing behind.
#pragma once

#include "support/random.h"

#include <atomic>
#include <mutex>
#include <stdexcept>
#include <string>

class IParam;

// Shared by all threads.
struct Shared {
    std::mutex one_thread;                      // for what the library leaves to one thread at a time
    std::atomic<unsigned long long> checks = 0; // comparisons that were made
};

// One round of one thread.
struct Work {
    Work(Shared& all, std::uint64_t seed, std::wstring own_folder, std::string own_key)
        : shared(all),
          random(seed),
          refusal_random(seed + 1),
          folder(std::move(own_folder)),
          key(std::move(own_key)),
          refusals(random.one_in(3) ? 2 + static_cast<unsigned>(random.below(6)) : 0) {}

    Shared& shared;
    Random random;
    Random refusal_random;     // of its own, so that the work is the same whatever is refused
    const std::wstring folder; // empty before and after
    const std::string key;     // below HKEY_CURRENT_USER; exists, empty before and after
    const unsigned refusals;   // 0, or refuse one allocation in so many

    std::wstring path(const std::wstring& name) const { return folder + L"\\" + name; }
    void require(bool holds, const std::string& what) {
        ++shared.checks;
        if (!holds) throw std::runtime_error(what);
    }
};

void work_memory_tree(Work& work);
void work_forms(Work& work); // a tree in its text and stream forms, and in a file
void work_ini(Work& work);
void work_registry(Work& work);
void work_storage_tree(Work& work);
void work_files(Work& work);  // written in place and read back
void work_output(Work& work); // files replaced safely
void work_locks(Work& work);  // the registry of locked paths
void work_texts(Work& work);  // strings, translations

// For the main thread between rounds: the dictionary and the hooks.
void load_dictionary(Shared& shared, const std::wstring& folder);
void hook_and_unhook(Shared& shared);
