#include "soak/refusal.h"

#include "qzheap.h"
#include "support/import_mock.h"

#include <atomic>

#include <windows.h>

namespace {

struct OfThread {
    Random* random = nullptr;
    unsigned one_in = 0;
    unsigned given_up = 0;
};
thread_local OfThread mine;

std::atomic<unsigned long long> refused, tried_again;

LPVOID WINAPI allocate_or_refuse(HANDLE heap, DWORD flags, SIZE_T size) {
    if (mine.one_in != 0 && mine.random->one_in(mine.one_in)) {
        ++refused;
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return HeapAlloc(heap, flags, size);
}

class Sink final : public ILowMemoryNotifySink {
    int OnLowMemory(unsigned) override {
        if (mine.one_in == 0 || mine.random->one_in(2)) {
            ++mine.given_up;
            return 0;
        }
        ++tried_again;
        return 1;
    }
};

} // namespace

void install_refusals() {
    static Sink sink;
    static const ImportMock mock("qzrcore.dll", "HeapAlloc", reinterpret_cast<void*>(&allocate_or_refuse));
    Mem_SetLowMemoryNotifySink(&sink);
}

Refusing::Refusing(Random& random, unsigned one_in) {
    mine.random = &random;
    mine.given_up = 0;
    mine.one_in = one_in;
}

Refusing::~Refusing() { mine.one_in = 0; }

bool Refusing::happened() const { return mine.given_up != 0; }

RefusalCounts refusal_counts() { return {refused, tried_again}; }
