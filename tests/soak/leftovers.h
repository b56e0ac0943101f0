// What a process holds, counted while nothing runs: compared with an earlier count it tells what was left.
#pragma once

#include <string>
#include <vector>

struct Leftovers {
    struct Count {
        const char* what;
        long long n;
        long long tolerated; // more than this above the earlier count is a fault
    };
    std::vector<Count> counts;

    // What is above an earlier count, in words: "nothing", or "12 handles, 3 files".
    std::string above(const Leftovers& earlier) const;
    bool within(const Leftovers& earlier) const;
};

// Files are counted below the folder, keys below that key of the current user.
Leftovers count_leftovers(const std::wstring& folder, const std::string& key);

// The heaps of the process that are damaged.
unsigned damaged_heaps();
