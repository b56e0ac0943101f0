// The order of the virtual operations of parameter nodes and of the enumerators that they hand out.
#include "abi/slots.h"
#include "qzparam.h"
#include "qzvariant.h"

namespace {

TEST(Slots, ParameterTreeAndEnumerator) {
    IParam* const tree = new_MemParam();
    check_root_slots(tree, typeid(IParam));
    enum : unsigned {
        kCreateSub = kFirstOwn,
        kOpenSub,
        kDeleteSub,
        kDeleteAllSubs,
        kEnumSubs,
        kGetValue,
        kSetValue,
        kDeleteValue,
        kDeleteAllValues,
        kEnumValues,
        kClear,
    };
    const auto make_child = [tree](const char* name) {
        call_slot<IQZUnknown*>(tree, kCreateSub, name)->Release();
    };
    const auto count = [tree](unsigned enumerate) {
        auto* const names = call_slot<CTEnum<const char*>*>(tree, enumerate);
        unsigned found = 0;
        const char* name = nullptr;
        while (names->Next(1, &name, nullptr))
            ++found;
        names->Release();
        return found;
    };
    make_child("one");
    make_child("two");
    EXPECT_EQ(count(kEnumSubs), 2u);
    EXPECT_EQ(call_slot<IParam*>(tree, kOpenSub, "three", 0), nullptr);
    call_slot<void>(tree, kDeleteSub, "one");
    EXPECT_EQ(count(kEnumSubs), 1u);

    const CQZVariant value(5);
    for (const char* name : {"first", "second", "third"})
        call_slot<void>(tree, kSetValue, name, static_cast<const tagQZVARIANT*>(&value));
    CQZVariant back;
    EXPECT_EQ(call_slot<int>(tree, kGetValue, "second", static_cast<tagQZVARIANT*>(&back)), 1);
    EXPECT_EQ(back == value, 1);
    call_slot<void>(tree, kDeleteValue, "second");

    enum : unsigned {
        kNext = kFirstOwn,
        kSkip,
        kReset,
        kDestroy,
        kDelete,
        kInternalAddRef,
        kInternalRelease
    };
    auto* const names = call_slot<IQZUnknown*>(tree, kEnumValues);
    const char* items[4] = {};
    unsigned fetched = 0;
    EXPECT_NE(call_slot<int>(names, kNext, 4, &items[0], &fetched), 0);
    EXPECT_EQ(fetched, 2u);
    EXPECT_STREQ(items[0], "first");
    EXPECT_STREQ(items[1], "third");
    call_slot<void>(names, kReset);
    EXPECT_EQ(call_slot<int>(names, kSkip, 1u), 1);
    EXPECT_NE(call_slot<int>(names, kNext, 1, &items[0], static_cast<unsigned*>(nullptr)), 0);
    EXPECT_STREQ(items[0], "third");
    EXPECT_EQ(call_slot<unsigned>(names, kInternalAddRef), 2u);
    EXPECT_EQ(call_slot<unsigned>(names, kInternalRelease), 1u);
    EXPECT_EQ(call_slot<unsigned>(names, kRelease), 0u);

    call_slot<void>(tree, kDeleteAllValues);
    EXPECT_EQ(count(kEnumValues), 0u);
    call_slot<void>(tree, kDeleteAllSubs);
    EXPECT_EQ(count(kEnumSubs), 0u);
    make_child("again");
    call_slot<void>(tree, kClear);
    EXPECT_EQ(count(kEnumSubs), 0u);
    EXPECT_EQ(call_slot<unsigned>(tree, kRelease), 0u);
}

} // namespace
