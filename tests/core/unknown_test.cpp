// Counting, querying, aggregating.
#include "qzheap.h"
#include "qzobject.h"
#include "qzref.h"

#include <gtest/gtest.h>

namespace {

class Plain : public CQZUnknownImpl<IQZUnknown> {
public:
    explicit Plain(bool& destroyed) : destroyed_(destroyed) {}
    ~Plain() override { destroyed_ = true; }

private:
    bool& destroyed_;
};

// The ids come from this module, the object from the library.
TEST(Unknown, QueriesMatchAcrossModules) {
    const auto heap = CQZRef<IHeap>::Adopt(new_MemoryHeap(0));
    struct Row {
        const std::type_info& iid;
        int result;
    };
    for (const Row& row : {Row{typeid(IQZUnknown), 1}, Row{typeid(IHeap), 1}, Row{typeid(IPersistX), 0},
                           Row{typeid(CTEnum<const char*>), 0}}) {
        SCOPED_TRACE(row.iid.name());
        EXPECT_EQ(heap->QueryInterface(row.iid, nullptr), row.result);
        EXPECT_EQ(heap->AddRef(), 2u) << "a query without out adds no reference";
        heap->Release();
        auto* out = reinterpret_cast<IQZUnknown*>(1);
        EXPECT_EQ(heap->QueryInterface(row.iid, &out), row.result);
        EXPECT_EQ(out, row.result != 0 ? heap.Get() : nullptr);
        if (row.result != 0) {
            EXPECT_EQ(out->Release(), 1u);
        }
    }
}

// Its count begins at zero and stops there; it is never destroyed by a release.
TEST(Unknown, AnUnknownInsideAnotherObject) {
    CUnknownInternal inner;
    EXPECT_EQ(inner.Release(), 0u);
    CQZRef<IQZUnknown> found;
    EXPECT_EQ(inner.QueryInterface(typeid(IQZUnknown), found.Put()), 1);
    EXPECT_EQ(found.Get(), &inner);
    EXPECT_EQ(inner.AddRef(), 2u);
    EXPECT_EQ(inner.Release(), 1u);
    EXPECT_EQ(inner.QueryInterface(typeid(IHeap), found.Put()), 0);
    EXPECT_FALSE(found);
}

class IParent : public IQZUnknown {
protected:
    ~IParent() = default;
};
class IChild : public IParent {
public:
    virtual ~IChild() = default;
};
class Child final : public CQZUnknownImplParent<IChild, IParent> {};

TEST(Unknown, AnImplementationWithAParentAnswersForBoth) {
    const auto child = CQZRef<Child>::Adopt(new Child);
    for (const std::type_info* iid : {&typeid(IQZUnknown), &typeid(IParent), &typeid(IChild)}) {
        SCOPED_TRACE(iid->name());
        CQZRef<IQZUnknown> found;
        EXPECT_EQ(child->QueryInterface(*iid, found.Put()), 1);
        EXPECT_EQ(found.Get(), child.Get());
    }
    EXPECT_EQ(child->QueryInterface(typeid(IHeap), nullptr), 0);
}

// ---- aggregation, by a small class of the test's own

class IGreeter : public IQZUnknown {
public:
    virtual int Greet() = 0;

protected:
    ~IGreeter() = default;
};

class Greeter : public IGreeter {
public:
    using Interface = IGreeter;
    ~Greeter() { ++destroyed; }
    int Greet() override { return 7; }
    static inline int destroyed = 0;
};

TEST(Aggregate, CountsOnItsOwnAndAnswersTheOldCount) {
    Greeter::destroyed = 0;
    auto* const wrapper = new CQZAggObject<Greeter>(nullptr);
    EXPECT_EQ(wrapper->AddRef(), 1u);
    EXPECT_EQ(wrapper->AddRef(), 2u);
    EXPECT_EQ(wrapper->Release(), 2u);

    IQZUnknown* found = nullptr;
    ASSERT_EQ(wrapper->QueryInterface(typeid(IGreeter), &found), 1);
    auto* const greeter = static_cast<IGreeter*>(found);
    EXPECT_EQ(greeter->Greet(), 7);
    EXPECT_EQ(greeter->AddRef(), 3u) << "the contained object's count is the wrapper's";
    EXPECT_EQ(greeter->Release(), 3u);
    EXPECT_EQ(greeter->QueryInterface(typeid(IQZUnknown), nullptr), 1);
    EXPECT_EQ(greeter->Release(), 2u);

    found = greeter;
    EXPECT_EQ(wrapper->QueryInterface(typeid(IHeap), &found), 0);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(wrapper->QueryInterface(typeid(IGreeter), nullptr), 1);
    EXPECT_EQ(wrapper->Release(), 1u);
    EXPECT_EQ(Greeter::destroyed, 0);
    EXPECT_EQ(wrapper->Release(), 0u);
    EXPECT_EQ(Greeter::destroyed, 1);
}

TEST(Aggregate, ContainedObjectIsControlledByTheOuterOne) {
    bool destroyed = false;
    IQZUnknown* const outer = new Plain(destroyed);
    auto* const inner = new CQZAggObject<Greeter>(outer);
    IQZUnknown* greeter = nullptr;
    ASSERT_EQ(inner->QueryInterface(typeid(IGreeter), &greeter), 1);
    EXPECT_EQ(outer->AddRef(), 3u) << "the reference went to the outer object";
    EXPECT_EQ(greeter->Release(), 2u);
    EXPECT_EQ(greeter->Release(), 1u);
    IQZUnknown* root = nullptr;
    ASSERT_EQ(greeter->QueryInterface(typeid(IQZUnknown), &root), 1);
    EXPECT_EQ(root, outer);
    EXPECT_EQ(root->Release(), 1u);
    EXPECT_EQ(inner->Release(), 0u);
    EXPECT_EQ(outer->Release(), 0u);
    EXPECT_TRUE(destroyed);
}

// ---- the counted pointer

TEST(Ref, AdoptsSharesAndGivesAway) {
    bool destroyed = false;
    IQZUnknown* const raw = new Plain(destroyed);
    auto adopted = CQZRef<IQZUnknown>::Adopt(raw);
    auto shared = CQZRef<IQZUnknown>::Share(raw);
    CQZRef<IQZUnknown> copy(shared);
    EXPECT_EQ(raw->AddRef(), 4u);
    raw->Release();
    const CQZRef<IQZUnknown> moved(std::move(copy));
    EXPECT_FALSE(copy); // NOLINT: moved from on purpose
    shared = shared;
    EXPECT_EQ(shared.Detach()->Release(), 2u);
    adopted.Reset();
    EXPECT_FALSE(destroyed);
    EXPECT_TRUE(moved == CQZRef<IQZUnknown>::Share(raw));
    EXPECT_FALSE(CQZRef<IHeap>::Query(raw));
    EXPECT_FALSE(CQZRef<IHeap>::Query(nullptr));
    EXPECT_THROW(CQZRef<IHeap>::Require(raw), CXIFaceException);
}

} // namespace
