// The enumerators of a service container. Neither holds a reference on it.
#pragma once

#include "core/service_map.h"

namespace qzr {

// Those services that answer for one interface, as that interface.
class CServiceEnum final : public CQZUnknownImpl<CTEnum<IQZUnknown*>> {
public:
    CServiceEnum(ServiceMap& services, const std::type_info& iid) noexcept : cursor_(services), iid_(iid) {}

    // A fetch that runs off the end starts over at the next call, unlike every other enumerator; callers
    // fetch one at a time and stop at 0.
    int Next(int count, IQZUnknown** items, unsigned* fetched) override;
    int Skip(unsigned count) override;
    void Reset() override { cursor_.rewind(); }

private:
    ServiceCursor cursor_;
    const std::type_info& iid_;
};

// The names of all services.
class CServiceNameEnum final : public CQZUnknownImpl<CTEnum<const char*>> {
public:
    explicit CServiceNameEnum(ServiceMap& services) noexcept : cursor_(services) {}

    int Next(int count, const char** items, unsigned* fetched) override;
    int Skip(unsigned count) override;
    void Reset() override { cursor_.rewind(); }

private:
    ServiceCursor cursor_;
};

} // namespace qzr
