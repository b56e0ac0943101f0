#include "support/import_mock.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <windows.h>

namespace {

template <class T>
T* at(unsigned char* base, unsigned long long offset) {
    return reinterpret_cast<T*>(base + offset);
}

// The place in the import table that calls of the function go through; null when there is none.
void** find_slot(HMODULE module, const char* function) {
    auto* const base = reinterpret_cast<unsigned char*>(module);
    const auto* const dos = at<IMAGE_DOS_HEADER>(base, 0);
    const auto* const nt = at<IMAGE_NT_HEADERS>(base, static_cast<unsigned>(dos->e_lfanew));
    const auto& table = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* from = at<IMAGE_IMPORT_DESCRIPTOR>(base, table.VirtualAddress); from->Name != 0; ++from) {
        const auto* name = at<IMAGE_THUNK_DATA>(base, from->OriginalFirstThunk);
        auto* slot = at<void*>(base, from->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            const auto* const import = at<IMAGE_IMPORT_BY_NAME>(base, name->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(import->Name), function) == 0) return slot;
        }
    }
    return nullptr;
}

void write_slot(void** slot, void* function) {
    DWORD protection = 0;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
    *slot = function;
    VirtualProtect(slot, sizeof *slot, protection, &protection);
}

} // namespace

ImportMock::ImportMock(const char* module, const char* function, void* replacement) {
    const HMODULE handle = GetModuleHandleA(module);
    slot_ = handle != nullptr ? find_slot(handle, function) : nullptr;
    if (slot_ == nullptr) {
        std::fprintf(stderr, "%s does not import %s\n", module, function);
        std::abort();
    }
    original_ = *slot_;
    write_slot(slot_, replacement);
}

ImportMock::~ImportMock() { write_slot(slot_, original_); }
