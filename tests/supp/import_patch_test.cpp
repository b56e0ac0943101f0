// Redirected imports, counted slot by slot.
#include "qzsupp.h"

#include "support/image_imports.h"
#include "support/import_mock.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using test::import_slots;
using test::ImportSlots;
using MulDivFunction = int(int, int, int);

int WINAPI add_three(int a, int b, int c) { return a + b + c; }
int WINAPI answer_seven(int, int, int) { return 7; }
void* const kAddThree = reinterpret_cast<void*>(&add_three);

void* system_mul_div() {
    return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "MulDiv"));
}

class Module {
public:
    explicit Module(const char* name) : handle_(LoadLibraryA(name)) {
        if (handle_ == nullptr) throw std::runtime_error(std::string(name) + " does not load");
    }
    ~Module() { FreeLibrary(handle_); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    HMODULE get() const { return handle_; }
    int call(const char* function, int a, int b, int c) const {
        return reinterpret_cast<MulDivFunction*>(reinterpret_cast<void*>(GetProcAddress(handle_, function)))(
            a, b, c);
    }

private:
    HMODULE handle_;
};

// Slots that differ, with what they hold now.
ImportSlots changes(const ImportSlots& before, const ImportSlots& after) {
    ImportSlots changed;
    for (const auto& [slot, function] : after)
        if (before.at(slot) != function) changed.emplace(slot, function);
    return changed;
}

TEST(ImportPatch, EveryImportOfTheFunctionIsRedirectedAndRestored) {
    const Module target("hook_target.dll");
    const HMODULE others[] = {GetModuleHandleA(nullptr), GetModuleHandleA("qzrcore.dll"),
                              GetModuleHandleA("hook_forwarder.dll"), GetModuleHandleA("kernel32.dll")};
    std::vector<ImportSlots> others_before;
    for (const HMODULE other : others)
        others_before.push_back(import_slots(other));
    const ImportSlots before = import_slots(target.get());
    ASSERT_EQ(target.call("target_mul_div", 6, 8, 2), 24);
    ASSERT_EQ(target.call("target_forwarded_mul_div", 6, 8, 2), 24);

    ASSERT_EQ(HookProc_Install(target.get(), "KERNEL32", "MulDiv", kAddThree), system_mul_div());

    EXPECT_EQ(target.call("target_mul_div", 6, 8, 2), 16);
    EXPECT_EQ(target.call("target_forwarded_mul_div", 6, 8, 2), 16);
    const ImportSlots changed = changes(before, import_slots(target.get()));
    EXPECT_EQ(changed.size(), 2u);
    for (const auto& [slot, function] : changed) {
        EXPECT_EQ(before.at(slot), system_mul_div());
        EXPECT_EQ(function, kAddThree);
        MEMORY_BASIC_INFORMATION now;
        MEMORY_BASIC_INFORMATION neighbour;
        VirtualQuery(slot, &now, sizeof now);
        VirtualQuery(before.rbegin()->first, &neighbour, sizeof neighbour);
        EXPECT_EQ(now.Protect, neighbour.Protect);
    }
    for (std::size_t i = 0; i < std::size(others); ++i)
        EXPECT_EQ(changes(others_before[i], import_slots(others[i])), ImportSlots{}) << i;

    // A second time nothing holds the function any more; its address is the answer all the same.
    EXPECT_EQ(HookProc_Install(target.get(), "KERNEL32", "MulDiv", nullptr), system_mul_div());
    EXPECT_EQ(changes(before, import_slots(target.get())), changed);

    EXPECT_EQ(HookProc_UnInstall(target.get(), "KERNEL32", "MulDiv"), nullptr); // restores nothing
    EXPECT_EQ(changes(before, import_slots(target.get())), changed);

    EXPECT_EQ(_DeInitResTranslation(target.get()), 1);
    EXPECT_EQ(changes(before, import_slots(target.get())), ImportSlots{});
    EXPECT_EQ(target.call("target_mul_div", 6, 8, 2), 24);
    EXPECT_EQ(_DeInitResTranslation(target.get()), 1); // nothing left to do
    EXPECT_EQ(_DeInitResTranslation(nullptr), 0);
}

TEST(ImportPatch, ASlotThatSomebodyElseChangedIsLeftToHim) {
    const Module target("hook_target.dll");
    const ImportSlots before = import_slots(target.get());
    HookProc_Install(target.get(), "KERNEL32", "MulDiv", kAddThree);
    {
        const ImportMock mock("hook_target.dll", "MulDiv", reinterpret_cast<void*>(&answer_seven));
        _DeInitResTranslation(target.get());
        EXPECT_EQ(target.call("target_mul_div", 6, 8, 2), 7);
        EXPECT_EQ(target.call("target_forwarded_mul_div", 6, 8, 2), 24);
    }
    // He has put back what he found: now it can be restored.
    EXPECT_EQ(target.call("target_mul_div", 6, 8, 2), 16);
    _DeInitResTranslation(target.get());
    EXPECT_EQ(changes(before, import_slots(target.get())), ImportSlots{});
}

TEST(ImportPatch, AModuleThatWentAndCameBackIsPatchedAnew) {
    for (int round = 0; round < 3; ++round) {
        const Module target("hook_target.dll");
        EXPECT_EQ(target.call("target_mul_div", 6, 8, 2), 24) << round;
        HookProc_Install(target.get(), "KERNEL32", "MulDiv", kAddThree);
        EXPECT_EQ(target.call("target_mul_div", 6, 8, 2), 16) << round;
    }
    const Module target("hook_target.dll");
    _DeInitResTranslation(target.get()); // knows of patches here, which are gone
    EXPECT_EQ(target.call("target_mul_div", 6, 8, 2), 24);
}

TEST(ImportPatch, WhatCannotBePatchedIsAnswered) {
    const Module target("hook_target.dll");
    const Module bare("hook_no_imports.dll");
    const HMODULE library = GetModuleHandleA("qzrcore.dll");
    const auto marked = reinterpret_cast<HMODULE>(reinterpret_cast<unsigned long long>(target.get()) | 1);
    const std::string no_image(4096, 'x');
    const struct {
        const char* name;
        HMODULE module;
        const char* exporter;
        const char* function;
        void* answer;
    } rows[] = {
        {"exporter not loaded", target.get(), "no_such_module", "MulDiv", nullptr},
        {"no such function", target.get(), "KERNEL32", "NoSuchFunction", nullptr},
        {"no imports", bare.get(), "KERNEL32", "MulDiv", system_mul_div()},
        {"not imported", target.get(), "KERNEL32", "GetACP",
         reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "GetACP"))},
        {"the library itself", library, "KERNEL32", "VirtualProtect",
         reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "VirtualProtect"))},
        {"marked as mapped data", marked, "KERNEL32", "MulDiv", nullptr},
        {"no image", reinterpret_cast<HMODULE>(const_cast<char*>(no_image.data())), "KERNEL32", "MulDiv",
         nullptr},
        {"no memory", reinterpret_cast<HMODULE>(0x10000), "KERNEL32", "MulDiv", nullptr},
    };
    const ImportSlots target_before = import_slots(target.get());
    const ImportSlots library_before = import_slots(library);
    for (const auto& row : rows)
        EXPECT_EQ(HookProc_Install(row.module, row.exporter, row.function, kAddThree), row.answer)
            << row.name;
    EXPECT_EQ(changes(target_before, import_slots(target.get())), ImportSlots{});
    EXPECT_EQ(changes(library_before, import_slots(library)), ImportSlots{});

    void* const none = HookProc_Install(nullptr, "KERNEL32", "MulDiv", kAddThree);
    ASSERT_NE(none, nullptr);
    EXPECT_EQ(reinterpret_cast<int (*)()>(none)(), 0);
}

