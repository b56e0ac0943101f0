// The rows of the ledger and how they are added.
#pragma once

#include <benchmark/benchmark.h>
#include <functional>
#include <string>

namespace bench {

using benchmark::DoNotOptimize;
using benchmark::State;

/// Times one side of a row: prepares, then works once for each turn of the state.
using Body = std::function<void(State&)>;

/// The same work done by the library and by what its user would take instead.
struct Row {
    std::string group;           ///< what a filter names: "strings", "trees", ...
    std::string work;            ///< what is done
    std::string beside;          ///< what the counterpart is
    double target;               ///< the library's cost over the counterpart's, at most
    std::function<bool()> check; ///< whether both sides give the right result; asked before anything is timed
    Body library;
    Body counterpart;
};

/// What is measured of memory: what stands when the work is done, or the most of it on the way there.
enum class Measure { kept, peak };

/// Bytes that an entry costs, measured in a process of its own for each side.
struct MemoryRow {
    std::string group;
    std::string work;
    std::string beside;
    double target;
    unsigned entries;
    std::function<void()> prepare; ///< makes what both sides need, before the measurement begins
    /// Build what is measured and return it; it is kept alive until the measurement is taken.
    std::function<std::function<void()>()> library;
    std::function<std::function<void()>()> counterpart;
    Measure measure = Measure::kept;
};

class Ledger {
public:
    virtual void row(Row row) = 0;
    virtual void row(MemoryRow row) = 0;

protected:
    ~Ledger() = default;
};

// One function a file.
void dictionary_rows(Ledger& ledger);
void file_rows(Ledger& ledger);
void heap_rows(Ledger& ledger);
void hook_rows(Ledger& ledger);
void ini_rows(Ledger& ledger);
void lock_rows(Ledger& ledger);
void object_rows(Ledger& ledger);
void storage_rows(Ledger& ledger);
void stream_rows(Ledger& ledger);
void string_rows(Ledger& ledger);
void tree_form_rows(Ledger& ledger);
void tree_memory_rows(Ledger& ledger);
void tree_rows(Ledger& ledger);
void variant_rows(Ledger& ledger);

} // namespace bench
