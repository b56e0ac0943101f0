// Files in the text form that include each other. An input is split at each byte 1D into up to four files,
// which lie in memory at fixed places; lines that include them are among the pieces.
#include "fuzz/low_bytes.h"
#include "qzparam.h"
#include "qzref.h"
#include "qzstring.h"

#include <algorithm>

namespace {

constexpr char kNextFile = '\x1D';
constexpr std::size_t kFiles = 4, kRoom = 256;
constexpr std::size_t kFirst = 0x70000000; // above what other targets use

std::string path_of(std::size_t file) {
    return "fmem::" + std::to_string(kFirst + file * kRoom) + "," + std::to_string(kRoom);
}

std::string include(std::size_t file) { return "#include \"" + path_of(file) + "\"\n"; }

std::vector<std::string> seeds() {
    return {"[\\]\na=i1\n" + include(1) + "b=i2\n" + kNextFile + "[\\s]\nc=sx\n", include(0) + "v=i1\n",
            include(1) + kNextFile + include(2) + kNextFile + include(3) + kNextFile + include(0) +
                "[\\deep]\nv=x00FF\n",
            "#include \"missing.ini\"\n#include\n#include \"\n#other\n#include \".\\x.ini\"\n[\\]\nv=R1.5\n"};
}

std::vector<std::string> pieces() {
    std::vector<std::string> all = {"[\\s]\n",     "[",  "]",   "v=i1\n", "=",
                                    "#include ",   "\"", "\n",  "\r\n",   "|",
                                    ";",           "\t", ".\\", "fmem::", std::string(1, kNextFile),
                                    "x=t1,2,3,4\n"};
    for (std::size_t file = 0; file < kFiles; ++file)
        all.push_back(include(file));
    return all;
}

char* files() {
    static char* const memory = static_cast<char*>(VirtualAlloc(
        reinterpret_cast<void*>(kFirst), kFiles * kRoom, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    fuzz::require(memory != nullptr, "the place of the files is taken");
    return memory;
}

void run(const std::string& input) {
    char* const memory = files();
    std::memset(memory, '\n', kFiles * kRoom);
    std::size_t at = 0;
    for (std::size_t file = 0; file < kFiles && at <= input.size(); ++file) {
        const std::size_t end = std::min(input.find(kNextFile, at), input.size());
        std::memcpy(memory + file * kRoom, input.data() + at, std::min(end - at, kRoom));
        at = end + 1;
    }
    const auto tree = CQZRef<IParam>::Adopt(new_MemParam());
    const std::string path = path_of(0);
    fuzz::require(Param_IniFile2Param(std::wstring(path.begin(), path.end()).c_str(), tree.Get()) == 1,
                  "not read");
    CXString text;
    fuzz::require(Param_Param2String(tree.Get(), text) == 1, "not written");
}

} // namespace

// As many as 10000 includes are followed, each of which reads a file anew.
const fuzz::Target fuzz::kInclude{.name = "include",
                                  .run = run,
                                  .seeds = seeds,
                                  .pieces = pieces,
                                  .longest = kFiles * kRoom,
                                  .most_memory = 1ULL << 30};
