// A program that does not need the library to start: it loads and unloads modules again and again and looks
// for what stays behind.
//
//   unload MODULE [moved | plugin | late | hooks]
//
// moved   the module must lie elsewhere than its file prefers
// plugin  the module is a plug-in, which brings the library along
// late    the module is called when the process ends, after the library; what it says is the program's output
// hooks   the module patches the imports of others, which must be whole again when it is gone
#include "qzheap.h"
#include "qzobject.h"

#include "plugins/late_calls.h"
#include "support/image_imports.h"
#include "support/open_handles.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int kRounds = 20;

void require(bool ok, const char* what) {
    if (ok) return;
    std::printf("failed: %s (last error %lu)\n", what, GetLastError());
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), 1);
}

template <class Function>
Function* export_of(HMODULE module, const char* name) {
    auto* const address = reinterpret_cast<void*>(GetProcAddress(module, name));
    require(address != nullptr, name);
    return reinterpret_cast<Function*>(address);
}

using Create = int(const char*, IQZUnknown*, const std::type_info&, IQZUnknown**);

// The library's own objects are used and given back, but for a heap that is forgotten with a block in it.
void use_library(HMODULE library) {
    auto* const create = export_of<Create>(library, "CreateObjectC");
    IQZUnknown* first = nullptr;
    IQZUnknown* second = nullptr;
    require(create("CLSID_OFSERVICECONTAINER", nullptr, typeid(IQZServiceContainer), &first) == 1,
            "a container");
    require(create("CLSID_OFSERVICECONTAINER", nullptr, typeid(IQZUnknown), &second) == 1, "another one");
    auto* const container = static_cast<IQZServiceContainer*>(first);
    char name[] = "service a";
    for (; name[8] <= 'z'; ++name[8])
        require(container->AddService(name, second) == 1, "a service");
    require(second->Release() == 26, "the services are counted");
    require(container->Release() == 0, "the container goes");
    require(create("nobody", nullptr, typeid(IQZUnknown), &first) == 0, "unknown names are refused");
    export_of<IHeap*(unsigned long long)>(library, "_Z14new_MemoryHeapy")(0)->Alloc(1000);
}

void use_plugin(HMODULE) {
    const HMODULE library = GetModuleHandleA("qzrcore.dll");
    require(library != nullptr, "the plug-in brings the library");
    IQZUnknown* pair = nullptr;
    auto* const create = export_of<Create>(library, "CreateObjectC");
    require(create("SamplePluginPair", nullptr, typeid(IPersistXStream), &pair) == 1,
            "an object of the plug-in");
    require(pair->Release() == 0, "the object goes");
}

struct Traces {
    unsigned handles;
    DWORD heaps;
};

Traces traces() {
    std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr) + 8);
    heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    for (const HANDLE heap : heaps)
        require(HeapValidate(heap, 0, nullptr) != 0, "the heaps are sound");
    Traces found = {};
    found.handles = open_handles(0x4000);
    found.heaps = static_cast<DWORD>(heaps.size());
    return found;
}

void load_and_unload(const char* path, void (*use)(HMODULE)) {
    const HMODULE module = LoadLibraryA(path);
    require(module != nullptr, "the module loads");
    use(module);
    require(FreeLibrary(module) != 0, "the module unloads");
    require(GetModuleHandleA("qzrcore.dll") == nullptr, "the library is gone");
}

void repeat(const char* path, void (*use)(HMODULE)) {
    load_and_unload(path, use); // what the system sets up once
    load_and_unload(path, use);
    const Traces before = traces();
    for (int round = 0; round < kRounds; ++round)
        load_and_unload(path, use);
    const Traces after = traces();
    std::printf("handles %u, %u; heaps %lu, %lu\n", before.handles, after.handles, before.heaps, after.heaps);
    require(before.handles != 0, "handles are counted");
    require(after.handles <= before.handles, "no handle stays behind");
    require(after.heaps <= before.heaps, "no heap stays behind");
}

