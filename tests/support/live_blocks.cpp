#include "support/live_blocks.h"

#include "qzheap.h"

#include <windows.h>

#include <vector>

namespace {

bool holds(HANDLE heap, const void* address) {
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heap, &entry))
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 && entry.lpData == address) return true;
    return false;
}

// The system heap that the default heap's blocks come from; a block begins with the library's own header.
HANDLE system_heap_of_default_heap() {
    IHeap* const heap = Mem_DefaultHeap();
    auto* const block = static_cast<char*>(heap->Alloc(24));
    std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr) + 8);
    heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    HANDLE found = nullptr;
    for (const HANDLE candidate : heaps)
        if (holds(candidate, block - heap->GetOverhead())) found = candidate;
    heap->Free(block);
    return found;
}

} // namespace

std::size_t live_blocks() {
    static const HANDLE heap = system_heap_of_default_heap();
    std::size_t count = 0;
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heap, &entry))
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) ++count;
    return count;
}
