// The process's list of locked paths. Each has a file handle that keeps other writers out.
#pragma once

#include "core/allocator.h"
#include "core/native_lock.h"
#include "core/win_handle.h"
#include "fio/path_kind.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace qzr {

// Paths match as they are written, in the system's upper case. A null path, and one that does not fit into
// kPathUnits, takes part in nothing.
//
// Whoever opens a file for the library lets go of the path's handle before and takes it back after closing;
// for a path without locks, the usual case, both cost a look-up.
class LockRegistry {
public:
    // Takes one lock. A new record keeps the file open, if there is one; a shared lock on a missing file is
    // recorded all the same. Failure to open it leaves no trace.
    void lock(const wchar_t* path, bool exclusive) { lock(path, exclusive, Target::kUnknown); }

    // The same for a file that the caller has just looked up: that costs more than the lock.
    void lock_existing(const wchar_t* path, bool exclusive) { lock(path, exclusive, Target::kExists); }

    // Gives one lock back; the last one's end closes the file. Counts never go below 0.
    void unlock(const wchar_t* path, bool exclusive);

    unsigned count(const wchar_t* path, bool exclusive);

    // Closes the path's file for a while; the counts stay. Throws CXFileException QZERR_SEEK (5) under an
    // exclusive lock, and nothing is closed then.
    void let_go(const wchar_t* path);

    // Opens it again; without success the record stays without a file.
    void take_back(const wchar_t* path);

    // Whether memory paths take part. @return what it was before
    int set_enabled(int on);

private:
    using Text = std::basic_string<wchar_t, std::char_traits<wchar_t>, HeapAllocator<wchar_t>>;

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::wstring_view text) const noexcept {
            return std::hash<std::wstring_view>()(text);
        }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(std::wstring_view a, std::wstring_view b) const noexcept { return a == b; }
    };

    struct Record {
        FileHandle file;
        unsigned exclusive = 0;
        unsigned shared = 0;

        unsigned& count(bool of_exclusive) { return of_exclusive ? exclusive : shared; }
    };
    using Records =
        std::unordered_map<Text, Record, Hash, Equal, HeapAllocator<std::pair<const Text, Record>>>;

    enum class Target { kUnknown, kExists };
    void lock(const wchar_t* path, bool exclusive, Target target);

    // These want the lock held.
    Records::iterator find(const wchar_t* path);
    bool count_one_more(std::wstring_view folded, bool exclusive); // false without a record
    Record* without_file(const wchar_t* path); // a record that waits for its file, or null

    NativeLock lock_; // nobody is asked to share the registry, but opening files on two threads uses it
    Records records_; // by folded path
    int enabled_ = 0;
};

} // namespace qzr
