// The directory of interfaces that an object answers for besides its own.
#pragma once

#include "qzunknown.h"

namespace qzr {

// A member of the object it serves: counting and queries go to that owner. It lists itself for
// IRegisterIface. Most objects never register anything, so storage is made with the first registration.
class IfaceRegistry final : public IRegisterIface {
public:
    explicit IfaceRegistry(IQZUnknown& owner) noexcept : owner_(owner) {}
    ~IfaceRegistry();
    IfaceRegistry(const IfaceRegistry&) = delete;
    IfaceRegistry& operator=(const IfaceRegistry&) = delete;

    // The interface registered for iid, without a reference, or null. Type names choose the bucket, the types
    // themselves decide: two of one hash are two.
    IQZUnknown* find(const std::type_info& iid) noexcept;

    unsigned AddRef() override { return owner_.AddRef(); }
    unsigned Release() override { return owner_.Release(); }
    int QueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        return owner_.QueryInterface(iid, out);
    }

    // What the owner answers for already is taken.
    int RegisterIface(const std::type_info& iid, IQZUnknown* iface) override;
    int UnregisterIface(const std::type_info& iid) override;

private:
    struct Entry {
        Entry* next;
        const std::type_info* iid;
        IQZUnknown* iface; // not counted
    };
    static constexpr unsigned kBuckets = 127;

    // The link to the entry of iid, or to the end of its bucket.
    Entry** locate(const std::type_info& iid) const noexcept;

    IQZUnknown& owner_;
    Entry** buckets_ = nullptr;
    bool lists_itself_ = true;
};

} // namespace qzr
