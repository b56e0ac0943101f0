// Starting threads, and the name under which a new thread tells that it runs.
#include "core/win_handle.h"
#include "qzsync.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

#include <process.h>

namespace {

constexpr DWORD kStartTimeout = 1000; // milliseconds
constexpr std::size_t kObjNameSize = 22;

} // namespace

// The name is made of the key's address, cut to 32 bits, and the process: the thread has no part in it. That
// is what lets a new thread find the event that its creator waits for.
void QZCreateObjName(const char* name, char* buffer, unsigned long /*id*/) {
    char text[32] = {};
    const auto key = static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(name));
    char* const key_end = std::to_chars(text, text + sizeof text, key).ptr;
    std::to_chars(key_end, text + sizeof text, static_cast<std::int32_t>(GetCurrentProcessId()));
    const std::size_t length = std::min(std::strlen(text), kObjNameSize - 1);
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
}

// The thread's handle is the caller's, null when there is no thread: the event is waited for all the same, so
// a creator that fails takes as long as one whose thread keeps silent.
void* QZCreateThread(const char* name, unsigned (*proc)(void*), void* arg, unsigned long* id) {
    unsigned thread_id = 0;
    const auto thread =
        reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, proc, arg, CREATE_SUSPENDED, &thread_id));

    char event_name[kObjNameSize];
    QZCreateObjName(name, event_name, thread_id);
    constexpr BOOL kManualReset = TRUE;
    const qzr::KernelHandle started(CreateEventA(nullptr, kManualReset, FALSE, event_name));
    ResumeThread(thread);
    WaitForSingleObject(started.get(), kStartTimeout);

    if (id != nullptr) *id = thread_id;
    return thread;
}
