// The exported functions around heaps.
#include "core/library.h"
#include "qzexception.h"
#include "qzheap.h"

#include <new>

int __core_activity = 0;

IHeap* Mem_DefaultHeap(unsigned long long) { return qzr::library().heaps.next_default_heap(); }

IHeap* new_MemoryHeap(unsigned long long size) {
    auto* const heap = new (std::nothrow) qzr::CHeap(qzr::library().heaps, size, false);
    if (heap == nullptr) throw CXMemException();
    return heap;
}

void Mem_SetLowMemoryNotifySink(ILowMemoryNotifySink* sink) { qzr::library().heaps.install_sink(sink); }

void Get_CoreActivity(unsigned long long* bytes, unsigned int* ops) {
    const qzr::Activity& activity = qzr::library().heaps.activity();
    if (bytes != nullptr) *bytes = activity.bytes();
    if (ops != nullptr) *ops = static_cast<unsigned>(activity.operations());
}
