#include "core/heap.h"

#include "core/heap_manager.h"
#include "qzexception.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <mutex>

namespace qzr {

namespace {

struct BlockHeader {
    CHeap* owner;
};
static_assert(sizeof(BlockHeader) == CHeap::kOverhead);

constexpr unsigned long long kLargestRequest =
    std::numeric_limits<unsigned long long>::max() - CHeap::kOverhead;

BlockHeader* header_of(void* p) { return static_cast<BlockHeader*>(p) - 1; }
const BlockHeader* header_of(const void* p) { return static_cast<const BlockHeader*>(p) - 1; }

HANDLE create_system_heap() {
    const HANDLE heap = HeapCreate(0, 0, 0);
    if (heap != nullptr) use_low_fragmentation(heap);
    return heap;
}

} // namespace

CHeap::CHeap(HeapManager& manager, unsigned long long size, bool permanent)
    : m_bPermanent(permanent), m_manager(manager) {
    const std::lock_guard guard(manager.lock());
    m_hHeap.reset(create_system_heap());
    if (!m_hHeap) m_hHeap.reset(manager.retry([] { return create_system_heap(); }));
    manager.activity().count_request(size);
    if (!m_hHeap) throw CXMemException();
    manager.link(*this);
}

CHeap::~CHeap() {
    const std::lock_guard guard(m_manager.lock());
    m_manager.unlink(*this);
    m_hHeap.reset();
}

unsigned CHeap::AddRef() { return m_bPermanent ? 1 : CQZUnknownImpl::AddRef(); }

unsigned CHeap::Release() { return m_bPermanent ? 1 : CQZUnknownImpl::Release(); }

void* CHeap::Alloc(unsigned long long size) { return allocate(size, HEAP_ZERO_MEMORY); }

void* CHeap::alloc_unzeroed(unsigned long long size) { return allocate(size, 0); }

// A size whose sum with the header would wrap is refused like any other that is too large.
void* CHeap::allocate(unsigned long long size, DWORD flags) {
    void* const block = m_manager.obtain(size + kOverhead, [&]() noexcept {
        return size <= kLargestRequest ? HeapAlloc(m_hHeap.get(), flags, size + kOverhead) : nullptr;
    });
    auto* const header = static_cast<BlockHeader*>(block);
    header->owner = this;
    return header + 1;
}

void* CHeap::stretch(void* p, unsigned long long size) {
    BlockHeader* const header = header_of(p);
    CHeap& owner = *header->owner;
    void* const stretched = owner.m_manager.obtain(size + kOverhead, [&]() noexcept {
        return size <= kLargestRequest ? HeapReAlloc(owner.m_hHeap.get(), 0, header, size + kOverhead)
                                       : nullptr;
    });
    owner.m_manager.activity().count_free();
    return static_cast<BlockHeader*>(stretched) + 1;
}

// No lock: the system heap has its own, and a block may be freed while another thread sits in a low-memory
// sink.
int CHeap::free_block(void* p) noexcept {
    BlockHeader* const header = header_of(p);
    CHeap& owner = *header->owner;
    owner.m_manager.activity().count_free();
    return HeapFree(owner.m_hHeap.get(), 0, header);
}

int CHeap::Free(void* p) { return free_block(p); }

// The copy is measured by the whole old block, header included, less a header: a block that shrinks, or grows
// by less than a header, comes out with zeroes in its last eight bytes. Callers rely on them.
void* CHeap::Realloc(void* p, unsigned long long size) {
    const std::lock_guard guard(m_manager.lock());
    BlockHeader* const header = header_of(p);
    CHeap& owner = *header->owner;
    void* const moved = owner.Alloc(size);
    const unsigned long long old_size = HeapSize(owner.m_hHeap.get(), 0, header);
    const unsigned long long measured = std::min(size, old_size);
    if (measured > kOverhead) std::memcpy(moved, p, measured - kOverhead);
    free_block(p);
    return moved;
}

// The system's size as a 32-bit number: blocks of 2 GiB and more show it negative.
int CHeap::GetSize(const void* p) {
    const BlockHeader* const header = header_of(p);
    const auto whole = static_cast<unsigned>(HeapSize(header->owner->m_hHeap.get(), 0, header));
    return static_cast<int>(whole - kOverhead);
}

} // namespace qzr
