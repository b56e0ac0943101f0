// The service container: names, sinks, enumerators, aggregation.
#include "qzobject.h"
#include "qzref.h"
#include "support/counting_object.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// By bucket of the container's map: s599 and s669 in bucket 0, s677 in 1, s678 in 2.
constexpr const char* kInOrder[] = {"s669", "s599", "s677", "s678"}; // newest first within a bucket

CQZRef<IQZServiceContainer> make_container() {
    CQZRef<IQZUnknown> made;
    EXPECT_EQ(CreateObject("CLSID_OFSERVICECONTAINER", nullptr, typeid(IQZServiceContainer), made.Put()), 1);
    return CQZRef<IQZServiceContainer>::Adopt(static_cast<IQZServiceContainer*>(made.Detach()));
}

CQZRef<CTEnum<const char*>> name_enum(IQZServiceContainer& container) {
    CQZRef<IQZUnknown> made;
    EXPECT_EQ(container.EnumServiceNames(made.Put()), 1);
    return CQZRef<CTEnum<const char*>>::Require(made.Get());
}

CQZRef<CTEnum<IQZUnknown*>> service_enum(IQZServiceContainer& container, const std::type_info& iid) {
    CQZRef<IQZUnknown> made;
    EXPECT_EQ(container.EnumServices(iid, made.Put()), 1);
    return CQZRef<CTEnum<IQZUnknown*>>::Require(made.Get());
}

std::vector<std::string> names_in(IQZServiceContainer& container) {
    std::vector<std::string> names;
    const auto walk = name_enum(container);
    for (const char* name = nullptr; walk->Next(1, &name, nullptr) != 0;)
        names.emplace_back(name);
    return names;
}

// A sink on the test's stack that notes what it is told and may act on it.
class Sink : public IQZServiceSink {
public:
    unsigned AddRef() override { return ++references; }
    unsigned Release() override {
        const unsigned left = --references;
        std::exchange(when_released, [] {})();
        return left;
    }
    int QueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        const bool known = iid == typeid(IQZUnknown) || iid == typeid(IQZServiceSink);
        if (out != nullptr) *out = known ? this : nullptr;
        if (known && out != nullptr) AddRef();
        return known ? 1 : 0;
    }
    void OnServiceAdded(IQZServiceContainer* container) override { ++added, when_added(*container); }
    void OnServiceRemoved(IQZServiceContainer* container) override { ++removed, when_removed(*container); }

    unsigned references = 1; // the test's own
    int added = 0, removed = 0;
    std::function<void(IQZServiceContainer&)> when_added = [](auto&) {}, when_removed = when_added;
    std::function<void()> when_released = [] {};
};

// Bytes count as signed numbers.
unsigned hash_of(const std::string& name) {
    unsigned hash = 0;
    for (const signed char c : name)
        hash = hash * 257 + static_cast<unsigned>(c);
    return hash;
}

// The map gets an index besides its buckets at 256 names, and loses none of them when others go.
TEST(ServiceContainer, KeepsTheOrderOfItsBucketsAtEverySize) {
    std::minstd_rand random(7);
    std::map<unsigned, std::string> names; // by hash: equal ones are one name
    while (names.size() < 3000) {
        std::string name(1 + random() % 40, '\0');
        for (char& c : name)
            c = static_cast<char>(1 + random() % 255);
        names.emplace(hash_of(name), name);
    }
    CountingObject object;
    const auto container = make_container();
    std::vector<std::string> buckets[127];
    const auto in_order = [&] {
        std::vector<std::string> all;
        for (const auto& bucket : buckets)
            all.insert(all.end(), bucket.begin(), bucket.end());
        return all;
    };
    for (std::size_t size = 0; const auto& [hash, name] : names) {
        ASSERT_EQ(container->AddService(name.c_str(), &object), 1);
        auto& bucket = buckets[hash % 127];
        bucket.insert(bucket.begin(), name);
        if (++size % 97 == 0 || (size > 250 && size < 260)) {
            ASSERT_EQ(names_in(*container), in_order());
        }
    }
    for (const bool removed : {false, true}) {
        for (const auto& [hash, name] : names) {
            const bool goes = name.size() % 2 == 0;
            if (goes) {
                ASSERT_EQ(container->RemoveService(name.c_str()), removed ? 0 : 1);
            }
            ASSERT_EQ(container->GetService(name.c_str(), nullptr), goes ? 0 : 1);
        }
    }
    for (auto& bucket : buckets)
        std::erase_if(bucket, [](const std::string& name) { return name.size() % 2 == 0; });
    EXPECT_EQ(names_in(*container), in_order());
    container->RemoveAllServices();
    EXPECT_EQ(object.references, 1u);
}

