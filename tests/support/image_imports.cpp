#include "support/image_imports.h"

namespace test {

namespace {

template <class T>
T* at(HMODULE module, unsigned long long offset) {
    return reinterpret_cast<T*>(reinterpret_cast<unsigned char*>(module) + offset);
}

const IMAGE_OPTIONAL_HEADER& optional_header(HMODULE module) {
    const auto offset = static_cast<unsigned>(at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew);
    return at<IMAGE_NT_HEADERS>(module, offset)->OptionalHeader;
}

} // namespace

ImportSlots import_slots(HMODULE module) {
    ImportSlots found;
    const auto& table = optional_header(module).DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (table.VirtualAddress == 0) return found;
    for (auto* from = at<IMAGE_IMPORT_DESCRIPTOR>(module, table.VirtualAddress); from->Name != 0; ++from)
        for (auto* slot = at<void*>(module, from->FirstThunk); *slot != nullptr; ++slot)
            found.emplace(slot, *slot);
    return found;
}

unsigned image_size(HMODULE module) { return optional_header(module).SizeOfImage; }

} // namespace test
