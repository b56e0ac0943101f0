// What loading a tree takes at its peak, from each of the stored forms.
#include "bench/ledger.h"
#include "bench/names.h"
#include "bench/tree_values.h"
#include "qzstream.h"
#include "qzstring.h"

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace bench {
namespace {

using nlohmann::json;
using Stream = CQZRef<IXStream>;

constexpr unsigned kSections = 1000;
constexpr unsigned kSection = 100;
constexpr unsigned kCount = kSections * kSection;

// The forms are written by hand, since a tree that is saved here would raise the peak before the measurement.
struct Forms {
    Forms() : names(entry_names(kSections + kSection)) {
        write_text();
        write_stream();
        write_json();
        write_cbor();
    }

    std::vector<std::string> names; // of the values, then of the sections
    CXString text;
    Stream stream = Stream::Adopt(new_StreamOnMemory());
    std::string json_text;
    std::vector<std::uint8_t> cbor;

    const std::string& section(unsigned i) const { return names[kSection + i]; }

private:
    void write_text() {
        std::string all;
        for (unsigned i = 0; i < kCount; ++i) {
            if (i % kSection == 0) all += "[\\" + section(i / kSection) + "]|";
            const char* const letters[] = {"=i", "=R", "=s", "=f"};
            all += names[i % kSection] + letters[i % 4] + printed(i) + '|';
        }
        text = all.c_str();
    }

    void write_stream() {
        for (unsigned i = 0; i < kSections; ++i) {
            stream->WriteString(section(i).c_str());
            stream->WriteString(""); // no children
            for (unsigned j = 0; j < kSection; ++j) {
                stream->WriteString(names[j].c_str());
                const CQZVariant value = library_value(i * kSection + j);
                stream->WriteVariant(&value);
            }
            stream->WriteString("");
        }
        stream->WriteString("");
        stream->WriteString("");
    }

    void write_json() {
        for (unsigned i = 0; i < kCount; ++i) {
            if (i % kSection == 0) json_text += (i == 0 ? "{\"" : "},\"") + section(i / kSection) + "\":{";
            json_text += (i % kSection == 0 ? "\"" : ",\"") + names[i % kSection] + "\":";
            const char* const quote = i % 4 == 2 ? "\"" : "";
            json_text += i % 4 == 3 ? (i / 4 % 2 != 0 ? "true" : "false") : quote + printed(i) + quote;
        }
        json_text += "}}";
    }

    void write_cbor() {
        put(0xB9, kSections, 2);
        for (unsigned i = 0; i < kCount; ++i) {
            if (i % kSection == 0) {
                put(section(i / kSection));
                put(0xB9, kSection, 2);
            }
            put(names[i % kSection]);
            switch (i % 4) {
            case 0:
                put(0x1A, i, 4);
                break;
            case 1:
                put(0xFB, std::bit_cast<std::uint64_t>(i * 0.25), 8);
                break;
            case 2:
                put(printed(i));
                break;
            default:
                cbor.push_back(i / 4 % 2 != 0 ? 0xF5 : 0xF4);
            }
        }
    }
    void put(unsigned char head, std::uint64_t number, unsigned bytes) {
        cbor.push_back(head);
        while (bytes-- > 0)
            cbor.push_back(static_cast<std::uint8_t>(number >> 8 * bytes));
    }
    void put(const std::string& text_item) {
        put(0x78, text_item.size(), 1);
        cbor.insert(cbor.end(), text_item.begin(), text_item.end());
    }

    // As library_value and standard_value have them.
    static std::string printed(unsigned i) {
        switch (i % 4) {
        case 0:
            return std::to_string(i);
        case 1:
            return std::to_string(i * 0.25);
        case 2:
            return "value " + std::to_string(i);
        default:
            return i / 4 % 2 != 0 ? "1" : "0";
        }
    }
};

// A load that is wrong ends the program, and with it the whole run.
Tree checked(Tree tree, const Forms& forms) {
    for (unsigned i = 0; i < kCount; i += 37) {
        CQZVariant value;
        const std::string path = forms.section(i / kSection) + '\\' + forms.names[i % kSection];
        if (tree->GetValue(path.c_str(), &value) == 0 || !(value == library_value(i))) std::abort();
    }
    return tree;
}

json checked(json tree, const Forms& forms) {
    for (unsigned i = 0; i < kCount; i += 37)
        if (tree[forms.section(i / kSection)][forms.names[i % kSection]] != standard_value<json>(i))
            std::abort();
    return tree;
}

std::function<void()> kept(Tree tree) {
    return [tree] { DoNotOptimize(tree.Get()); };
}

std::function<void()> kept(json tree) {
    const auto shared = std::make_shared<json>(std::move(tree));
    return [shared] { DoNotOptimize(shared->size()); };
}

} // namespace

void tree_memory_rows(Ledger& ledger) {
    const auto forms = std::make_shared<std::unique_ptr<Forms>>();
    const auto prepare = [forms] { *forms = std::make_unique<Forms>(); };
    ledger.row(MemoryRow{"memory", "peak of loading 100k values, text form, bytes a value",
                         "nlohmann-json, text", 1.0, kCount, prepare,
                         [forms] {
                             Tree tree = new_tree();
                             Param_String2Param((*forms)->text, tree.Get());
                             return kept(checked(std::move(tree), **forms));
                         },
                         [forms] { return kept(checked(json::parse((*forms)->json_text), **forms)); },
                         Measure::peak});
    ledger.row(MemoryRow{"memory", "peak of loading 100k values, stream form, bytes a value",
                         "nlohmann-json, CBOR", 1.0, kCount, prepare,
                         [forms] {
                             Tree tree = new_tree();
                             (*forms)->stream->Seek(0, 0);
                             LoadParamFromXStream((*forms)->stream.Get(), tree.Get());
                             return kept(checked(std::move(tree), **forms));
                         },
                         [forms] { return kept(checked(json::from_cbor((*forms)->cbor), **forms)); },
                         Measure::peak});
}

} // namespace bench
