#include "core/heap_manager.h"

#include <mutex>
#include <new>
#include <vector>

namespace qzr {

namespace {

constexpr unsigned long long kDefaultHeapHint = 4096;

// Heaps may appear between the question for their number and the one for their handles, so ask until all fit.
void switch_process_heaps() {
    std::vector<HANDLE> heaps(64);
    DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    while (count > heaps.size()) {
        heaps.resize(count + 16);
        count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    }
    heaps.resize(count);
    for (const HANDLE heap : heaps)
        use_low_fragmentation(heap);
}

unsigned current_budget() {
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof status;
    GlobalMemoryStatusEx(&status);
    return memory_budget(status.ullAvailPageFile, status.ullAvailPhys);
}

} // namespace

void use_low_fragmentation(HANDLE heap) noexcept {
    ULONG mode = 2;
    HeapSetInformation(heap, HeapCompatibilityInformation, &mode, sizeof mode);
}

HeapManager::HeapManager() {
    switch_process_heaps();
    default_heaps_[0] = new CHeap(*this, kDefaultHeapHint, true);
    budget_ = current_budget();
}

HeapManager::~HeapManager() {
    while (first_ != nullptr)
        delete static_cast<CHeap*>(first_);
}

CHeap* HeapManager::next_default_heap() noexcept {
    const std::lock_guard guard(lock_);
    if (next_default_ >= kDefaultHeaps) next_default_ = 0;
    return default_heaps_[next_default_++];
}

void HeapManager::link(CHeap& heap) noexcept {
    heap.next = first_;
    heap.prev = nullptr;
    if (first_ != nullptr) first_->prev = &heap;
    first_ = &heap;
    ++count_;
}

void HeapManager::unlink(CHeap& heap) noexcept {
    if (heap.prev != nullptr)
        heap.prev->next = heap.next;
    else
        first_ = heap.next;
    if (heap.next != nullptr) heap.next->prev = heap.prev;
    --count_;
}

bool HeapManager::ask_sink(unsigned attempt) { return sink_ != nullptr && sink_->OnLowMemory(attempt) != 0; }

bool HeapManager::give_back_recycled() noexcept { return recycled_ != nullptr && recycled_->give_back(); }

void HeapManager::install_sink(ILowMemoryNotifySink* sink) {
    const std::lock_guard guard(lock_);
    if (sink_ != nullptr) throw CXException(QZERR_INTERFACE);
    sink_ = sink;
}

} // namespace qzr
