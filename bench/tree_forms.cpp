// The stored forms of parameter trees.
#include "bench/ledger.h"
#include "bench/names.h"
#include "bench/tree_values.h"
#include "qzstream.h"
#include "qzstring.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace bench {
namespace {

using nlohmann::json;
using Stream = CQZRef<IXStream>;

constexpr unsigned kSection = 100;

Tree sections(unsigned count) {
    const std::vector<std::string> names = entry_names(count / kSection + kSection);
    Tree tree = new_tree();
    for (unsigned i = 0; i < count; i += kSection) {
        const Tree section = Tree::Adopt(tree->CreateSubParam(names[i / kSection].c_str()));
        for (unsigned j = 0; j < kSection; ++j) {
            const CQZVariant value = library_value(i + j);
            section->SetValue(names[j].c_str(), &value);
        }
    }
    return tree;
}

json json_sections(unsigned count) {
    const std::vector<std::string> names = entry_names(count / kSection + kSection);
    json tree = json::object();
    for (unsigned i = 0; i < count; i += kSection) {
        json& section = tree[names[i / kSection]] = json::object();
        for (unsigned j = 0; j < kSection; ++j)
            section[names[j]] = standard_value<json>(i + j);
    }
    return tree;
}

Stream saved(const Tree& tree) {
    Stream stream = Stream::Adopt(new_StreamOnMemory());
    SaveParamToXStream(stream.Get(), tree.Get());
    return stream;
}

Tree loaded(const Stream& stream) {
    Tree tree = new_tree();
    stream->Seek(0, 0);
    LoadParamFromXStream(stream.Get(), tree.Get());
    return tree;
}

CXString written(const Tree& tree) {
    CXString text;
    Param_Param2String(tree.Get(), text);
    return text;
}

Tree parsed(CXString text) {
    Tree tree = new_tree();
    Param_String2Param(text, tree.Get());
    return tree;
}

void stream_form_rows(Ledger& ledger) {
    constexpr unsigned kCount = 100'000;
    const auto check = [] {
        const Tree tree = sections(kCount);
        return Param_Cmp(loaded(saved(tree)).Get(), tree.Get()) != 0 &&
               json::from_cbor(json::to_cbor(json_sections(kCount))) == json_sections(kCount);
    };
    ledger.row({"trees", "100,000 values, stream form, save", "nlohmann-json, CBOR", 0.75, check,
                [](State& state) {
                    const Tree tree = sections(kCount);
                    for (auto _ : state)
                        DoNotOptimize(saved(tree).Get());
                },
                [](State& state) {
                    const json tree = json_sections(kCount);
                    for (auto _ : state)
                        DoNotOptimize(json::to_cbor(tree).data());
                }});
    ledger.row({"trees", "100,000 values, stream form, load", "nlohmann-json, CBOR", 0.4, check,
                [](State& state) {
                    const Stream stream = saved(sections(kCount));
                    for (auto _ : state)
                        DoNotOptimize(loaded(stream).Get());
                },
                [](State& state) {
                    const auto bytes = json::to_cbor(json_sections(kCount));
                    for (auto _ : state)
                        DoNotOptimize(json::from_cbor(bytes).size());
                }});
}

bool text_form_works() {
    const Tree tree = sections(1000);
    return Param_Cmp(parsed(written(tree)).Get(), tree.Get()) != 0;
}

void text_form_rows(Ledger& ledger) {
    constexpr unsigned kCount = 100'000;
    ledger.row({"trees", "100,000 values, text form, save", "nlohmann-json, text", 1.05, text_form_works,
                [](State& state) {
                    const Tree tree = sections(kCount);
                    for (auto _ : state)
                        DoNotOptimize(written(tree).GetData());
                },
                [](State& state) {
                    const json tree = json_sections(kCount);
                    for (auto _ : state)
                        DoNotOptimize(tree.dump().data());
                }});
    ledger.row({"trees", "100,000 values, text form, load", "nlohmann-json, text", 0.7, text_form_works,
                [](State& state) {
                    const CXString text = written(sections(kCount));
                    for (auto _ : state)
                        DoNotOptimize(parsed(text).Get());
                },
                [](State& state) {
                    const std::string text = json_sections(kCount).dump();
                    for (auto _ : state)
                        DoNotOptimize(json::parse(text).size());
                }});
}

// The cost of a value must not grow with the tree: ten times the small tree beside one large one.
void growth_rows(Ledger& ledger) {
    ledger.row({"trees", "text form, load a tree of 100k", "ten loads of a tree of 10k", 1.5, text_form_works,
                [](State& state) {
                    const CXString text = written(sections(100'000));
                    for (auto _ : state)
                        DoNotOptimize(parsed(text).Get());
                },
                [](State& state) {
                    const CXString text = written(sections(10'000));
                    for (auto _ : state)
                        for (int i = 0; i < 10; ++i)
                            DoNotOptimize(parsed(text).Get());
                }});
    ledger.row({"trees", "text form, save a tree of 100k", "ten saves of a tree of 10k", 1.5, text_form_works,
                [](State& state) {
                    const Tree tree = sections(100'000);
                    for (auto _ : state)
                        DoNotOptimize(written(tree).GetData());
                },
                [](State& state) {
                    const Tree tree = sections(10'000);
                    for (auto _ : state)
                        for (int i = 0; i < 10; ++i)
                            DoNotOptimize(written(tree).GetData());
                }});
}

} // namespace

void tree_form_rows(Ledger& ledger) {
    stream_form_rows(ledger);
    text_form_rows(ledger);
    growth_rows(ledger);
}

} // namespace bench
