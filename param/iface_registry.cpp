#include "param/iface_registry.h"

#include "core/allocator.h"
#include "core/name_hash.h"

#include <utility>

namespace qzr {

IfaceRegistry::~IfaceRegistry() {
    if (buckets_ == nullptr) return;
    for (unsigned i = 0; i < kBuckets; ++i)
        while (buckets_[i] != nullptr)
            block_free(std::exchange(buckets_[i], buckets_[i]->next), sizeof(Entry));
    mem_free(buckets_);
}

IfaceRegistry::Entry** IfaceRegistry::locate(const std::type_info& iid) const noexcept {
    Entry** link = &buckets_[hash_name(iid.name()) % kBuckets];
    while (*link != nullptr && *(*link)->iid != iid)
        link = &(*link)->next;
    return link;
}

IQZUnknown* IfaceRegistry::find(const std::type_info& iid) noexcept {
    if (lists_itself_ && iid == typeid(IRegisterIface)) return this;
    if (buckets_ == nullptr) return nullptr;
    const Entry* const entry = *locate(iid);
    return entry != nullptr ? entry->iface : nullptr;
}

int IfaceRegistry::RegisterIface(const std::type_info& iid, IQZUnknown* iface) {
    if (iface == nullptr || QueryInterface(iid, nullptr) != 0) return 0;
    if (buckets_ == nullptr) buckets_ = static_cast<Entry**>(mem_alloc(kBuckets * sizeof(Entry*)));
    *locate(iid) = new (block_alloc(sizeof(Entry))) Entry{nullptr, &iid, iface};
    return 1;
}

int IfaceRegistry::UnregisterIface(const std::type_info& iid) {
    if (iid == typeid(IRegisterIface) && lists_itself_) {
        lists_itself_ = false;
        return 1;
    }
    if (buckets_ == nullptr) return 0;
    Entry** const link = locate(iid);
    if (*link == nullptr) return 0;
    block_free(std::exchange(*link, (*link)->next), sizeof(Entry));
    return 1;
}

} // namespace qzr
