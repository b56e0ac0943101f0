// ICritSect: a section of the process behind the mutex of the system.
#include "core/allocator.h"
#include "core/library.h"
#include "qzexception.h"
#include "qzsync.h"

#include <new>

namespace qzr {

namespace {

// Lives in a block of the default heap, where its last Release frees it.
class CCritSect final : public ICritSect {
public:
    CCritSect() noexcept : m_section{}, m_bInitialised(1), m_cRef(1) {
        InitializeCriticalSection(&m_section);
        library().global_mutex.add_user();
    }
    CCritSect(const CCritSect&) = delete;
    CCritSect& operator=(const CCritSect&) = delete;

    unsigned AddRef() override { return ++m_cRef; }

    unsigned Release() override {
        const unsigned left = --m_cRef;
        if (left == 0) {
            this->~CCritSect();
            mem_free(this);
        }
        return left;
    }

    int QueryInterface(const std::type_info&, IQZUnknown** out) override {
        if (out != nullptr) *out = nullptr;
        return 0;
    }

    // The mutex first: a thread that holds it through Wait_All keeps all others out of every section.
    void Lock() override {
        library().global_mutex.wait(INFINITE);
        EnterCriticalSection(&m_section);
    }

    void Unlock() override {
        LeaveCriticalSection(&m_section);
        library().global_mutex.release();
    }

private:
    ~CCritSect() {
        DeleteCriticalSection(&m_section);
        library().global_mutex.remove_user();
    }

    CRITICAL_SECTION m_section;
    int m_bInitialised; // set and never read; the record's layout keeps its place
    unsigned m_cRef;
};

} // namespace

} // namespace qzr

ICritSect* CriticalSection_New() {
    void* memory = nullptr;
    try {
        memory = qzr::mem_alloc(sizeof(qzr::CCritSect));
    } catch (const CXMemException&) {
        // The count, and with it the mutex, is taken even so: callers that go on without the section still
        // meet the others in Wait_All.
        qzr::library().global_mutex.add_user();
        return nullptr;
    }
    return new (memory) qzr::CCritSect;
}

ICritSect* _CriticalSection_New_For_Core(void* memory, int* size) {
    if (memory == nullptr) {
        if (size != nullptr) *size = static_cast<int>(sizeof(qzr::CCritSect));
        return nullptr;
    }
    return new (memory) qzr::CCritSect;
}
