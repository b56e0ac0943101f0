#include "soak/leftovers.h"

#include "qzstring.h"
#include "support/live_blocks.h"
#include "support/open_handles.h"

#include <filesystem>
#include <iterator>

#include <malloc.h>
#include <windows.h>

namespace {

// Freed blocks wait for their next use up to a limit; at that limit their number is always the same.
void fill_recycling() {
    constexpr std::size_t kLargest = 640, kStep = 16, kBytes = 300 * 1024;
    for (std::size_t size = 1; size < kLargest; size += kStep) {
        const std::string text(size, 'x');
        std::vector<CXString> texts;
        for (std::size_t bytes = 0; bytes < kBytes; bytes += size + kStep)
            texts.emplace_back(text.c_str());
    }
}

long long blocks_of(HANDLE heap) {
    long long count = 0;
    PROCESS_HEAP_ENTRY entry = {};
    HeapLock(heap);
    while (HeapWalk(heap, &entry))
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) ++count;
    HeapUnlock(heap);
    return count;
}

long long mapped_views() {
    long long views = 0;
    const void* last = nullptr;
    MEMORY_BASIC_INFORMATION info;
    for (const char* at = nullptr; VirtualQuery(at, &info, sizeof info) != 0;
         at = static_cast<const char*>(info.BaseAddress) + info.RegionSize) {
        if (info.State != MEM_FREE && info.Type == MEM_MAPPED && info.AllocationBase != last) ++views;
        last = info.AllocationBase;
    }
    return views;
}

long long heaps() { return GetProcessHeaps(0, nullptr); }

long long files_below(const std::wstring& folder) {
    const std::filesystem::recursive_directory_iterator all(folder);
    return std::distance(begin(all), end(all));
}

// Keys and values.
long long entries_below(HKEY parent, const std::string& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return 0;
    DWORD keys = 0, values = 0;
    RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr, nullptr,
                     nullptr, nullptr);
    long long count = keys + values;
    for (DWORD i = 0; i < keys; ++i) {
        char name[256];
        DWORD size = sizeof name;
        if (RegEnumKeyExA(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS)
            count += entries_below(key, name);
    }
    RegCloseKey(key);
    return count;
}

} // namespace

// The library's own are exact. The runtime and the platform fill caches of their own, and open a handle when
// something is needed first; a leak in each round passes any tolerance soon.
Leftovers count_leftovers(const std::wstring& folder, const std::string& key) {
    constexpr long long kCaches = 200, kFewHandles = 4;
    fill_recycling();
    Leftovers now;
    now.counts = {
        {"blocks of the library", static_cast<long long>(live_blocks()), 0},
        {"blocks of the runtime", blocks_of(reinterpret_cast<HANDLE>(_get_heap_handle())), kCaches},
        {"blocks of the platform", blocks_of(GetProcessHeap()), kCaches},
        {"heaps", heaps(), 0},
        {"handles", open_handles(0x8000), kFewHandles},
        {"mapped views", mapped_views(), 0},
        {"files", files_below(folder), 0},
        {"registry entries", entries_below(HKEY_CURRENT_USER, key), 0},
    };
    return now;
}

std::string Leftovers::above(const Leftovers& earlier) const {
    std::string text;
    for (std::size_t i = 0; i < counts.size(); ++i)
        if (const long long more = counts[i].n - earlier.counts[i].n; more > 0)
            text += (text.empty() ? "" : ", ") + std::to_string(more) + " " + counts[i].what +
                    (more <= counts[i].tolerated ? " (tolerated)" : "");
    return text.empty() ? "nothing" : text;
}

bool Leftovers::within(const Leftovers& earlier) const {
    for (std::size_t i = 0; i < counts.size(); ++i)
        if (counts[i].n - earlier.counts[i].n > counts[i].tolerated) return false;
    return true;
}

unsigned damaged_heaps() {
    std::vector<HANDLE> all(GetProcessHeaps(0, nullptr) + 8);
    all.resize(GetProcessHeaps(static_cast<DWORD>(all.size()), all.data()));
    unsigned damaged = 0;
    for (const HANDLE heap : all)
        damaged += HeapValidate(heap, 0, nullptr) ? 0 : 1;
    return damaged;
}
