// An owner for one resource of the system.
#pragma once

#include "core/last_error_keeper.h"

#include <utility>

namespace qzr {

// Traits name the handle's type, its invalid value, and how it is closed. Closing keeps the thread's last
// error, so that a failure can still be reported after its resources are gone.
template <class Traits>
class WinHandle {
public:
    using Handle = typename Traits::Handle;

    WinHandle() noexcept : handle_(Traits::kInvalid) {}
    explicit WinHandle(Handle handle) noexcept : handle_(handle) {}
    WinHandle(WinHandle&& other) noexcept : handle_(other.release()) {}
    WinHandle& operator=(WinHandle&& other) noexcept {
        reset(other.release());
        return *this;
    }
    ~WinHandle() { reset(); }

    Handle get() const noexcept { return handle_; }
    explicit operator bool() const noexcept { return handle_ != Traits::kInvalid; }

    // Gives the handle away; whoever takes it closes it.
    Handle release() noexcept { return std::exchange(handle_, Traits::kInvalid); }

    void reset(Handle handle = Traits::kInvalid) noexcept {
        const Handle old = std::exchange(handle_, handle);
        if (old == Traits::kInvalid) return;
        const LastErrorKeeper keeper;
        Traits::close(old);
    }

private:
    Handle handle_;
};

struct HeapTraits {
    using Handle = HANDLE;
    static constexpr Handle kInvalid = nullptr;
    static void close(Handle heap) noexcept { HeapDestroy(heap); }
};
using HeapHandle = WinHandle<HeapTraits>;

// What CloseHandle closes and null stands for none: events, mutexes, threads, processes.
struct KernelTraits {
    using Handle = HANDLE;
    static constexpr Handle kInvalid = nullptr;
    static void close(Handle handle) noexcept { CloseHandle(handle); }
};
using KernelHandle = WinHandle<KernelTraits>;

// Files, for which the platform has an invalid value of its own.
struct FileTraits {
    using Handle = HANDLE;
    static inline const Handle kInvalid = INVALID_HANDLE_VALUE;
    static void close(Handle file) noexcept { CloseHandle(file); }
};
using FileHandle = WinHandle<FileTraits>;

// Views of files.
struct ViewTraits {
    using Handle = void*;
    static constexpr Handle kInvalid = nullptr;
    static void close(Handle view) noexcept { UnmapViewOfFile(view); }
};
using ViewHandle = WinHandle<ViewTraits>;

struct FindTraits {
    using Handle = HANDLE;
    static inline const Handle kInvalid = INVALID_HANDLE_VALUE;
    static void close(Handle search) noexcept { FindClose(search); }
};
using FindHandle = WinHandle<FindTraits>;

// Movable memory of the system.
struct GlobalMemoryTraits {
    using Handle = HGLOBAL;
    static constexpr Handle kInvalid = nullptr;
    static void close(Handle memory) noexcept { GlobalFree(memory); }
};
using GlobalMemory = WinHandle<GlobalMemoryTraits>;

// The screen's device context.
struct ScreenDcTraits {
    using Handle = HDC;
    static constexpr Handle kInvalid = nullptr;
    static void close(Handle screen) noexcept { ReleaseDC(nullptr, screen); }
};
using ScreenDc = WinHandle<ScreenDcTraits>;

} // namespace qzr
