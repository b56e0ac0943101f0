// What the nodes of all backends share: where they live, and which interfaces they answer for.
#pragma once

#include "core/allocator.h"
#include "param/iface_registry.h"
#include "qzparam.h"

namespace qzr {

// A node answers for IParam, for IQZUnknown, for IRegisterIface, and for what was registered there.
class ParamNode : public CQZUnknownImpl<IParam> {
public:
    int InternalQueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        if (iid == typeid(IParam) || iid == typeid(IQZUnknown)) return AnswerQuery(this, out);
        return AnswerQuery(interfaces_.find(iid), out);
    }

    static void* operator new(std::size_t size) { return block_alloc(size); }
    static void operator delete(void* node, std::size_t size) noexcept { block_free(node, size); }

protected:
    ParamNode() : interfaces_(*this) {}
    ~ParamNode() override = default;

    IfaceRegistry& interfaces() noexcept { return interfaces_; }

private:
    IfaceRegistry interfaces_;
};

} // namespace qzr
