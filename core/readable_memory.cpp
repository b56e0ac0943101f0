#include "core/readable_memory.h"

#include "core/windows_lean.h"

#include <algorithm>
#include <cstdint>

namespace qzr {

namespace {

// As far as the region goes that the address lies in.
std::size_t readable_in_region(const void* address) noexcept {
    MEMORY_BASIC_INFORMATION region;
    if (VirtualQuery(address, &region, sizeof region) == 0 || region.State != MEM_COMMIT) return 0;
    constexpr DWORD kUnreadable = PAGE_NOACCESS | PAGE_GUARD | PAGE_EXECUTE;
    if ((region.Protect & kUnreadable) != 0) return 0;
    const auto start = reinterpret_cast<std::uintptr_t>(region.BaseAddress);
    return start + region.RegionSize - reinterpret_cast<std::uintptr_t>(address);
}

} // namespace

std::size_t readable_bytes(const void* address, std::size_t wanted) noexcept {
    const auto start = reinterpret_cast<std::uintptr_t>(address);
    std::size_t found = 0;
    while (found < wanted) {
        const std::size_t more = readable_in_region(reinterpret_cast<const void*>(start + found));
        if (more == 0) break;
        found += std::min(more, wanted - found);
    }
    return found;
}

} // namespace qzr
