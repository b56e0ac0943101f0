// IEvent: an auto-reset event of the system, without a name.
#include "core/global_mutex.h"
#include "qzexception.h"
#include "qzsync.h"

#include <new>
#include <utility>

namespace qzr {

namespace {

class CEvent final : public IEvent {
public:
    explicit CEvent(KernelHandle event) noexcept : m_event(std::move(event)), m_bValid(1), m_cRef(1) {}
    CEvent(const CEvent&) = delete;
    CEvent& operator=(const CEvent&) = delete;

    unsigned AddRef() override { return ++m_cRef; }

    unsigned Release() override {
        const unsigned left = --m_cRef;
        if (left == 0) delete this;
        return left;
    }

    int QueryInterface(const std::type_info&, IQZUnknown** out) override {
        if (out != nullptr) *out = nullptr;
        return 0;
    }

    int Set() override { return SetEvent(m_event.get()); }
    int Reset() override { return ResetEvent(m_event.get()); }
    int Wait(unsigned timeout) override { return wait_result(WaitForSingleObject(m_event.get(), timeout)); }

private:
    ~CEvent() = default;

    KernelHandle m_event;
    [[maybe_unused]] int m_bValid; // set and never read; the record's layout keeps its place
    unsigned m_cRef;
};

} // namespace

} // namespace qzr

IEvent* Event_New(int initialState) {
    constexpr BOOL kAutoReset = FALSE;
    qzr::KernelHandle event(CreateEventA(nullptr, kAutoReset, initialState != 0, nullptr));
    if (!event) throw CXMemException();
    return new (std::nothrow) qzr::CEvent(std::move(event));
}