// The base address that the file asks for; the loaded image may have been told another one.
unsigned long long preferred_base(const char* path) {
    char found[MAX_PATH];
    require(SearchPathA(nullptr, path, nullptr, sizeof found, found, nullptr) != 0, "the file is found");
    std::ifstream file(found, std::ios::binary);
    std::string bytes(4096, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    IMAGE_DOS_HEADER dos;
    IMAGE_NT_HEADERS64 nt;
    std::memcpy(&dos, bytes.data(), sizeof dos);
    require(dos.e_lfanew > 0 && dos.e_lfanew + sizeof nt <= bytes.size(), "the file is an image");
    std::memcpy(&nt, bytes.data() + dos.e_lfanew, sizeof nt);
    return nt.OptionalHeader.ImageBase;
}

void require_moved(const char* path) {
    const HMODULE module = LoadLibraryA(path);
    require(module != nullptr, "the module loads");
    const unsigned long long preferred = preferred_base(path);
    std::printf("prefers %llx, lies at %p\n", preferred, static_cast<void*>(module));
    require(reinterpret_cast<unsigned long long>(module) != preferred, "the module was moved");
    FreeLibrary(module);
}

// The module comes first, so it goes last.
void call_late(const char* path) {
    const HMODULE late = LoadLibraryA(path);
    require(late != nullptr, "the module loads");
    require(GetModuleHandleA("qzrcore.dll") == nullptr, "without the library");
    const HMODULE library = LoadLibraryA("qzrcore.dll");
    require(library != nullptr, "the library loads");
    use_library(library);
    const LateCalls calls = {
        export_of<int(const char*)>(library, "_Z16UnregisterObjectPKc"),
        export_of<int(const char*)>(library, "_Z16IsRegisterObjectPKc"),
        export_of<int(const char*, const char*)>(library, "_Z14RegisterObjectPKcS0_"),
        export_of<int(const char*, HINSTANCE)>(library, "_Z14RegisterObjectPKcP11HINSTANCE__"),
        export_of<Create>(library, "CreateObjectC"),
    };
    export_of<void(const LateCalls&)>(late, "plugin_call_late")(calls);
    std::puts("ends");
    std::fflush(stdout);
}

constexpr char kHooked[] = "mfc140u.dll";

void hook(HMODULE library, HMODULE module) {
    const test::ImportSlots before = test::import_slots(module);
    require(export_of<int(HMODULE)>(library, "_Z19_InitResTranslationP11HINSTANCE__")(module) == 1, "hooks");
    require(test::import_slots(module) != before, "imports are patched");
}

void use_hooks(HMODULE library) { hook(library, GetModuleHandleA(kHooked)); }

// The hooked module goes before the library does.
void use_hooks_of_a_visitor(HMODULE library) {
    const HMODULE visitor = LoadLibraryA(kHooked);
    require(visitor != nullptr, "the visitor loads");
    hook(library, visitor);
    FreeLibrary(visitor);
}

void unload_with_hooks(const char* path) {
    const HMODULE hooked = LoadLibraryA(kHooked);
    require(hooked != nullptr, "the module to hook loads");
    const test::ImportSlots before = test::import_slots(hooked);
    repeat(path, use_hooks);
    require(test::import_slots(hooked) == before, "the imports are those of before");
    FreeLibrary(hooked);
    repeat(path, use_hooks_of_a_visitor);
}

} // namespace

int main(int argc, char** argv) {
    require(argc >= 2, "usage: unload MODULE [moved | plugin | late | hooks]");
    const std::string mode = argc > 2 ? argv[2] : "";
    if (mode == "late") {
        call_late(argv[1]);
        return 0;
    }
    if (mode == "hooks") {
        unload_with_hooks(argv[1]);
        return 0;
    }
    if (mode == "moved") require_moved(argv[1]);
    repeat(argv[1], mode == "plugin" ? use_plugin : use_library);
    std::puts("nothing stayed behind");
    return 0;
}
