// Dictionary files under mutation: none crashes or hangs, and each is read as a plain reader reads it. The
// companion file has the same bytes, so whatever reads those is tried too.
#include "mutation.h"

#include "qzstring.h"
#include "qzsupp.h"

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
    return {"\"",
            "\n",
            "\r\n",
            "\"\n\"",
            "\\",
            "\\n",
            "\\\\",
            ";",
            " ",
            "\t",
            "\"\"\n",
            "\x83",
            "\x81\x40",
            "\x83\x5C",
            "\xFF",
            std::string(1, '\0'),
            std::string(8190, 'x'),
            "[\\Dialogs\\",
            "\\Dialog Size]\n",
            "=t1,2,3,4\n",
            "#1#101"};
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

std::unordered_map<unsigned, std::string> known; // what the library must know by now

void learn(const std::string& source, const std::string& translation) {
    known.try_emplace(hash_of(CXStringW(source.c_str())), translation.empty() ? source : translation);
}

void compare(const std::string& source, std::string_view input) {
    const CXStringW key(source.c_str());
    if (*key.GetData() == 0) return;
    const wchar_t* const found = Supp_Translate(key.GetData());
    const CXStringW expected(known[hash_of(key)].c_str());
    if (expected != found) fuzz::fail("another translation", input);
}

// Memory below 2 GiB, which a path can name. A line that starts in it may end behind it, so it is followed by
// nothing that can be read.
char* low_memory(std::size_t size) {
    for (ULONG_PTR address = 0x10000000; address < 0x60000000; address += 0x100000)
        if (void* const p = VirtualAlloc(reinterpret_cast<void*>(address), size, MEM_RESERVE | MEM_COMMIT,
                                         PAGE_READWRITE))
            return static_cast<char*>(p);
    fuzz::fail("no memory below 2 GiB", "");
}

bool run(const std::string& input) {
    constexpr std::size_t kRoom = 64 * 1024;
    static char* const memory = low_memory(kRoom);
    char* const bytes = memory + kRoom - input.size();
    std::memcpy(bytes, input.data(), input.size());
    const std::wstring path = L"fmem::" + std::to_wstring(reinterpret_cast<ULONG_PTR>(bytes)) + L"," +
                              std::to_wstring(input.size());
    if (Supp_AddWld(path.c_str()) != 1) fuzz::fail("not loaded", input);
    const std::vector<std::string> entries = entries_of(input);
    std::string translation;
    for (std::size_t i = 0; i < entries.size(); i += 2) {
        if (i + 1 < entries.size()) translation = unescaped(entries[i + 1]);
        learn(unescaped(entries[i]), translation);
    }
    for (std::size_t i = 0; i < entries.size(); i += 2)
        compare(unescaped(entries[i]), input);
    return entries.size() > 2;
}

} // namespace

int main(int argc, char** argv) {
    return fuzz::main_loop(argc, argv, fuzz::Mutator(corpus(), pieces(), 8117), 200000, run);
}
