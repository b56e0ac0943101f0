// Dictionaries: loading them, and looking texts up.
#include "bench/dictionary_files.h"
#include "bench/ledger.h"
#include "bench/names.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <unordered_map>

namespace bench {

namespace {

using Map = std::unordered_map<std::wstring, std::wstring>;

constexpr unsigned kLookups = 100'000;
constexpr unsigned kHot = 500;
constexpr char kMapName[] = "unordered_map<wstring, wstring>";

// --- the counterpart: the same form of file, read by plain code

std::string_view trimmed(std::string_view line) {
    constexpr std::string_view kSpace = " \t\v\f\r\n";
    const std::size_t begin = line.find_first_not_of(kSpace);
    if (begin == line.npos) return {};
    return line.substr(begin, line.find_last_not_of(kSpace) + 1 - begin);
}

std::string unescaped(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            plain += text[i];
            continue;
        }
        switch (text[++i]) {
        case 'n':
            plain += '\n';
            break;
        case 'r':
            plain += '\r';
            break;
        case 't':
            plain += '\t';
            break;
        default:
            plain += '\\';
            plain += text[i];
        }
    }
    return plain;
}

std::wstring widened(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    const int size = static_cast<int>(text.size());
    wide.resize(
        static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), size)));
    return wide;
}

Map load_map(const std::wstring& path) {
    Map map;
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    std::string line;
    std::string source;
    bool has_source = false;
    while (std::getline(file, line)) {
        const std::string_view entry = trimmed(line);
        if (line[0] == ';' || entry.size() < 2 || entry[0] != '"') continue;
        std::string text = unescaped(entry.substr(1, entry.size() - 2));
        if (has_source) {
            map.emplace(widened(source), widened(text));
        } else {
            source = std::move(text);
        }
        has_source = !has_source;
    }
    return map;
}

// --- both sides, loaded

// Loaded once for all rows that look texts up.
struct Loaded {
    std::unique_ptr<DictionaryLibrary> library;
    Map map;
    std::vector<std::wstring> asked; // in the order in which they are asked for, as callers have them at hand
};

const Loaded& loaded(unsigned pairs) {
    static std::map<unsigned, Loaded> all;
    Loaded& made = all[pairs];
    if (made.library) return made;
    const std::wstring& path = dictionary_file(pairs);
    made.library = std::make_unique<DictionaryLibrary>(std::to_string(pairs));
    made.library->add(path.c_str());
    made.map = load_map(path);
    const std::vector<TextPair> texts = text_pairs(pairs);
    std::minstd_rand random(pairs);
    for (unsigned i = 0; i < kLookups; ++i)
        made.asked.push_back(widened(texts[random() % pairs].source));
    return made;
}

bool same_translations(unsigned pairs) {
    const Loaded& both = loaded(pairs);
    for (const std::wstring& text : both.asked)
        if (both.library->translate(text.c_str()) != both.map.at(text)) return false;
    return true;
}

// --- rows

// Of a library that has loaded nothing yet; how it comes into the process is not timed.
void load_library(State& state, unsigned pairs, unsigned times) {
    const std::wstring& path = dictionary_file(pairs);
    for (auto _ : state) {
        for (unsigned i = 0; i < times; ++i) {
            state.PauseTiming();
            {
                DictionaryLibrary library("fresh");
                state.ResumeTiming();
                DoNotOptimize(library.add(path.c_str()));
                state.PauseTiming();
            }
            state.ResumeTiming();
        }
    }
}

void load_counterpart(State& state, unsigned pairs) {
    const std::wstring& path = dictionary_file(pairs);
    for (auto _ : state) {
        Map map = load_map(path);
        DoNotOptimize(map.size());
        state.PauseTiming();
        Map().swap(map);
        state.ResumeTiming();
    }
}

void look_up_library(State& state, unsigned pairs, unsigned texts) {
    const Loaded& both = loaded(pairs);
    auto* const translate = both.library->translate;
    for (auto _ : state)
        for (unsigned i = 0; i < texts; ++i)
            DoNotOptimize(translate(both.asked[i].c_str()));
}

void look_up_counterpart(State& state, unsigned pairs, unsigned texts) {
    const Loaded& both = loaded(pairs);
    for (auto _ : state)
        for (unsigned i = 0; i < texts; ++i)
            DoNotOptimize(both.map.find(both.asked[i])->second.c_str());
}

