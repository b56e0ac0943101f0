// A private heap of the system as an object.
#pragma once

#include "core/win_handle.h"
#include "qzheap.h"

namespace qzr {

class HeapManager;

// What the manager strings its heaps together with.
struct QZ_LISTITEM {
    QZ_LISTITEM* next = nullptr;
    QZ_LISTITEM* prev = nullptr;
};

// Each block starts with a header of eight bytes, the address of the CHeap that made it; callers get the
// address behind it. So any heap object can free, measure and resize any block.
class CHeap final : public CQZUnknownImpl<IHeap>, public QZ_LISTITEM {
public:
    static constexpr unsigned kOverhead = 8;

    // size is a hint, which only the statistics see. A permanent heap answers 1 to AddRef and Release and
    // counts nothing. Throws CXMemException.
    CHeap(HeapManager& manager, unsigned long long size, bool permanent);
    ~CHeap() override;

    unsigned AddRef() override;
    unsigned Release() override;

    void* Alloc(unsigned long long size) override;
    int Free(void* p) override;
    void* Realloc(void* p, unsigned long long size) override;
    int GetSize(const void* p) override;
    int GetOverhead() override { return kOverhead; }

    // The same as Alloc, but the bytes may hold anything. Throws CXMemException.
    void* alloc_unzeroed(unsigned long long size);

    // A block of any heap with its bytes, made longer: in place where the system can. What is new may hold
    // anything. Throws CXMemException; the block then stays as it was.
    static void* stretch(void* p, unsigned long long size);

    // Frees a block of any heap. p must not be null.
    static int free_block(void* p) noexcept;

private:
    void* allocate(unsigned long long size, DWORD flags);

    HeapHandle m_hHeap;
    int m_bPermanent;
    HeapManager& m_manager;
};

} // namespace qzr
