/// @file
/// Private heaps, the low-memory sink, activity counters.
///
/// **Threads.** Heaps may be used by any number of threads at once; their reference counts may not.
#pragma once

#include "qzunknown.h"

/// A private heap. Blocks carry a hidden header of GetOverhead() bytes that names their heap, so any heap
/// object may be asked to free, measure or resize any block. Blocks are aligned to 8 bytes, not to 16. Null
/// pointers and blocks of other allocators must not be passed in.
class IHeap : public IQZUnknown {
public:
    /// @param size bytes; 0 gives a valid, distinct block
    /// @return the block, zero-filled. Throws CXMemException when memory is refused and the low-memory sink
    ///         gives up (or there is none).
    virtual void* Alloc(unsigned long long size) = 0;

    /// Frees a block. @return non-zero on success
    virtual int Free(void* p) = 0;

    /// Moves a block to a new one of another size (always another address) and frees the old one.
    ///
    /// min(size, old size + 8) - 8 bytes are copied, so of a block that shrinks, or grows by less than 8, the
    /// last bytes come out zero (100 to 50 keeps 42 of them). Callers rely on the zeroes.
    /// @return the new block. Throws CXMemException; the old block is then untouched.
    virtual void* Realloc(void* p, unsigned long long size) = 0;

    /// @return the usable size of a block in bytes, cut to a signed 32-bit number
    virtual int GetSize(const void* p) = 0;

    /// @return the bytes of bookkeeping in front of each block: 8
    virtual int GetOverhead() = 0;

protected:
    ~IHeap() = default;
};

/// An application's helper when memory runs out.
class ILowMemoryNotifySink {
public:
    /// Called with the heap lock held: it must not wait for another thread that allocates. The call that ran
    /// out of memory is still under way, so strings, trees and other objects that it works on must stay as
    /// they are.
    ///
    /// A request was refused twice by then, the second time without the blocks that the library keeps to use
    /// again. Those that the sink adds to them, by letting go of texts, are given back after each call.
    /// @param attempt 0 at the first refusal of a request, then one more each time
    /// @return non-zero when memory was released and the request is to be tried again; after 0 it is tried
    ///         once more only if blocks were given back
    virtual int OnLowMemory(unsigned attempt) = 0;

protected:
    ~ILowMemoryNotifySink() = default;
};

/// @param unused not looked at
/// @return the library's permanent heap, without a reference; its AddRef and Release answer 1 and count
///         nothing. All memory inside variants, blobs and strings comes from it.
QZR_API IHeap* Mem_DefaultHeap(unsigned long long unused = 0);

/// Makes a private heap.
/// @param size a hint in bytes; only added to the activity statistics
/// @return the heap, with one reference for the caller; its last Release frees every block still in it.
///         Throws CXMemException.
QZR_API IHeap* new_MemoryHeap(unsigned long long size);

/// Installs the sink, once for the life of the process; it is not counted or copied.
/// Throws CXException QZERR_INTERFACE when one is installed already, also for null.
QZR_API void Mem_SetLowMemoryNotifySink(ILowMemoryNotifySink* sink);

/// Copies the cumulative counters: bytes requested (headers included), and the low 32 bits of the number of
/// allocations, frees, reallocations (two each) and heap creations; memory streams count as blocks of their
/// size, however large. Either pointer may be null.
QZR_API void Get_CoreActivity(unsigned long long* bytes, unsigned int* ops);

/// A word for the modules of an application to share; the library neither reads nor writes it.
extern "C" QZR_API int __core_activity;
