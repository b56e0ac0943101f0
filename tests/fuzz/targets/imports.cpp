// Import tables: the input is what stands at the start of a module in memory, some pages of which are
// missing. Where it holds the eight bytes MARKMARK it gets the address of a function that is hooked.
#include "fuzz/low_bytes.h"
#include "qzsupp.h"
#include "supp/pe_imports.h"

#include <cstring>

#include <windows.h>

namespace {

constexpr char kMark[] = "MARKMARK";

template <class T>
void put(std::string& image, std::size_t at, const T& value) {
    image.replace(at, sizeof value, reinterpret_cast<const char*>(&value), sizeof value);
}

// One or two descriptors; their tables hold the function and another.
std::string image(unsigned header, unsigned descriptors, unsigned table, int count) {
    std::string bytes(0x400, '\0');
    IMAGE_DOS_HEADER dos{};
    dos.e_magic = IMAGE_DOS_SIGNATURE;
    dos.e_lfanew = static_cast<LONG>(header);
    IMAGE_NT_HEADERS64 nt{};
    nt.Signature = IMAGE_NT_SIGNATURE;
    nt.FileHeader.SizeOfOptionalHeader = sizeof nt.OptionalHeader;
    nt.OptionalHeader.Magic = IMAGE_NT_OPTIONAL_HDR64_MAGIC;
    nt.OptionalHeader.SizeOfImage = static_cast<DWORD>(bytes.size());
    nt.OptionalHeader.NumberOfRvaAndSizes = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
    nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress = descriptors;
    put(bytes, 0, dos);
    put(bytes, header, nt);
    for (int i = 0; i < count; ++i) {
        IMAGE_IMPORT_DESCRIPTOR descriptor{};
        descriptor.Name = 0x100;
        descriptor.FirstThunk = table + static_cast<unsigned>(i) * 32;
        put(bytes, descriptors + static_cast<unsigned>(i) * sizeof descriptor, descriptor);
        bytes.replace(descriptor.FirstThunk, 16, std::string(kMark) + "someones");
    }
    return bytes;
}

std::vector<std::string> seeds() {
    std::vector<std::string> all = {image(0x40, 0x180, 0x200, 1), image(0x40, 0x180, 0x200, 2),
                                    image(0x80, 0x200, 0x300, 3)};
    for (const DWORD page : {0u, 0x1000u, 0x4000u}) { // headers of a larger module; the rest is in its pages
        std::string headers = image(0x40, 0x180, 0x200, 1).substr(0, 0x180);
        auto& nt = *reinterpret_cast<IMAGE_NT_HEADERS64*>(&headers[0x40]);
        nt.OptionalHeader.SizeOfImage = 0x8000;
        nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress = page + 0x180;
        all.push_back(headers);
    }
    return all;
}

std::vector<std::string> pieces() {
    using namespace std::string_literals;
    return {kMark,           "MZ",          "PE\0\0"s,      "\x0B\x02"s, "\0\0\0\0\0\0\0\0"s,
            "\x80\x01\0\0"s, "\0\x02\0\0"s, "\xF8\x03\0\0"s};
}

std::string with_function(std::string bytes, void* function) {
    for (std::size_t at = 0; (at = bytes.find(kMark, at)) != bytes.npos;)
        put(bytes, at, function);
    return bytes;
}

// A module of many pages with unreadable memory behind them. Each holds descriptors, and a table for those of
// the page before. An input lies over the first one, and its bytes also say which of the others are missing.
class HoledModule {
public:
    HoledModule() : memory_(kSize) {
        std::string page = with_function(image(0x40, 0x180, 0x200, 2), function_);
        page.resize(kPage);
        for (std::size_t at = 0; at < kSize; at += kPage) {
            pages_ += page;
            for (const std::size_t table : {at + 0x190, at + 0x1A4})
                put(pages_, table, static_cast<DWORD>((at + kPage + 0x200) % kSize));
        }
    }

    void run(const std::string& input) {
        std::string bytes = with_function(input, function_);
        bytes += pages_.substr(bytes.size());
        std::memcpy(memory_.data(), bytes.data(), kSize);
        unsigned missing = 0;
        for (const char c : input)
            missing = missing * 31 + static_cast<unsigned char>(c);
        protect(missing, PAGE_NOACCESS);
        hook_and_restore();
        protect(missing, PAGE_READWRITE);
        fuzz::require(std::memcmp(memory_.data(), bytes.data(), kSize) == 0, "the module came back changed");
    }

private:
    static constexpr std::size_t kPage = 4096, kSize = 8 * kPage;

    void protect(unsigned pages, DWORD protection) {
        DWORD before = 0;
        for (std::size_t page = 1; page < kSize / kPage; ++page)
            if ((pages >> page & 1) != 0)
                VirtualProtect(memory_.data() + page * kPage, kPage, protection, &before);
    }

    void hook_and_restore() {
        void* const replacement = reinterpret_cast<void*>(&image);
        char* const module = memory_.data();
        qzr::Vector<void**> slots;
        qzr::find_import_slots(module, function_, slots);
        for (void** const slot : slots) {
            const auto* const place = reinterpret_cast<const char*>(slot);
            fuzz::require(place >= module && place + sizeof slot <= module + kSize && *slot == function_,
                          "a slot that holds no such function");
        }
        auto* const handle = reinterpret_cast<HINSTANCE>(module);
        HookProc_Install(handle, "kernel32.dll", "MulDiv", replacement);
        for (void** const slot : slots)
            fuzz::require(*slot == replacement, "a slot was not changed");
        _DeInitResTranslation(handle);
    }

    void* const function_ = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32"), "MulDiv"));
    fuzz::LowBytes memory_;
    std::string pages_;
};

void run(const std::string& input) {
    static HoledModule module;
    module.run(input);
}

} // namespace

const fuzz::Target fuzz::kImports{
    .name = "imports", .run = run, .seeds = seeds, .pieces = pieces, .longest = 8192};
