#include "core/readable_memory.h"

#include "core/windows_lean.h"

#include <algorithm>
#include <cstdint>

namespace qzr {

MemoryRegion readable_region(const void* address) noexcept {
    MEMORY_BASIC_INFORMATION region;
    if (VirtualQuery(address, &region, sizeof region) == 0 || region.State != MEM_COMMIT) return {};
    constexpr DWORD kUnreadable = PAGE_NOACCESS | PAGE_GUARD | PAGE_EXECUTE;
    if ((region.Protect & kUnreadable) != 0) return {};
    return {static_cast<const std::byte*>(region.BaseAddress) + region.RegionSize, region.AllocationBase};
}

std::size_t readable_bytes(const void* address, std::size_t most) noexcept {
    const auto start = reinterpret_cast<std::uintptr_t>(address);
    std::size_t found = 0;
    while (found < most) {
        const std::byte* const end = readable_region(reinterpret_cast<const void*>(start + found)).end;
        if (end == nullptr) break;
        found = reinterpret_cast<std::uintptr_t>(end) - start;
    }
    return std::min(found, most);
}

} // namespace qzr
