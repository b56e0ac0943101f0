#include "system/low_memory.h"

#include "qzexport.h" // keeps min and max out of the system header
#include "system/failure.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace tool {

namespace {

constexpr std::uintptr_t kLowest = 0x01000000;
constexpr std::uintptr_t kLimit = 0x7FFF0000;

/// @return a place for the block; null without one
void* reserve_low(std::size_t size) {
    for (std::uintptr_t at = kLowest; at < kLimit && size < kLimit - at;) {
        MEMORY_BASIC_INFORMATION region = {};
        if (VirtualQuery(reinterpret_cast<void*>(at), &region, sizeof region) == 0) return nullptr;
        const auto end = reinterpret_cast<std::uintptr_t>(region.BaseAddress) + region.RegionSize;
        if (region.State == MEM_FREE && end - at >= size) {
            void* block =
                VirtualAlloc(reinterpret_cast<void*>(at), size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
            if (block != nullptr) return block;
        }
        constexpr std::uintptr_t kGranularity = 0x10000;
        at = std::max((end + kGranularity - 1) & ~(kGranularity - 1), at + kGranularity);
    }
    return nullptr;
}

} // namespace

LowMemory::LowMemory(std::string_view bytes) : size_(bytes.size()) {
    block_ = reserve_low(std::max<std::size_t>(size_, 1));
    if (block_ == nullptr)
        fail("there is no room for a block of " + std::to_string(size_) + " bytes below 2 GiB");
    std::memcpy(block_, bytes.data(), size_);
}

LowMemory::~LowMemory() { VirtualFree(block_, 0, MEM_RELEASE); }

std::wstring LowMemory::path() const {
    return L"fmem::" + std::to_wstring(reinterpret_cast<std::uintptr_t>(block_)) + L"," +
           std::to_wstring(size_);
}

} // namespace tool