int writes_until_failure;
decltype(&VirtualProtect) system_virtual_protect;
BOOL WINAPI failing_virtual_protect(void* p, SIZE_T n, DWORD protection, DWORD* old) {
    // Two calls for a slot: one opens it, one puts the protection back.
    return writes_until_failure-- > 0 ? system_virtual_protect(p, n, protection, old) : FALSE;
}

TEST(ImportPatch, ASlotThatCannotBeWrittenEndsThePatching) {
    const Module target("hook_target.dll");
    const ImportSlots before = import_slots(target.get());
    for (const int slots : {0, 1}) {
        SCOPED_TRACE(slots);
        writes_until_failure = 2 * slots;
        {
            const ImportMock mock("qzrcore.dll", "VirtualProtect",
                                  reinterpret_cast<void*>(&failing_virtual_protect));
            system_virtual_protect = mock.original<decltype(VirtualProtect)>();
            EXPECT_EQ(HookProc_Install(target.get(), "KERNEL32", "MulDiv", kAddThree), nullptr);
        }
        EXPECT_EQ(changes(before, import_slots(target.get())).size(), static_cast<std::size_t>(slots));
        _DeInitResTranslation(target.get());
        EXPECT_EQ(changes(before, import_slots(target.get())), ImportSlots{});
    }
}

// A copy of a loaded module between pages that cannot be touched.
class ImageCopy {
public:
    explicit ImageCopy(HMODULE module) : size_(test::image_size(module)) {
        reserved_ = static_cast<char*>(VirtualAlloc(nullptr, size_ + kFence, MEM_RESERVE, PAGE_NOACCESS));
        VirtualAlloc(reserved_, size_, MEM_COMMIT, PAGE_READWRITE);
        original_.resize(size_);
        SIZE_T copied = 0;
        for (unsigned page = 0; page < size_; page += kPage)
            ReadProcessMemory(GetCurrentProcess(), reinterpret_cast<char*>(module) + page, &original_[page],
                              std::min(kPage, size_ - page), &copied);
        reset();
    }
    ~ImageCopy() { VirtualFree(reserved_, 0, MEM_RELEASE); }
    ImageCopy(const ImageCopy&) = delete;
    ImageCopy& operator=(const ImageCopy&) = delete;

