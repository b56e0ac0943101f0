#include "core/service_enum.h"

namespace qzr {

namespace {

int finish(unsigned handed_out, unsigned* fetched) {
    if (fetched != nullptr) *fetched = handed_out;
    return handed_out != 0 ? 1 : 0;
}

// Under a reference of our own: the query is the object's code and may take it out of the container.
bool query(const Service& service, const std::type_info& iid, IQZUnknown** out) {
    const CQZRef<IQZUnknown> object = service.object;
    return object->QueryInterface(iid, out) != 0;
}

} // namespace

int CServiceEnum::Next(int count, IQZUnknown** items, unsigned* fetched) {
    unsigned handed_out = 0;
    while (items != nullptr && count > 0) {
        const Service* const service = cursor_.next();
        if (service == nullptr) {
            cursor_.rewind();
            break;
        }
        if (!query(*service, iid_, &items[handed_out])) continue;
        ++handed_out;
        --count;
    }
    return finish(handed_out, fetched);
}

int CServiceEnum::Skip(unsigned count) {
    while (count > 0) {
        const Service* const service = cursor_.next();
        if (service == nullptr) break;
        if (query(*service, iid_, nullptr)) --count;
    }
    return 1;
}

int CServiceNameEnum::Next(int count, const char** items, unsigned* fetched) {
    unsigned handed_out = 0;
    for (; items != nullptr && count > 0; --count) {
        const Service* const service = cursor_.next();
        if (service == nullptr) break;
        items[handed_out++] = service->name;
    }
    return finish(handed_out, fetched);
}

int CServiceNameEnum::Skip(unsigned count) {
    while (count > 0 && cursor_.next() != nullptr)
        --count;
    return 1;
}

} // namespace qzr
