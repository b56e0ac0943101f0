// Paths of blocks of memory: the text behind "fmem::" may name anything. What cannot be read is a failure,
// and nothing is ever written.
#include "fuzz/low_bytes.h"
#include "qzfile.h"
#include "qzref.h"

namespace {

using fuzz::tried;

constexpr std::size_t kAddress = 0x71000000, kSize = 4096; // of a block that is there, one page and no more
constexpr char kBlock[] = "1895825408,4096";

std::vector<std::string> seeds() {
    return fuzz::parts("1895825408,10~1895829504,1~1895829500,8~0,0~-1,-1~1895825408,-1~1895825408~"
                       "99999999999,99999999999~,~..~4096,2147483647",
                       {kBlock});
}

std::vector<std::string> pieces() {
    return fuzz::parts("1895825408~1895829503~,~.~-~+~ ~0~9~2147483647~-2147483648~4294967295~4294967296~0x~"
                       "fmem::~\\",
                       {std::string(500, '1')});
}

char* block() {
    static char* const memory = [] {
        void* const reserved =
            VirtualAlloc(reinterpret_cast<void*>(kAddress), 0x10000, MEM_RESERVE, PAGE_NOACCESS);
        fuzz::require(reserved != nullptr, "the place of the block is taken");
        return static_cast<char*>(VirtualAlloc(reserved, kSize, MEM_COMMIT, PAGE_READWRITE));
    }();
    return memory;
}

void read(IXFile& file) {
    char buffer[300];
    tried([&] { fuzz::require(file.Read(buffer, 200) <= 200, "more was read than asked for"); });
    tried([&] {
        const int n = file.ReadLine(buffer, 100);
        fuzz::require(n >= 0 && n <= 100, "a line is too long");
    });
    tried([&] { file.ReadDouble(); });
    tried([&] { file.Seek(static_cast<unsigned>(-4), 2); });
    tried([&] { fuzz::require(file.GetPosition() <= file.GetSize(), "the position left the file"); });
    tried([&] { file.ReadWord(); });
    tried([&] { file.WriteDWord(7); });
}

void run(const std::string& input) {
    char* const memory = block();
    std::memset(memory, 'm', kSize);
    std::wstring path = L"fmem::";
    for (const char c : input)
        path += static_cast<wchar_t>(static_cast<unsigned char>(c));
    fuzz::require(Fio_IsMemFile(path.c_str()) == 1 && Fio_IsFileExist(path.c_str()) == 1,
                  "not taken for memory");
    tried([&] {
        FioFileInfo info{};
        Fio_GetFileInfo(path.c_str(), &info);
    });
    tried([&] { read(*CQZRef<IXFile>::Adopt(Fio_Open(path.c_str(), 0))); });
    tried([&] {
        const auto out = CQZRef<IXOutFile>::Adopt(Fio_OpenOut(path.c_str(), 0));
        out->Write("overwritten", 11);
        out->Commit();
    });
    if (input == kBlock) {
        const auto file = CQZRef<IXFile>::Adopt(Fio_Open(path.c_str(), 0));
        std::string all(kSize, '\0');
        fuzz::require(file->Read(all.data(), kSize) == kSize && all == std::string(kSize, 'm'),
                      "other bytes");
    }
    fuzz::require(std::string(memory, kSize) == std::string(kSize, 'm'), "the block was written to");
}

} // namespace

const fuzz::Target fuzz::kMemoryFile{
    .name = "memory_file", .run = run, .seeds = seeds, .pieces = pieces, .longest = 700};