    void reset() { std::memcpy(reserved_, original_.data(), size_); }
    HMODULE module() const { return reinterpret_cast<HMODULE>(reserved_); }
    char& operator[](std::size_t i) { return reserved_[i]; }
    std::string bytes() const { return {reserved_, size_}; }

private:
    static constexpr unsigned kPage = 4096;
    static constexpr unsigned kFence = 65536;
    unsigned size_;
    char* reserved_;
    std::string original_;
};

// The headers claim the memory behind the module, where a slot lies in wait.
TEST(ImportPatch, NothingOutsideTheModuleIsTouched) {
    constexpr std::size_t kGranularity = 65536;
    const Module target("hook_target.dll");
    ImageCopy image(target.get());
    const std::string bytes = image.bytes();
    const std::size_t size = (bytes.size() + kGranularity - 1) / kGranularity * kGranularity;
    void* const place = VirtualAlloc(nullptr, size + kGranularity, MEM_RESERVE, PAGE_NOACCESS);
    VirtualFree(place, 0, MEM_RELEASE);
    auto* const base =
        static_cast<char*>(VirtualAlloc(place, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    auto** const slots = static_cast<void**>(
        VirtualAlloc(base + size, kGranularity, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    ASSERT_EQ(static_cast<void*>(slots), base + size);
    std::memcpy(base, bytes.data(), bytes.size());
    auto& headers =
        *reinterpret_cast<IMAGE_NT_HEADERS*>(base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
    headers.OptionalHeader.SizeOfImage = static_cast<DWORD>(size + kGranularity);
    const auto imports = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + imports)->FirstThunk = static_cast<DWORD>(size);
    slots[0] = system_mul_div();
    EXPECT_EQ(HookProc_Install(reinterpret_cast<HINSTANCE>(base), "KERNEL32", "MulDiv", kAddThree), nullptr);
    EXPECT_EQ(slots[0], system_mul_div());
    VirtualFree(slots, 0, MEM_RELEASE);
    VirtualFree(base, 0, MEM_RELEASE);
}

struct Headers {
    IMAGE_DOS_HEADER& dos;
    IMAGE_NT_HEADERS& nt;
    IMAGE_IMPORT_DESCRIPTOR& first;
};

TEST(ImportPatch, HeadersOfAnotherLayoutAreRefused) {
    const Module target("hook_target.dll");
    const struct {
        const char* name;
        void (*damage)(Headers);
    } rows[] = {
        {"headers before the image", [](Headers h) { h.dos.e_lfanew = -8; }},
        {"headers behind the end", [](Headers h) { h.dos.e_lfanew = 0x7FFFFFF0; }},
        {"not of 64 bits", [](Headers h) { h.nt.OptionalHeader.Magic = IMAGE_NT_OPTIONAL_HDR32_MAGIC; }},
        {"a table that is nowhere", [](Headers h) { h.first.FirstThunk = 0; }},
        {"a table off its alignment", [](Headers h) { h.first.FirstThunk += 4; }},
        {"signature", [](Headers h) { h.nt.Signature ^= 0x10000; }},
        {"optional header of 224 bytes", [](Headers h) { h.nt.FileHeader.SizeOfOptionalHeader = 224; }},
        {"no directories", [](Headers h) { h.nt.OptionalHeader.NumberOfRvaAndSizes = 1; }},
        {"no import directory",
         [](Headers h) {
             h.nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress = 0;
         }},
        {"import directory behind the end",
         [](Headers h) {
             h.nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress = 0x7FFFFFF0;
         }},
        {"a size that ends before the imports", [](Headers h) { h.nt.OptionalHeader.SizeOfImage = 0x1000; }},
        {"a size of more than there is, and imports there",
         [](Headers h) {
             auto& directory = h.nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
             directory = h.nt.OptionalHeader.SizeOfImage - 8;
             h.nt.OptionalHeader.SizeOfImage = 0xFFFFF000;
         }},
    };
    ImageCopy copy(target.get());
    for (const auto& row : rows) {
        copy.reset();
        auto& dos = *reinterpret_cast<IMAGE_DOS_HEADER*>(&copy[0]);
        auto& nt = *reinterpret_cast<IMAGE_NT_HEADERS*>(&copy[static_cast<std::size_t>(dos.e_lfanew)]);
        const auto imports = nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
        row.damage({dos, nt, *reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(&copy[imports])});
        const std::string before = copy.bytes();
        EXPECT_EQ(HookProc_Install(copy.module(), "KERNEL32", "MulDiv", kAddThree), nullptr) << row.name;
        EXPECT_TRUE(copy.bytes() == before) << row.name;
    }
}

} // namespace