TEST(ServiceContainer, KeepsServicesByName) {
    CountingObject first, second;
    {
        const auto container = make_container();
        EXPECT_EQ(container->AddService("a", &first), 1);
        EXPECT_EQ(first.references, 2u);
        EXPECT_EQ(container->AddService("a", &second), 0) << "the first stays";
        EXPECT_EQ(container->AddService("b", nullptr), 0);
        EXPECT_EQ(container->AddService(nullptr, &second), 1) << "null counts as the empty name";
        EXPECT_EQ(second.references, 2u);

        EXPECT_EQ(container->GetService("a", nullptr), 1);
        EXPECT_EQ(first.references, 2u);
        IQZUnknown* found = nullptr;
        EXPECT_EQ(container->GetService("a", &found), 1);
        EXPECT_EQ(found, &first);
        EXPECT_EQ(first.references, 3u);
        found->Release();
        EXPECT_EQ(container->GetService("", &found), 1);
        EXPECT_EQ(found, &second);
        found->Release();
        EXPECT_EQ(container->GetService("b", &found), 0);
        EXPECT_EQ(found, nullptr);

        EXPECT_EQ(container->RemoveService("b"), 0);
        EXPECT_EQ(container->RemoveService("a"), 1);
        EXPECT_EQ(container->RemoveService("a"), 0);
        EXPECT_EQ(first.references, 1u);
    }
    EXPECT_EQ(second.references, 1u) << "the container's end releases what is left";
}

TEST(ServiceContainer, NamesAreTheSameWhenTheirHashesAre) {
    CountingObject first, second;
    const auto container = make_container();
    EXPECT_EQ(container->AddService("SharpPageReaderA", &first), 1);
    EXPECT_EQ(container->AddService("FullChartObject3", &second), 0);
    EXPECT_EQ(second.references, 1u);
    EXPECT_THAT(names_in(*container), ElementsAre("SharpPageReaderA"));
    EXPECT_EQ(container->RemoveService("FullChartObject3"), 1);
    EXPECT_EQ(first.references, 1u);
}

// ---- sinks

TEST(ServiceSink, IsToldOncePerNameAfterTheFactAndNotOfTheContainersEnd) {
    Sink sink;
    std::vector<int> found; // whether a is there while the sink is told
    const auto look = [&](IQZServiceContainer& c) { found.push_back(c.GetService("a", nullptr)); };
    sink.when_added = sink.when_removed = look;
    auto container = make_container();
    container->AddService("a", &sink);
    container->AddService("b", &sink);
    EXPECT_EQ(container->AddService("a", &sink), 0);
    EXPECT_EQ(sink.added, 2);
    container->RemoveService("a");
    EXPECT_EQ(sink.removed, 1);
    EXPECT_THAT(found, ElementsAre(1, 1, 0));
    container->RemoveAllServices();
    EXPECT_EQ(sink.removed, 2);
    container->AddService("a", &sink);
    container.Reset();
    EXPECT_EQ(sink.removed, 2);
    EXPECT_EQ(sink.references, 1u);
}

TEST(ServiceSink, MayRemoveItselfWhenAdded) {
    Sink sink;
    sink.when_added = [](IQZServiceContainer& c) { EXPECT_EQ(c.RemoveService("a"), 1); };
    const auto container = make_container();
    EXPECT_EQ(container->AddService("a", &sink), 1);
    EXPECT_THAT(names_in(*container), IsEmpty());
    EXPECT_EQ(sink.removed, 1);
    EXPECT_EQ(sink.references, 1u);
}

// Whatever a sink does meanwhile, the container is empty afterwards and each service was told once at most.
TEST(ServiceSink, MayChangeTheContainerWhileAllAreRemoved) {
    Sink first, second, late;
    CountingObject plain;
    const auto container = make_container();
    container->AddService("s599", &first); // bucket 0: told first
    container->AddService("s677", &second);
    container->AddService("s678", &plain);
    int still_there = 0;
    first.when_removed = [&](IQZServiceContainer& c) {
        still_there = c.GetService("s599", nullptr) + c.GetService("s678", nullptr);
        EXPECT_EQ(c.RemoveService("s677"), 1);
        EXPECT_EQ(c.AddService("s686", &late), 1);
        c.RemoveAllServices(); // returns at once
    };
    container->RemoveAllServices();
    EXPECT_EQ(still_there, 2) << "services are told while they are still in";
    EXPECT_EQ(first.removed, 1);
    EXPECT_EQ(second.removed, 1);
    EXPECT_EQ(late.removed, 0);
    EXPECT_THAT(names_in(*container), IsEmpty());
    EXPECT_EQ(first.references + second.references + late.references + plain.references, 4u);
}

