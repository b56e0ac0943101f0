#include "variant/foreign_text.h"

#include "core/windows_lean.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace qzr {

namespace {

// Bytes that may be read from address on, as far as the region goes that it lies in.
std::size_t readable_bytes(const void* address) {
    MEMORY_BASIC_INFORMATION region;
    if (VirtualQuery(address, &region, sizeof region) == 0 || region.State != MEM_COMMIT) return 0;
    constexpr DWORD kUnreadable = PAGE_NOACCESS | PAGE_GUARD | PAGE_EXECUTE;
    if ((region.Protect & kUnreadable) != 0) return 0;
    const auto start = reinterpret_cast<std::uintptr_t>(region.BaseAddress);
    return start + region.RegionSize - reinterpret_cast<std::uintptr_t>(address);
}

// The system does the reading: another thread may take the memory away after it was asked for.
std::size_t copy_readable(const void* address, char* buffer, std::size_t wanted) {
    const std::size_t count = std::min(wanted, readable_bytes(address));
    SIZE_T copied = 0;
    if (count == 0 || !ReadProcessMemory(GetCurrentProcess(), address, buffer, count, &copied)) return 0;
    return copied;
}

} // namespace

std::size_t copy_foreign_text(unsigned long long address, char* buffer, std::size_t size) {
    std::size_t length = 0;
    while (length + 1 < size) {
        const void* from = reinterpret_cast<const void*>(static_cast<std::uintptr_t>(address + length));
        const std::size_t copied = copy_readable(from, buffer + length, size - 1 - length);
        if (copied == 0) break;
        if (const void* end = std::memchr(buffer + length, 0, copied)) {
            length = static_cast<std::size_t>(static_cast<const char*>(end) - buffer);
            break;
        }
        length += copied;
    }
    buffer[length] = 0;
    return length;
}

} // namespace qzr