struct Size {
    unsigned pairs;
    const char* name;
    double load;
    double look_up;
};
constexpr Size kSizes[] = {{1'000, "1k", 1.5, 0.35}, {20'000, "20k", 0.6, 0.35}, {200'000, "200k", 0.4, 0.5}};

void load_rows(Ledger& ledger) {
    for (const Size& size : kSizes)
        ledger.row({"dictionaries", std::string("load ") + size.name + " pairs", kMapName, size.load,
                    [pairs = size.pairs] { return same_translations(pairs); },
                    [pairs = size.pairs](State& state) { load_library(state, pairs, 1); },
                    [pairs = size.pairs](State& state) { load_counterpart(state, pairs); }});
    ledger.row({"dictionaries", "load 200k pairs", "20k pairs, ten times", 1.4,
                [] { return same_translations(200'000) && same_translations(20'000); },
                [](State& state) { load_library(state, 200'000, 1); },
                [](State& state) { load_library(state, 20'000, 10); }});
}

void look_up_rows(Ledger& ledger) {
    for (const Size& size : kSizes)
        ledger.row({"dictionaries", std::string("100,000 look-ups in ") + size.name + " pairs", kMapName,
                    size.look_up, [pairs = size.pairs] { return same_translations(pairs); },
                    [pairs = size.pairs](State& state) { look_up_library(state, pairs, kLookups); },
                    [pairs = size.pairs](State& state) { look_up_counterpart(state, pairs, kLookups); }});
    ledger.row({"dictionaries", "500 hot texts in 200k pairs", kMapName, 0.4,
                [] { return same_translations(200'000); },
                [](State& state) { look_up_library(state, 200'000, kHot); },
                [](State& state) { look_up_counterpart(state, 200'000, kHot); }});
    ledger.row({"dictionaries", "500 hot texts in 200k pairs", "the same in 1k pairs", 1.5,
                [] { return same_translations(200'000) && same_translations(1'000); },
                [](State& state) { look_up_library(state, 200'000, kHot); },
                [](State& state) { look_up_library(state, 1'000, kHot); }});
}

// --- memory

constexpr unsigned kPairs = 200'000;

std::function<void()> keep_library(bool translate_all) {
    auto library = std::make_shared<DictionaryLibrary>("fresh");
    library->add(dictionary_file(kPairs).c_str());
    if (translate_all)
        for (const TextPair& pair : text_pairs(kPairs))
            library->translate(widened(pair.source).c_str());
    return [library] {};
}

std::function<void()> keep_map() {
    auto map = std::make_shared<Map>(load_map(dictionary_file(kPairs)));
    return [map] {};
}

// Some pairs of a file, read line by line: all of them would raise the peak.
template <class Translate>
void check_some(const std::wstring& path, const Translate& translate) {
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    const auto text_of = [](std::string_view line) {
        const std::string_view quoted = trimmed(line);
        return widened(std::string(quoted.substr(1, quoted.size() - 2)));
    };
    std::string source, translation;
    for (unsigned i = 0; i < kPairs; ++i) {
        std::getline(file, source);
        std::getline(file, translation);
        if (i % 1000 == 0 && translate(text_of(source)) != text_of(translation)) std::abort();
    }
}

// The library itself is there before the measurement begins.
struct PeakSides {
    std::wstring path = dictionary_file_from_aside(kPairs);
    DictionaryLibrary library{"fresh"};
};

void peak_row(Ledger& ledger) {
    const auto sides = std::make_shared<std::unique_ptr<PeakSides>>();
    ledger.row(MemoryRow{"dictionaries", "peak of loading 200k pairs, bytes a pair", kMapName, 1, kPairs,
                         [sides] { *sides = std::make_unique<PeakSides>(); },
                         [sides]() -> std::function<void()> {
                             const PeakSides& made = **sides;
                             made.library.add(made.path.c_str());
                             check_some(made.path, [&](const std::wstring& text) -> std::wstring {
                                 return made.library.translate(text.c_str());
                             });
                             return [sides] {};
                         },
                         [sides]() -> std::function<void()> {
                             const std::wstring& path = (*sides)->path;
                             const auto map = std::make_shared<Map>(load_map(path));
                             check_some(path, [&](const std::wstring& text) { return map->at(text); });
                             return [map] {};
                         },
                         Measure::peak});
}

} // namespace

void dictionary_rows(Ledger& ledger) {
    load_rows(ledger);
    look_up_rows(ledger);
    const auto prepare = [] {
        dictionary_file(kPairs);
        DictionaryLibrary("fresh").add(dictionary_file(1'000).c_str());
    };
    ledger.row(MemoryRow{"dictionaries", "bytes of each of 200k pairs", kMapName, 1, kPairs, prepare,
                         [] { return keep_library(false); }, keep_map});
    ledger.row(MemoryRow{"dictionaries", "bytes of each of 200k pairs, all translated once", kMapName, 1,
                         kPairs, prepare, [] { return keep_library(true); }, keep_map});
    peak_row(ledger);
}

} // namespace bench