TEST(ServiceSink, MayUseTheContainerWhileThatGoes) {
    Sink sink;
    auto container = make_container();
    container->AddService("a", &sink);
    sink.when_released = [&, raw = container.Get()] {
        const auto counted = CQZRef<IQZServiceContainer>::Share(raw);
        EXPECT_TRUE(CQZRef<IQZServiceContainer>::Query(raw));
        EXPECT_EQ(raw->GetService("a", nullptr), 0);
        EXPECT_EQ(raw->AddService("b", &sink), 0);
        EXPECT_EQ(raw->RemoveService("a"), 0);
        raw->RemoveAllServices();
        IQZUnknown* walk = nullptr;
        EXPECT_EQ(raw->EnumServiceNames(&walk), 0);
    };
    container.Reset();
    EXPECT_EQ(sink.references, 1u);
}

TEST(ServiceSink, MayGiveUpTheContainerWhileItIsTold) {
    Sink first, second;
    auto container = make_container();
    container->AddService("s599", &first);
    container->AddService("s677", &second);
    first.when_removed = [&](IQZServiceContainer&) { container.Reset(); };
    container->RemoveAllServices();
    EXPECT_FALSE(container);
    EXPECT_EQ(second.removed, 1) << "the call goes on to its end";
    EXPECT_EQ(first.references + second.references, 2u);
}

TEST(ServiceSink, ThatThrowsLeavesTheContainerUsable) {
    Sink sink;
    sink.when_removed = [](IQZServiceContainer&) { throw 42; };
    const auto container = make_container();
    container->AddService("a", &sink);
    EXPECT_THROW(container->RemoveAllServices(), int);
    sink.when_removed = sink.when_added;
    container->RemoveAllServices();
    EXPECT_EQ(sink.removed, 2);
    EXPECT_EQ(sink.references, 1u);
}

// ---- enumerators

class ServiceEnum : public testing::Test {
protected:
    void SetUp() override {
        EXPECT_EQ(container->AddService("s678", &plain), 1);
        EXPECT_EQ(container->AddService("s599", &first), 1);
        EXPECT_EQ(container->AddService("s669", &second), 1);
        EXPECT_EQ(container->AddService("s677", &plain), 1);
    }

    CountingObject plain;
    Sink first, second;
    CQZRef<IQZServiceContainer> container = make_container();
};

TEST_F(ServiceEnum, NamesComeInTheOrderOfTheMapAndStayAtTheEnd) {
    EXPECT_THAT(names_in(*container), testing::ElementsAreArray(kInOrder));
    const auto walk = name_enum(*container);
    const char* names[5] = {};
    unsigned fetched = 99;
    EXPECT_EQ(walk->Next(3, names, &fetched), 1);
    EXPECT_EQ(fetched, 3u);
    EXPECT_STREQ(names[2], "s677");
    EXPECT_EQ(walk->Next(5, names, &fetched), 1);
    EXPECT_EQ(fetched, 1u);
    EXPECT_STREQ(names[0], "s678");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(walk->Next(1, names, &fetched), 0);
        EXPECT_EQ(fetched, 0u);
    }
    walk->Reset();
    EXPECT_EQ(walk->Skip(1), 1);
    EXPECT_EQ(walk->Next(0, names, &fetched), 0);
    EXPECT_EQ(walk->Next(-1, names, &fetched), 0);
    EXPECT_EQ(walk->Next(1, nullptr, &fetched), 0);
    EXPECT_EQ(walk->Next(1, names, nullptr), 1);
    EXPECT_STREQ(names[0], "s599") << "none of the fruitless calls moved on";
    EXPECT_EQ(walk->Skip(4'000'000'000u), 1);
    EXPECT_EQ(walk->Next(1, names, nullptr), 0);
}

TEST_F(ServiceEnum, YieldsThoseThatHaveTheInterface) {
    const auto walk = service_enum(*container, typeid(IQZServiceSink));
    IQZUnknown* items[4] = {};
    unsigned fetched = 0;
    EXPECT_EQ(walk->Next(1, items, &fetched), 1);
    EXPECT_EQ(items[0], &second);
    EXPECT_EQ(second.references, 3u) << "with a reference for the caller";
    items[0]->Release();
    EXPECT_EQ(walk->Skip(1), 1);
    EXPECT_EQ(walk->Next(1, items, &fetched), 0) << "the others have no such interface";
    EXPECT_EQ(fetched, 0u);
}

// A walk that runs off the end starts over, so a loop that fetches several at a time never ends.
TEST_F(ServiceEnum, StartsOverAfterRunningOffTheEnd) {
    const auto walk = service_enum(*container, typeid(IQZServiceSink));
    IQZUnknown* items[5] = {};
    unsigned fetched = 0;
    std::vector<int> results;
    for (int i = 0; i < 7; ++i) {
        results.push_back(walk->Next(1, items, &fetched));
        if (results.back() != 0) items[0]->Release();
    }
    EXPECT_THAT(results, ElementsAre(1, 1, 0, 1, 1, 0, 1));
    walk->Reset();
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(walk->Next(5, items, &fetched), 1);
        EXPECT_EQ(fetched, 2u);
        EXPECT_EQ(items[0], &second);
        EXPECT_EQ(items[1], &first);
        items[0]->Release();
        items[1]->Release();
    }
    EXPECT_EQ(walk->Next(1, nullptr, &fetched), 0);
    EXPECT_EQ(container->EnumServices(typeid(IQZUnknown), nullptr), 0);
    EXPECT_EQ(container->EnumServiceNames(nullptr), 0);
}

