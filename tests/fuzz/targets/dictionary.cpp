// Dictionary files: each is read as a plain reader reads it.
#include "supp/dictionary.h"
#include "fuzz/low_bytes.h"
#include "qzref.h"
#include "qzstring.h"
#include "supp/dictionary_reader.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <unordered_map>

namespace {

constexpr std::size_t kMostLine = 8192;

std::vector<std::string> corpus() {
    return {
        "\"Open\"\r\n\"Ouvrir\"\r\n\"Close\"\r\n\"Fermer\"\r\n",
        "; comment\n \t\"a\\nb\"\n\n\"A\\tB\\\\\"\nplain\n\"odd\"",
        "\"QZ_WLD_LANG_ID\"\n\"nobody\"\n\"app.exe#3#7\xFD\xFDText\"\n\"\"\n",
        "[\\Dialogs\\app.exe#1#101\\Dialog Size]\n0=t0,0,10,10\n1=s1,2,3,4\n\"s\"\n\"t\"\n",
    };
}

std::vector<std::string> pieces() {
    return fuzz::parts("\"~\n~\r\n~\"\n\"~\\~\\n~\\\\~;~ ~\t~\"\"\n~\x83~\x81\x40~\x83\x5C~\xFF~[\\Dialogs\\~"
                       "\\Dialog Size]\n~=t1,2,3,4\n~#1#101",
                       {std::string(1, '\0'), std::string(8190, 'x')});
}

// --- a plain reader of files in single-byte characters

std::optional<std::string> entry_of(std::string line) {
    line = line.c_str();
    if (line.empty() || line[0] == ';') return std::nullopt;
    constexpr char kSpace[] = " \t\n\v\f\r";
    const std::size_t first = line.find_first_not_of(kSpace);
    if (first == std::string::npos) return std::nullopt;
    line = line.substr(first, line.find_last_not_of(kSpace) + 1 - first);
    if (line.size() < 2 || line[0] != '"') return std::nullopt;
    return line.substr(1, line.size() - 2);
}

std::vector<std::string> entries_of(const std::string& file) {
    std::vector<std::string> entries;
    for (std::size_t at = 0; at < file.size();) {
        const std::size_t end = std::min({file.find('\n', at), at + kMostLine, file.size()});
        if (const auto entry = entry_of(file.substr(at, end - at))) entries.push_back(*entry);
        at = end < file.size() && end - at < kMostLine && file[end] == '\n' ? end + 1 : end;
    }
    return entries;
}

std::string unescaped(const std::string& text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            plain += text[i];
            continue;
        }
        i = text.find_first_not_of('\\', i);
        if (i == std::string::npos) break;
        const std::size_t control = std::string("nrt").find(text[i]);
        plain +=
            control != std::string::npos ? std::string(1, "\n\r\t"[control]) : std::string{'\\', text[i]};
    }
    return plain;
}

unsigned hash_of(const CXStringW& text) {
    unsigned hash = 0;
    for (const wchar_t* p = text.GetData(); *p != 0; ++p)
        hash = hash * 257 + *p;
    return hash;
}

// --- comparing

void load(const std::wstring& path, qzr::Dictionary& dictionary) {
    const auto file = CQZRef<IXFile>::Adopt(Fio_Open(path.c_str(), QZFILE_READ));
    qzr::DictionaryReader reader(*file);
    while (reader.next()) {
        reader.unescape();
        dictionary.add(reader.source(), reader.translation());
    }
}

void run(const std::string& input) {
    static fuzz::LowBytes memory(64 * 1024);
    qzr::Dictionary dictionary;
    load(memory.put(input), dictionary);
    const std::vector<std::string> entries = entries_of(input);
    std::unordered_map<unsigned, std::string> known; // what the dictionary must know, by hash
    std::string translation;
    for (std::size_t i = 0; i < entries.size(); i += 2) {
        const std::string source = unescaped(entries[i]);
        if (i + 1 < entries.size()) translation = unescaped(entries[i + 1]);
        known.try_emplace(hash_of(CXStringW(source.c_str())), translation.empty() ? source : translation);
    }
    for (const auto& [hash, expected] : known) {
        const qzr::DictionaryEntry entry = dictionary.find(hash);
        fuzz::require(static_cast<bool>(entry), "an entry is missing");
        fuzz::require(dictionary.narrow_translation(entry) == expected, "another translation");
        fuzz::require(CXStringW(expected.c_str()) == dictionary.wide_translation(entry),
                      "another wide translation");
    }
}

} // namespace

const fuzz::Target fuzz::kDictionary{
    .name = "dictionary", .run = run, .seeds = corpus, .pieces = pieces, .longest = 20000};
