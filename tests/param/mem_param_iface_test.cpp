#include <gtest/gtest.h>

#include "qzobject.h"
#include "qzstream.h"
#include "support/counting_object.h"
#include "support/param_outline.h"

// Their type names have one hash, as boskui and ckygvi have.
struct boskui {};
struct ckygvi {};

namespace {

TEST(MemParamIface, AnswersForWhatIsRegistered) {
    const CQZRef<IParam> node = memory_tree();
    CountingObject stream, other;
    for (const std::type_info* iid : {&typeid(IQZUnknown), &typeid(IParam)}) {
        EXPECT_EQ(node->QueryInterface(*iid, nullptr), 1);
        IQZUnknown* itself = nullptr;
        ASSERT_EQ(node->QueryInterface(*iid, &itself), 1);
        EXPECT_EQ(itself, node.Get());
        itself->Release();
    }
    {
        const CQZRef<IRegisterIface> directory = CQZRef<IRegisterIface>::Query(node.Get());
        ASSERT_TRUE(directory);
        EXPECT_EQ(directory->RegisterIface(typeid(IXStream), nullptr), 0);
        EXPECT_EQ(directory->RegisterIface(typeid(IParam), &stream), 0);
        EXPECT_EQ(directory->RegisterIface(typeid(IRegisterIface), &stream), 0);
        EXPECT_EQ(directory->RegisterIface(typeid(IXStream), &stream), 1);
        EXPECT_EQ(directory->RegisterIface(typeid(IXStream), &other), 0);
        EXPECT_EQ(stream.references, 1u);
        IQZUnknown* found = nullptr;
        EXPECT_EQ(directory->QueryInterface(typeid(IXStream), &found), 1); // whichever way it is asked
        EXPECT_EQ(found, &stream);
        EXPECT_EQ(stream.references, 2u);
        found->Release();
        EXPECT_EQ(directory->UnregisterIface(typeid(IXStream)), 1);
        EXPECT_EQ(directory->UnregisterIface(typeid(IXStream)), 0);
        EXPECT_EQ(node->QueryInterface(typeid(IXStream), &found), 0);
        EXPECT_EQ(directory->RegisterIface(typeid(IXStream), &other), 1);
        EXPECT_EQ(directory->UnregisterIface(typeid(IRegisterIface)), 1);
        EXPECT_EQ(node->QueryInterface(typeid(IRegisterIface), nullptr), 0);
    }
    EXPECT_EQ(node->AddRef(), 2u); // nothing was lost on the way
    EXPECT_EQ(node->Release(), 1u);
}

TEST(MemParamIface, TellsTypesOfOneHashApart) {
    const CQZRef<IParam> node = memory_tree();
    const CQZRef<IRegisterIface> directory = CQZRef<IRegisterIface>::Query(node.Get());
    CountingObject one, two;
    EXPECT_EQ(directory->RegisterIface(typeid(boskui), &one), 1);
    EXPECT_EQ(node->QueryInterface(typeid(ckygvi), nullptr), 0);
    EXPECT_EQ(directory->RegisterIface(typeid(ckygvi), &two), 1);
    EXPECT_EQ(directory->UnregisterIface(typeid(boskui)), 1);
    IQZUnknown* found = nullptr;
    EXPECT_EQ(node->QueryInterface(typeid(ckygvi), &found), 1);
    EXPECT_EQ(found, &two);
    found->Release();
    EXPECT_EQ(node->QueryInterface(typeid(boskui), nullptr), 0);
}

} // namespace