TEST_F(ServiceEnum, SurvivesChangesUnderIt) {
    const auto walk = name_enum(*container);
    const auto other = name_enum(*container);
    const char* name = nullptr;
    ASSERT_EQ(walk->Next(1, &name, nullptr), 1);
    const char* const handed_out = name;
    container->RemoveService("s669"); // the one just handed out
    container->RemoveService("s599"); // the one that would come next
    EXPECT_STREQ(handed_out, "s669") << "names live as long as the enumerator";
    container->AddService("s679", &plain); // ahead, in bucket 3
    std::vector<std::string> rest;
    while (walk->Next(1, &name, nullptr) != 0)
        rest.emplace_back(name);
    EXPECT_THAT(rest, ElementsAre("s677", "s678", "s679"));

    ASSERT_EQ(other->Next(1, &name, nullptr), 1);
    EXPECT_STREQ(name, "s677");
    container->RemoveAllServices();
    EXPECT_EQ(other->Next(1, &name, nullptr), 0);
    EXPECT_STREQ(handed_out, "s669");
    EXPECT_EQ(plain.references, 1u);
    container->AddService("s599", &plain);
    walk->Reset();
    EXPECT_EQ(walk->Next(1, &name, nullptr), 1);
    EXPECT_STREQ(name, "s599");
}

// ---- the factory

TEST(ServiceContainerFactory, AggregatesIntoAnOuterObject) {
    CountingObject outer;
    auto* out = reinterpret_cast<IQZUnknown*>(1);
    EXPECT_EQ(CLSID_OFSERVICECONTAINER(nullptr, typeid(IQZServiceSink), &out), 0);
    EXPECT_EQ(out, nullptr);
    out = reinterpret_cast<IQZUnknown*>(1);
    EXPECT_EQ(CLSID_OFSERVICECONTAINER(&outer, typeid(IQZServiceContainer), &out), 0)
        << "only the controlling unknown can be had";
    EXPECT_EQ(out, nullptr);

    ASSERT_EQ(CLSID_OFSERVICECONTAINER(&outer, typeid(IQZUnknown), &out), 1);
    IQZUnknown* found = nullptr;
    ASSERT_EQ(out->QueryInterface(typeid(IQZServiceContainer), &found), 1);
    EXPECT_EQ(outer.references, 2u);
    auto* const container = static_cast<IQZServiceContainer*>(found);
    Sink sink;
    IQZServiceContainer* told = nullptr;
    sink.when_added = [&](IQZServiceContainer& c) { told = &c; };
    EXPECT_EQ(container->AddService("a", &sink), 1);
    EXPECT_EQ(told, container);
    EXPECT_EQ(container->QueryInterface(typeid(IQZServiceContainer), nullptr), 0)
        << "the outer object answers";
    container->Release();
    EXPECT_EQ(outer.references, 1u);
    EXPECT_EQ(out->Release(), 0u);
    EXPECT_EQ(sink.references, 1u);
}

} // namespace
