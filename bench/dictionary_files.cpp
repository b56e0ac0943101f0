#include "bench/dictionary_files.h"

#include "bench/names.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <process.h>

namespace fs = std::filesystem;

namespace bench {

namespace {

struct Phrase {
    const char* source;
    const char* translation;
};
constexpr Phrase kPhrases[] = {
    {"Open ", "Ouvrir "},
    {"&Save as ", "&Enregistrer sous "},
    {"Properties of ", "Propri\xE9t\xE9s de "},
    {"Delete the selection: ", "Supprimer la s\xE9lection : "},
    {"The file cannot be found: ", "Le fichier est introuvable, d\xE9sol\xE9 : "},
};

class ScratchFolder {
public:
    ScratchFolder()
        : path_(fs::temp_directory_path() / ("qzrbench_" + std::to_string(GetCurrentProcessId()))) {
        fs::remove_all(path_); // of an earlier process with this number: an older library may lie there
        fs::create_directories(path_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

template <class Function>
void find(HMODULE module, const char* name, Function*& found) {
    found = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    if (found != nullptr) return;
    std::fprintf(stderr, "the library does not export %s\n", name);
    std::exit(2);
}

void write_pairs(fs::path path, const std::vector<TextPair>& pairs) {
    std::ofstream file(path, std::ios::binary);
    for (const TextPair& pair : pairs)
        file << '"' << pair.source << "\"\r\n\"" << pair.translation << "\"\r\n";
    std::ofstream(path.replace_extension(".dlg"), std::ios::binary);
}

// Copied once, for there are many of one name in turn.
fs::path copy_of_library(const std::string& name) {
    fs::path path = scratch_folder() / ("qzrcore_" + name + ".dll");
    if (fs::exists(path)) return path;
    wchar_t original[MAX_PATH];
    GetModuleFileNameW(GetModuleHandleW(L"qzrcore.dll"), original, MAX_PATH);
    fs::copy_file(original, path);
    return path;
}

} // namespace

std::vector<TextPair> text_pairs(unsigned count) {
    std::vector<TextPair> pairs;
    pairs.reserve(count);
    const auto phrase_of = [](std::size_t i) { return kPhrases[i % std::size(kPhrases)]; };
    for (const std::string& source :
         texts_of_different_hashes(count, [&](std::size_t i, const std::string&letters) {
             return phrase_of(i).source + letters;
         })) {
        const Phrase& phrase = phrase_of(pairs.size());
        pairs.push_back({source, phrase.translation + source.substr(std::string_view(phrase.source).size())});
    }
    return pairs;
}

const fs::path& scratch_folder() {
    static const ScratchFolder folder;
    return folder.path();
}

std::wstring write_dictionary(const std::string& name, const std::vector<TextPair>& pairs) {
    const fs::path path = scratch_folder() / (name + ".wld");
    write_pairs(path, pairs);
    return path.wstring();
}

void write_dictionary_file(unsigned pairs, const fs::path& path) { write_pairs(path, text_pairs(pairs)); }

std::wstring dictionary_file_from_aside(unsigned pairs) {
    std::wstring path = (scratch_folder() / (std::to_string(pairs) + "_aside.wld")).wstring();
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    if (_wspawnl(_P_WAIT, program, L"qzrbench", L"--dictionary", std::to_wstring(pairs).c_str(),
                 (L'"' + path + L'"').c_str(), nullptr) != 0)
        std::exit(2);
    return path;
}

const std::wstring& dictionary_file(unsigned pairs) {
    static std::map<unsigned, std::wstring> written;
    std::wstring& path = written[pairs];
    if (path.empty()) path = write_dictionary(std::to_string(pairs), text_pairs(pairs));
    return path;
}

DictionaryLibrary::DictionaryLibrary(const std::string& name)
    : module_(LoadLibraryW(copy_of_library(name).c_str())) {
    find(module_, "_Z11Supp_AddWldPKw", add);
    find(module_, "_Z14Supp_TranslatePKw", translate);
    find(module_, "_Z14Supp_TranslatePKwS0_", translate_in_context);
    find(module_, "_Z23Supp_InitResTranslationP11HINSTANCE__", hook);
    static const std::wstring first = write_dictionary("first", {{"first", "premier"}});
    add(first.c_str());
}

DictionaryLibrary::~DictionaryLibrary() { FreeLibrary(module_); }

} // namespace bench
