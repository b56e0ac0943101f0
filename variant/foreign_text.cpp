#include "variant/foreign_text.h"

#include "core/readable_memory.h"
#include "core/windows_lean.h"

#include <cstdint>
#include <cstring>

namespace qzr {

namespace {

// The system does the reading: another thread may take the memory away after it was asked for.
std::size_t copy_readable(const void* address, char* buffer, std::size_t wanted) {
    const std::size_t count = readable_bytes(address, wanted);
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
