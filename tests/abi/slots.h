// Calls operations by their number in the virtual table, as code does that was built long ago.
#pragma once

#include "qzunknown.h"

#include <gtest/gtest.h>

template <class Result, class... Arguments>
Result call_slot(const void* object, unsigned slot, Arguments... arguments) {
    using Function = Result (*)(const void*, Arguments...);
    const auto table = *static_cast<Function const* const*>(object);
    return table[slot](object, arguments...);
}

enum RootSlot : unsigned { kAddRef, kRelease, kQueryInterface, kFirstOwn };

inline const std::type_info* id(const std::type_info& type) { return &type; }

// The three slots that every interface begins with: counts go up and down, a query answers the object itself.
inline void check_root_slots(IQZUnknown* object, const std::type_info& own) {
    const unsigned before = call_slot<unsigned>(object, kAddRef) - 1;
    EXPECT_EQ(call_slot<unsigned>(object, kRelease), before);
    IQZUnknown* found = nullptr;
    EXPECT_EQ(call_slot<int>(object, kQueryInterface, id(own), &found), 1);
    EXPECT_EQ(found, object);
    EXPECT_EQ(call_slot<unsigned>(found, kRelease), before);
    EXPECT_EQ(call_slot<int>(object, kQueryInterface, id(typeid(int)), &found), 0);
    EXPECT_EQ(found, nullptr);
}
