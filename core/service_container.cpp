#include "core/service_container.h"

#include "core/scope_exit.h"
#include "core/service_enum.h"

#include <new>

namespace qzr {

namespace {

// Hands a new enumerator to the caller; none any more once the container is being destroyed.
template <class Enum, class... Arguments>
int give_enumerator(IQZUnknown** out, ServiceMap& services, const Arguments&... arguments) {
    if (out == nullptr) return 0;
    *out = services.closing() ? nullptr : new (std::nothrow) Enum(services, arguments...);
    return *out != nullptr ? 1 : 0;
}

} // namespace

int CQZServiceContainer::EnumServices(const std::type_info& iid, IQZUnknown** out) {
    return give_enumerator<CServiceEnum>(out, m_services, iid);
}

int CQZServiceContainer::EnumServiceNames(IQZUnknown** out) {
    return give_enumerator<CServiceNameEnum>(out, m_services);
}

int CQZServiceContainer::GetService(const char* name, IQZUnknown** out) {
    const Service* const found = m_services.find(name);
    if (out != nullptr) *out = found != nullptr ? CQZRef<IQZUnknown>(found->object).Detach() : nullptr;
    return found != nullptr ? 1 : 0;
}

int CQZServiceContainer::AddService(const char* name, IQZUnknown* service) {
    const auto self = CQZRef<IQZServiceContainer>::Share(this);
    if (service == nullptr || m_services.closing() || m_services.find(name) != nullptr) return 0;
    m_services.add(name, service);
    tell(service, &IQZServiceSink::OnServiceAdded);
    return 1;
}

// The sink is told when the container's reference is no longer counted on, under one of our own.
int CQZServiceContainer::RemoveService(const char* name) {
    const auto self = CQZRef<IQZServiceContainer>::Share(this);
    Service* const found = m_services.find(name);
    if (found == nullptr) return 0;
    const CQZRef<IQZUnknown> object = m_services.take(found);
    tell(object.Get(), &IQZServiceSink::OnServiceRemoved);
    return 1;
}

// Sinks may add and remove services while this goes on: one that is gone when its turn comes is not told
// again, and one that comes is removed with the others, untold. A sink that calls this very function gets an
// immediate return.
void CQZServiceContainer::RemoveAllServices() {
    if (m_bRemovingAll) return;
    const auto self = CQZRef<IQZServiceContainer>::Share(this);
    m_bRemovingAll = true;
    const ScopeExit done([this] { m_bRemovingAll = false; });

    struct Turn {
        unsigned hash;
        CQZRef<IQZUnknown> object;
    };
    Vector<Turn> turns;
    for (const Service* s = m_services.first(); s != nullptr; s = m_services.next(s))
        turns.push_back({s->hash, s->object});
    for (const Turn& turn : turns)
        if (m_services.holds(turn.hash, turn.object.Get()))
            tell(turn.object.Get(), &IQZServiceSink::OnServiceRemoved);
    m_services.clear();
}

void CQZServiceContainer::tell(IQZUnknown* service, Event event) {
    const auto sink = CQZRef<IQZServiceSink>::Query(service);
    if (sink) ((*sink).*event)(this);
}

namespace {

class ServiceContainerObject final : public CQZAggObject<CQZServiceContainer> {
public:
    using CQZAggObject::CQZAggObject;
    ~ServiceContainerObject() override { Contained().close(); }
};

} // namespace

} // namespace qzr

int CLSID_OFSERVICECONTAINER(IQZUnknown* outer, const std::type_info& iid, IQZUnknown** out) {
    // An aggregated object may be asked only for the unknown that controls it.
    if (outer != nullptr && iid != typeid(IQZUnknown)) {
        if (out != nullptr) *out = nullptr;
        return 0;
    }
    auto* const made = new (std::nothrow) qzr::ServiceContainerObject(outer);
    if (made == nullptr) throw CXMemException();
    const int result = made->QueryInterface(iid, out);
    made->Release();
    return result;
}
