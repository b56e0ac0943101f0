// INI files: as a whole, beside Boost.PropertyTree, and live, beside the platform's private profiles.
#include "bench/ledger.h"
#include "bench/temporary_folder.h"
#include "bench/tree_values.h"

#include <boost/property_tree/ini_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

namespace bench {
namespace {

using boost::property_tree::ptree;

constexpr unsigned kKeys = 10'000;
constexpr unsigned kManyKeys = 100'000;
constexpr unsigned kKeysInSection = 100;

// Half of the values are integers and half are texts, each behind the letter of its type.
std::string section_name(unsigned i) { return "section" + std::to_string(i / kKeysInSection); }
std::string key_name(unsigned i) { return "key" + std::to_string(i % kKeysInSection); }
std::string value_text(unsigned i) {
    return i % 2 == 0 ? "i" + std::to_string(i) : "svalue number " + std::to_string(i);
}
std::string property_path(unsigned i) { return "\\" + section_name(i) + "." + key_name(i); }

CQZVariant value(unsigned i) {
    if (i % 2 == 0) return {static_cast<int>(i)};
    return {("value number " + std::to_string(i)).c_str()};
}

// A folder with an INI file that both sides read.
struct IniFile {
    explicit IniFile(unsigned keys) {
        std::string text;
        for (unsigned i = 0; i < keys; ++i) {
            if (i % kKeysInSection == 0) text += "[\\" + section_name(i) + "]\n";
            text += key_name(i) + "=" + value_text(i) + "\n";
        }
        std::ofstream(std::filesystem::path(path), std::ios::binary) << text;
    }
    std::string narrow_path() const { return std::filesystem::path(path).string(); }
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"settings.ini");
};

// --- whole files -----------------------------------------------------------------------------------------

Tree loaded_by_library(const IniFile& file) {
    Tree tree = new_tree();
    Param_IniFile2Param(file.path.c_str(), tree.Get());
    return tree;
}

ptree loaded_by_boost(const IniFile& file) {
    ptree tree;
    boost::property_tree::read_ini(file.narrow_path(), tree);
    return tree;
}

void save_by_library(const Tree& tree, const IniFile& file) {
    Param_Param2IniFile(tree.Get(), file.path.c_str());
}

// The library replaces the file safely, so this does as well.
void save_by_boost(const ptree& tree, const IniFile& file) {
    std::ostringstream text;
    boost::property_tree::write_ini(text, tree);
    replace_bare(file.folder, file.path, text.view());
}

bool holds_all(const Tree& tree) {
    for (unsigned i = 0; i < kKeys; ++i) {
        CQZVariant found;
        const std::string path = section_name(i) + "\\" + key_name(i);
        if (tree->GetValue(path.c_str(), &found) == 0 || !(found == value(i))) return false;
    }
    return true;
}

bool holds_all(const ptree& tree) {
    for (unsigned i = 0; i < kKeys; ++i)
        if (tree.get<std::string>(property_path(i)) != value_text(i)) return false;
    return true;
}

bool whole_files_are_right() {
    const IniFile file(kKeys);
    const Tree tree = loaded_by_library(file);
    const ptree properties = loaded_by_boost(file);
    if (!holds_all(tree) || !holds_all(properties)) return false;
    save_by_library(tree, file);
    if (!holds_all(loaded_by_library(file))) return false;
    save_by_boost(properties, file);
    return holds_all(loaded_by_boost(file));
}

void whole_file_rows(Ledger& ledger) {
    ledger.row({"INI", "10,000 keys, load", "Boost.PropertyTree read_ini", 0.4, whole_files_are_right,
                [](State& state) {
                    const IniFile file(kKeys);
                    for (auto _ : state)
                        DoNotOptimize(loaded_by_library(file).Get());
                },
                [](State& state) {
                    const IniFile file(kKeys);
                    for (auto _ : state)
                        DoNotOptimize(loaded_by_boost(file).size());
                }});
    ledger.row({"INI", "10,000 keys, save", "Boost.PropertyTree write_ini", 1.5, whole_files_are_right,
                [](State& state) {
                    const IniFile file(kKeys);
                    const Tree tree = loaded_by_library(file);
                    for (auto _ : state)
                        save_by_library(tree, file);
                },
                [](State& state) {
                    const IniFile file(kKeys);
                    const ptree tree = loaded_by_boost(file);
                    for (auto _ : state)
                        save_by_boost(tree, file);
                }});
    const auto file = std::make_shared<std::unique_ptr<IniFile>>();
    ledger.row(MemoryRow{"INI", "peak of loading 100,000 keys, bytes a key", "Boost.PropertyTree read_ini",
                         1.0, kManyKeys, [file] { *file = std::make_unique<IniFile>(kManyKeys); },
                         [file]() -> std::function<void()> {
                             const Tree tree = loaded_by_library(**file);
                             return [tree] { DoNotOptimize(tree.Get()); };
                         },
                         [file]() -> std::function<void()> {
                             const auto tree = std::make_shared<ptree>(loaded_by_boost(**file));
                             return [tree] { DoNotOptimize(tree->size()); };
                         },
                         Measure::peak});
}

// --- live files ------------------------------------------------------------------------------------------

constexpr unsigned kLiveKeys = 1000;
constexpr char kSection[] = "\\section3";

// The key in the middle of the file, by the platform and as a node of the library.
struct LiveFile : IniFile {
    LiveFile() : IniFile(kLiveKeys) {
        const Tree root = Tree::Adopt(new_IParamIniFile(path.c_str()));
        section = Tree::Adopt(root->OpenSubParam("section3", 0));
    }
    std::string text(const char* key) const {
        char text[256];
        GetPrivateProfileStringA(kSection, key, "", text, sizeof text, name.c_str());
        return text;
    }
    int number(const char* key) const {
        CQZVariant value;
        section->GetValue(key, &value);
        return static_cast<int>(value);
    }
    void set_number(const char* key, int number) const {
        const CQZVariant value = number;
        section->SetValue(key, &value);
    }
    void set_text(const char* key, int number) const {
        WritePrivateProfileStringA(kSection, key, ("i" + std::to_string(number)).c_str(), name.c_str());
    }
    const std::string name = narrow_path();
    Tree section;
};

bool live_file_is_right() {
    const LiveFile file;
    if (file.number("key50") != 350 || file.text("key50") != "i350") return false;
    file.set_number("key50", 7);
    if (file.text("key50") != "i7") return false;
    file.set_text("key50", 8);
    return file.number("key50") == 8;
}

void live_rows(Ledger& ledger) {
    ledger.row({"INI", "live file of 1000 keys, get", "GetPrivateProfileString", 3.3, live_file_is_right,
                [](State& state) {
                    const LiveFile file;
                    for (auto _ : state)
                        DoNotOptimize(file.number("key50"));
                },
                [](State& state) {
                    const LiveFile file;
                    for (auto _ : state)
                        DoNotOptimize(file.text("key50").data());
                }});
    ledger.row({"INI", "live file of 1000 keys, set", "WritePrivateProfileString", 3.3, live_file_is_right,
                [](State& state) {
                    const LiveFile file;
                    int number = 0;
                    for (auto _ : state)
                        file.set_number("key50", ++number);
                },
                [](State& state) {
                    const LiveFile file;
                    int number = 0;
                    for (auto _ : state)
                        file.set_text("key50", ++number);
                }});
}

} // namespace

void ini_rows(Ledger& ledger) {
    whole_file_rows(ledger);
    live_rows(ledger);
}

} // namespace bench
