// A directory of objects that one part of an application offers to the others.
#pragma once

#include "core/service_map.h"
#include "qzobject.h"

namespace qzr {

// Lives only inside CQZAggObject, which implements the root operations. Sinks may change the container while
// they are being told, and give it up: a call that tells them holds a reference of its own.
class CQZServiceContainer : public IQZServiceContainer {
public:
    using Interface = IQZServiceContainer;

    int EnumServices(const std::type_info& iid, IQZUnknown** out) override;
    int EnumServiceNames(IQZUnknown** out) override;
    int GetService(const char* name, IQZUnknown** out) override;
    int AddService(const char* name, IQZUnknown* service) override;
    int RemoveService(const char* name) override;
    void RemoveAllServices() override;

    // Releases the services for good, untold. From then on the container answers as an empty one. To be
    // called while the root operations still work, since a service's destructor may use the container.
    void close() noexcept { m_services.close(); }

protected:
    CQZServiceContainer() = default;
    ~CQZServiceContainer() = default;

private:
    using Event = void (IQZServiceSink::*)(IQZServiceContainer*);

    void tell(IQZUnknown* service, Event event);

    ServiceMap m_services;
    CUnknownInternal m_inner; // the non-delegating unknown of an aggregatable object
    bool m_bRemovingAll = false;
};

} // namespace qzr
