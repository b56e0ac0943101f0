// Parameter trees in memory.
#include "bench/ledger.h"
#include "bench/names.h"
#include "bench/tree_values.h"

#include <array>
#include <memory>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

namespace bench {
namespace {

using benchmark::DoNotOptimize;
using benchmark::State;

struct Rect {
    int left, top, right, bottom;
};
using Value = std::variant<std::monostate, bool, int, double, std::string, Rect>;
using Map = std::unordered_map<std::string, Value>;

struct Data {
    explicit Data(unsigned count) : names(entry_names(count)), order(shuffled(count)) {
        for (unsigned i = 0; i < count; ++i) {
            library.push_back(library_value(i));
            standard.push_back(standard_value<Value>(i));
        }
    }
    Tree tree() const {
        Tree made = new_tree();
        for (std::size_t i = 0; i < names.size(); ++i)
            made->SetValue(names[i].c_str(), &library[i]);
        return made;
    }
    Map map() const {
        Map made;
        for (std::size_t i = 0; i < names.size(); ++i)
            made[names[i]] = standard[i];
        return made;
    }
    std::vector<std::string> names;
    std::vector<unsigned> order;
    std::vector<CQZVariant> library;
    std::vector<Value> standard;
};

void node_rows(Ledger& ledger, unsigned count, const std::string& text, double set_target,
               double get_target) {
    const char* beside = "std::unordered_map<std::string, std::variant>";
    const auto check = [count] {
        const Data data(count);
        const Tree tree = data.tree();
        CQZVariant value;
        for (unsigned i = 0; i < count; ++i)
            if (tree->GetValue(data.names[i].c_str(), &value) == 0 || !(value == data.library[i]))
                return false;
        return data.map().size() == count;
    };
    ledger.row({"trees", "one node, set " + text + " values", beside, set_target, check,
                [count](State& state) {
                    const Data data(count);
                    for (auto _ : state)
                        DoNotOptimize(data.tree().Get());
                },
                [count](State& state) {
                    const Data data(count);
                    for (auto _ : state)
                        DoNotOptimize(data.map().size());
                }});
    ledger.row({"trees", "one node of " + text + " values, get in shuffled order", beside, get_target, check,
                [count](State& state) {
                    const Data data(count);
                    const Tree tree = data.tree();
                    CQZVariant value;
                    for (auto _ : state)
                        for (const unsigned i : data.order) {
                            tree->GetValue(data.names[i].c_str(), &value);
                            DoNotOptimize(&value);
                        }
                },
                [count](State& state) {
                    const Data data(count);
                    const Map map = data.map();
                    Value value;
                    for (auto _ : state)
                        for (const unsigned i : data.order) {
                            value = map.find(data.names[i].c_str())->second;
                            DoNotOptimize(&value);
                        }
                }});
}

// 100 sections of 100 sections of 10 values.
struct PathData {
    PathData() {
        const std::vector<std::string> names = entry_names(100);
        for (unsigned i = 0; i < kCount; ++i) {
            parts.push_back({names[i / 1000], names[i / 10 % 100], names[i % 10]});
            paths.push_back(parts[i][0] + '\\' + parts[i][1] + '\\' + parts[i][2]);
        }
    }
    static constexpr unsigned kCount = 100'000;
    std::vector<std::array<std::string, 3>> parts;
    std::vector<std::string> paths;
};
using NestedMaps = std::unordered_map<std::string, std::unordered_map<std::string, Map>>;

Tree tree_of_paths(const PathData& data) {
    Tree tree = new_tree();
    // A path creates its last node alone, so the first ones are created before.
    for (unsigned i = 0; i < PathData::kCount; i += 1000)
        Tree::Adopt(tree->CreateSubParam(data.parts[i][0].c_str()));
    for (unsigned i = 0; i < PathData::kCount; ++i) {
        const CQZVariant value(static_cast<int>(i));
        tree->SetValue(data.paths[i].c_str(), &value);
    }
    return tree;
}

NestedMaps maps_of_paths(const PathData& data) {
    NestedMaps maps;
    for (unsigned i = 0; i < PathData::kCount; ++i)
        maps[data.parts[i][0]][data.parts[i][1]][data.parts[i][2]] = static_cast<int>(i);
    return maps;
}

void path_rows(Ledger& ledger) {
    const auto check = [] {
        const PathData data;
        const Tree tree = tree_of_paths(data);
        CQZVariant value;
        return tree->GetValue(data.paths[54321].c_str(), &value) != 0 && value.intVal == 54321 &&
               maps_of_paths(data).size() == 100;
    };
    ledger.row({"trees", "100,000 values under three-level paths, set", "nested maps", 1.3, check,
                [](State& state) {
                    const PathData data;
                    for (auto _ : state)
                        DoNotOptimize(tree_of_paths(data).Get());
                },
                [](State& state) {
                    const PathData data;
                    for (auto _ : state)
                        DoNotOptimize(maps_of_paths(data).size());
                }});
    ledger.row({"trees", "100,000 values under three-level paths, get", "nested maps", 0.75, check,
                [](State& state) {
                    const PathData data;
                    const Tree tree = tree_of_paths(data);
                    CQZVariant value;
                    for (auto _ : state)
                        for (const unsigned i : shuffled(PathData::kCount)) {
                            tree->GetValue(data.paths[i].c_str(), &value);
                            DoNotOptimize(&value);
                        }
                },
                [](State& state) {
                    const PathData data;
                    const NestedMaps maps = maps_of_paths(data);
                    Value value;
                    for (auto _ : state)
                        for (const unsigned i : shuffled(PathData::kCount)) {
                            const auto& [a, b, c] = data.parts[i];
                            value = maps.find(a)->second.find(b)->second.find(c)->second;
                            DoNotOptimize(&value);
                        }
                }});
}

void walk_row(Ledger& ledger) {
    constexpr unsigned kCount = 10'000;
    const auto walk = [](const Tree& tree) {
        const auto names = CQZRef<CTEnum<const char*>>::Adopt(tree->EnumValues());
        const char* name = nullptr;
        unsigned fetched = 0;
        std::size_t seen = 0;
        while (names->Next(1, &name, &fetched) != 0 && fetched == 1)
            seen += name[0] == 'e' ? 1 : 0;
        return seen;
    };
    ledger.row({"trees", "walk 10,000 names", "walking an unordered map", 1.3,
                [walk] { return walk(Data(kCount).tree()) == kCount; },
                [walk](State& state) {
                    const Tree tree = Data(kCount).tree();
                    for (auto _ : state)
                        DoNotOptimize(walk(tree));
                },
                [](State& state) {
                    const Map map = Data(kCount).map();
                    for (auto _ : state) {
                        std::size_t seen = 0;
                        for (const auto& [name, value] : map)
                            seen += name[0] == 'e' ? 1 : 0;
                        DoNotOptimize(seen);
                    }
                }});
}

void memory_row(Ledger& ledger) {
    constexpr unsigned kCount = 100'000;
    const auto data = std::make_shared<std::unique_ptr<Data>>();
    ledger.row(MemoryRow{"memory", "bytes per value of a tree of 100k",
                         "std::unordered_map<std::string, std::variant>", 1.0, kCount,
                         [data] { *data = std::make_unique<Data>(100'000); },
                         [data] { return [tree = (*data)->tree()] { DoNotOptimize(tree.Get()); }; },
                         [data] {
                             const auto map = std::make_shared<Map>((*data)->map());
                             return [map] { DoNotOptimize(map->size()); };
                         }});
}

} // namespace

void tree_rows(Ledger& ledger) {
    node_rows(ledger, 1'000, "1k", 1.5, 0.75);
    node_rows(ledger, 10'000, "10k", 1.3, 0.75);
    node_rows(ledger, 100'000, "100k", 1.3, 0.6);
    path_rows(ledger);
    walk_row(ledger);
    memory_row(ledger);
}

} // namespace bench
