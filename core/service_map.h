// The services of a container by name, and walks over them that survive every change.
#pragma once

#include "core/hash_map.h"
#include "qzref.h"

namespace qzr {

struct Service : HashLink {
    Service(const char* service_name, IQZUnknown* service);
    ~Service() { mem_free(name); }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    char* name;
    CQZRef<IQZUnknown> object;
};

class ServiceCursor;

class ServiceMap {
public:
    static constexpr unsigned kBuckets = 127;

    ServiceMap() = default;
    ~ServiceMap() { close(); }
    ServiceMap(const ServiceMap&) = delete;
    ServiceMap& operator=(const ServiceMap&) = delete;

    Service* find(const char* name) const noexcept; // null counts as ""
    // The name must be new. Throws CXMemException.
    void add(const char* name, IQZUnknown* object);
    // Takes a service of this map out. @return the map's reference
    CQZRef<IQZUnknown> take(Service* service) noexcept;
    void clear(); // releases all services, in the order of the map, after the last one is out

    // Does the map still hold this object under this hash?
    bool holds(unsigned hash, const IQZUnknown* object) const noexcept;

    Service* first() const noexcept { return services_.first(); }
    Service* next(const Service* service) const noexcept { return services_.next(service); }

    // Stops all cursors and releases the services; the map stays empty.
    void close() noexcept;
    bool closing() const noexcept { return services_.closing(); }

private:
    friend class ServiceCursor;

    void retire(Service* service) noexcept;
    void free_retired() noexcept;

    HashMap<Service, kBuckets> services_;
    ServiceCursor* cursors_ = nullptr;
    Service* retired_ = nullptr; // taken out under a walk, which may have handed out their names
};

// A place between two services of a map. Those taken out are skipped, those added ahead are met. It yields
// nothing once the map is gone.
class ServiceCursor {
public:
    explicit ServiceCursor(ServiceMap& map) noexcept;
    ~ServiceCursor();
    ServiceCursor(const ServiceCursor&) = delete;
    ServiceCursor& operator=(const ServiceCursor&) = delete;

    Service* next() noexcept; // null at the end. Its name lives as long as any cursor of the map.
    void rewind() noexcept;

private:
    friend class ServiceMap;

    ServiceMap* map_;
    Service* ahead_ = nullptr; // next in the bucket before bucket_, or null: go on with bucket_
    unsigned bucket_ = 0;
    ServiceCursor* next_cursor_ = nullptr;
    ServiceCursor* prev_cursor_ = nullptr;
};

} // namespace qzr
