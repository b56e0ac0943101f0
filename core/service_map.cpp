#include "core/service_map.h"

#include "core/name_hash.h"

#include <cstring>
#include <utility>

namespace qzr {

namespace {

const char* text_of(const char* name) { return name != nullptr ? name : ""; }

} // namespace

Service::Service(const char* service_name, IQZUnknown* service)
    : name(mem_dup(service_name, std::strlen(service_name) + 1)),
      object(CQZRef<IQZUnknown>::Share(service)) {}

void ServiceMap::close() noexcept {
    services_.set_closing();
    for (ServiceCursor* cursor = std::exchange(cursors_, nullptr); cursor != nullptr;
         cursor = cursor->next_cursor_)
        cursor->map_ = nullptr;
    clear();
    free_retired();
}

Service* ServiceMap::find(const char* name) const noexcept {
    return services_.find(hash_name(text_of(name)));
}

bool ServiceMap::holds(unsigned hash, const IQZUnknown* object) const noexcept {
    const Service* const service = services_.find(hash);
    return service != nullptr && service->object.Get() == object;
}

void ServiceMap::add(const char* name, IQZUnknown* object) {
    BlockPtr<Service> service(block_new<Service>(text_of(name), object));
    services_.insert(service.get(), hash_name(service->name));
    static_cast<void>(service.release());
}

CQZRef<IQZUnknown> ServiceMap::take(Service* service) noexcept {
    for (ServiceCursor* cursor = cursors_; cursor != nullptr; cursor = cursor->next_cursor_)
        if (cursor->ahead_ == service) cursor->ahead_ = static_cast<Service*>(service->next);
    services_.remove(service);
    CQZRef<IQZUnknown> object = std::move(service->object);
    retire(service);
    return object;
}

// Releasing an object may call back into the container, so all are out of the map before the first goes.
void ServiceMap::clear() {
    for (ServiceCursor* cursor = cursors_; cursor != nullptr; cursor = cursor->next_cursor_)
        cursor->ahead_ = nullptr;
    services_.take_all([this](Service* service) {
        const CQZRef<IQZUnknown> object = std::move(service->object);
        retire(service);
    });
}

void ServiceMap::retire(Service* service) noexcept {
    service->next = std::exchange(retired_, service);
    if (cursors_ == nullptr) free_retired();
}

void ServiceMap::free_retired() noexcept {
    while (retired_ != nullptr)
        block_delete(std::exchange(retired_, static_cast<Service*>(retired_->next)));
}

ServiceCursor::ServiceCursor(ServiceMap& map) noexcept : map_(&map), next_cursor_(map.cursors_) {
    if (next_cursor_ != nullptr) next_cursor_->prev_cursor_ = this;
    map.cursors_ = this;
}

ServiceCursor::~ServiceCursor() {
    if (map_ == nullptr) return;
    (prev_cursor_ != nullptr ? prev_cursor_->next_cursor_ : map_->cursors_) = next_cursor_;
    if (next_cursor_ != nullptr) next_cursor_->prev_cursor_ = prev_cursor_;
    if (map_->cursors_ == nullptr) map_->free_retired();
}

Service* ServiceCursor::next() noexcept {
    if (map_ == nullptr) return nullptr;
    while (ahead_ == nullptr && bucket_ < ServiceMap::kBuckets)
        ahead_ = map_->services_.bucket_head(bucket_++);
    Service* const found = ahead_;
    if (found != nullptr) ahead_ = static_cast<Service*>(found->next);
    return found;
}

void ServiceCursor::rewind() noexcept {
    ahead_ = nullptr;
    bucket_ = 0;
}

} // namespace qzr
