// Import tables: the input is an image as it lies in memory. Where it holds the eight bytes MARKMARK it gets
// the address of a function that is hooked.
#include "fuzz/low_bytes.h"
#include "qzsupp.h"
#include "supp/pe_imports.h"

#include <windows.h>

namespace {

constexpr std::size_t kRoom = 8192;
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
    return {image(0x40, 0x180, 0x200, 1), image(0x40, 0x180, 0x200, 2), image(0x80, 0x200, 0x300, 3)};
}

std::vector<std::string> pieces() {
    using namespace std::string_literals;
    return {kMark,           "MZ",          "PE\0\0"s,      "\x0B\x02"s, "\0\0\0\0\0\0\0\0"s,
            "\x80\x01\0\0"s, "\0\x02\0\0"s, "\xF8\x03\0\0"s};
}

void run(const std::string& input) {
    static fuzz::LowBytes memory(kRoom);
    static void* const function =
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32"), "MulDiv"));
    std::string bytes = input;
    for (std::size_t at = 0; (at = bytes.find(kMark, at)) != bytes.npos;)
        put(bytes, at, function);
    bytes.resize((bytes.size() + 7) / 8 * 8); // modules are aligned
    memory.put(bytes);
    char* const module = memory.data() + kRoom - bytes.size();
    qzr::Vector<void**> slots;
    qzr::find_import_slots(module, function, slots);
    for (void** const slot : slots) {
        const auto* const place = reinterpret_cast<const char*>(slot);
        fuzz::require(place >= module && place + sizeof slot <= module + bytes.size() && *slot == function,
                      "a slot that holds no such function");
    }
    auto* const handle = reinterpret_cast<HINSTANCE>(module);
    HookProc_Install(handle, "kernel32.dll", "MulDiv", reinterpret_cast<void*>(&run));
    for (void** const slot : slots)
        fuzz::require(*slot == reinterpret_cast<void*>(&run), "a slot was not changed");
    _DeInitResTranslation(handle);
    fuzz::require(std::memcmp(module, bytes.data(), bytes.size()) == 0, "the module came back changed");
}

} // namespace

const fuzz::Target fuzz::kImports{
    .name = "imports", .run = run, .seeds = seeds, .pieces = pieces, .longest = kRoom - 8};
