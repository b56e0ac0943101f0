#include "fuzz/guard.h"

#include "fuzz/coverage.h"
#include "fuzz/target.h"
#include "support/import_mock.h"

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <thread>

#include <windows.h>

namespace {

fuzz::Guard guard;
DWORD fuzzing_thread;
std::atomic<const std::string*> running;
std::atomic<ULONGLONG> since;
std::atomic<bool> ending;
unsigned long long memory;
bool counting; // only what the running input asks for

std::uint64_t hash_of(const std::string& bytes) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : bytes)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return hash;
}

// As C source, as much as somebody wants to read.
void show(const std::string& input) {
    constexpr std::size_t kMost = 400;
    std::printf("\"");
    for (std::size_t i = 0; i < input.size() && i < kMost; ++i) {
        const auto c = static_cast<unsigned char>(input[i]);
        std::printf(c >= ' ' && c < 0x7F && c != '"' && c != '\\' ? "%c" : "\\x%02X", c);
    }
    std::printf(input.size() > kMost ? "\"...\n" : "\"\n");
}

// Neither allocates nor returns: the process may be in any state.
[[noreturn]] void end_badly(const char* kind, const char* what, int result) {
    if (ending.exchange(true)) Sleep(INFINITE);
    counting = false;
    if (const std::string* const input = running) {
        char path[512];
        std::snprintf(path, sizeof path, "%s/%s-%016llx", guard.found_folder.c_str(), kind,
                      static_cast<unsigned long long>(hash_of(*input)));
        const HANDLE file =
            CreateFileA(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        DWORD written = 0;
        WriteFile(file, input->data(), static_cast<DWORD>(input->size()), &written, nullptr);
        CloseHandle(file);
        std::printf("%s: %s, input of %u bytes, kept as %s\n", guard.target.c_str(), what,
                    static_cast<unsigned>(input->size()), path);
        show(*input);
    } else {
        std::printf("%s: %s, outside any input\n", guard.target.c_str(), what);
    }
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(result));
    std::abort();
}

struct Crash {
    std::atomic<DWORD> code = 0;
    std::atomic<void*> address = nullptr;
};
Crash crash;

// There may be next to no stack left, so the watching thread does the telling.
LONG CALLBACK on_exception(EXCEPTION_POINTERS* info) {
    const DWORD code = info->ExceptionRecord->ExceptionCode;
    // Errors of the hardware and of the heap; everything else is part of ordinary running. A bad handle is
    // only told to debuggers.
    const bool fatal = (code >> 16) == 0xC000 && code != 0xC0000008;
    if (!fatal || GetCurrentThreadId() != fuzzing_thread) return EXCEPTION_CONTINUE_SEARCH;
    crash.address = info->ExceptionRecord->ExceptionAddress;
    crash.code = code;
    Sleep(INFINITE);
    return EXCEPTION_CONTINUE_SEARCH;
}

void tell_crash() {
    char what[120];
    const auto base = reinterpret_cast<std::uintptr_t>(GetModuleHandleA(nullptr));
    const auto address = reinterpret_cast<std::uintptr_t>(crash.address.load());
    std::snprintf(what, sizeof what, "exception %08lX at fuzz.exe%+lld", crash.code.load(),
                  static_cast<long long>(address - base));
    end_badly("crash", what, 3);
}

void watch() {
    while (true) {
        Sleep(50);
        if (crash.code != 0) tell_crash();
        const ULONGLONG start = since;
        if (running != nullptr && start != 0 && GetTickCount64() - start > guard.seconds * 1000ULL)
            end_badly("hang", "takes too long", 3);
    }
}

void count(std::size_t size) {
    if (!counting || GetCurrentThreadId() != fuzzing_thread) return;
    memory += size;
    if (memory > guard.most_memory) end_badly("memory", "asks for too much memory", 1);
}

// The program's own import is replaced, so the function's address is kept.
decltype(&HeapAlloc) system_alloc;

LPVOID WINAPI counted_alloc(HANDLE heap, DWORD flags, SIZE_T size) {
    count(size);
    return system_alloc(heap, flags, size);
}

} // namespace

// The containers of the library, and of the targets, count as well.
void* operator new(std::size_t size) {
    count(size);
    if (void* const p = std::malloc(size != 0 ? size : 1)) return p;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    count(size);
    return std::malloc(size != 0 ? size : 1);
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace fuzz {

void fail(const char* what) {
    coverage::end();
    end_badly("fault", what, 1);
}

void start_guard(const Guard& wanted) {
    guard = wanted;
    fuzzing_thread = GetCurrentThreadId();
    system_alloc = &HeapAlloc; // before the import changes
    AddVectoredExceptionHandler(1, on_exception);
    static const ImportMock mock(nullptr, "HeapAlloc", reinterpret_cast<void*>(&counted_alloc));
    std::set_terminate([] { end_badly("crash", "ended by std::terminate", 3); });
    std::thread(watch).detach();
}

void input_begins(const std::string& input) {
    running = &input;
    since = GetTickCount64();
    memory = 0;
    counting = true;
}

void input_ends() {
    counting = false;
    since = 0;
    running = nullptr;
}

unsigned long long memory_asked_for() { return memory; }

void check_heaps() {
    HANDLE heaps[64];
    const DWORD n = GetProcessHeaps(64, heaps);
    for (DWORD i = 0; i < n && i < 64; ++i)
        if (!HeapValidate(heaps[i], 0, nullptr)) fail("a damaged heap");
}

} // namespace fuzz
