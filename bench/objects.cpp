// Objects by class name, and their interfaces.
#include "bench/ledger.h"
#include "qzobject.h"
#include "qzref.h"
#include "qzunknown.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <windows.h>

namespace bench {

class IShape : public IQZUnknown {
public:
    virtual int Corners() = 0;

protected:
    ~IShape() = default;
};

namespace {

using benchmark::DoNotOptimize;
using benchmark::State;

// Asking the runtime for memory would be four fifths of the time on either side, and is the doing of neither:
// each class keeps the block of the object that went last for the next one.
template <class T>
class KeepsItsBlock {
public:
    static void* operator new(std::size_t size) {
        void* const block = std::exchange(kept_, nullptr);
        return block != nullptr ? block : ::operator new(size);
    }
    static void operator delete(void* block) { ::operator delete(std::exchange(kept_, block)); }

private:
    static inline void* kept_ = nullptr;
};

class Shape final : public CQZUnknownImpl<IShape>, public KeepsItsBlock<Shape> {
public:
    int Corners() override { return 5; }
};

struct Base {
    virtual ~Base() = default;
};
struct Drawable {
    virtual ~Drawable() = default;
    virtual int corners() = 0;
};
struct StandardShape final : Base, Drawable, KeepsItsBlock<StandardShape> {
    int corners() override { return 5; }
};

using Factories = std::unordered_map<std::string, std::unique_ptr<Base> (*)()>;

Factories factories() {
    Factories made;
    for (int i = 0; i < 100; ++i)
        made["Other" + std::to_string(i)] = [] { return std::unique_ptr<Base>(new StandardShape); };
    made["BenchShape"] = [] { return std::unique_ptr<Base>(new StandardShape); };
    return made;
}

CQZRef<IQZUnknown> create_shape() {
    IQZUnknown* shape = nullptr;
    CreateObject("BenchShape", nullptr, typeid(IShape), &shape);
    return CQZRef<IQZUnknown>::Adopt(shape);
}

// The class of this program among a hundred others.
void register_classes() {
    for (int i = 0; i < 100; ++i)
        RegisterObject(("Other" + std::to_string(i)).c_str(), GetModuleHandleW(nullptr));
    RegisterObject("BenchShape", GetModuleHandleW(nullptr));
}

} // namespace

// The registry finds a class's factory under its name in the module's exports.
extern "C" __declspec(dllexport) int BenchShape(IQZUnknown*, const std::type_info& iid, IQZUnknown** out) {
    auto* shape = new Shape;
    const int found = shape->QueryInterface(iid, out);
    shape->Release();
    return found;
}

void object_rows(Ledger& ledger) {
    ledger.row({"objects", "create by class name", "unordered_map<string, factory>", 0.7,
                [] {
                    register_classes();
                    return static_cast<bool>(create_shape());
                },
                [](State& state) {
                    for (auto _ : state)
                        DoNotOptimize(create_shape().Get());
                },
                [](State& state) {
                    const Factories known = factories();
                    for (auto _ : state)
                        DoNotOptimize(known.find("BenchShape")->second().get());
                }});
    ledger.row({"objects", "query an interface", "dynamic_cast", 0.6,
                [] {
                    Shape shape;
                    return CQZRef<IShape>::Query(&shape)->Corners() == 5;
                },
                [](State& state) {
                    const auto shape = CQZRef<IShape>::Adopt(new Shape);
                    IQZUnknown* unknown = shape.Get();
                    for (auto _ : state) {
                        DoNotOptimize(unknown);
                        const auto found = CQZRef<IShape>::Query(unknown);
                        DoNotOptimize(found.Get());
                    }
                },
                [](State& state) {
                    const std::unique_ptr<Base> shape(new StandardShape);
                    Base* base = shape.get();
                    for (auto _ : state) {
                        DoNotOptimize(base);
                        DoNotOptimize(dynamic_cast<Drawable*>(base));
                    }
                }});
}

} // namespace bench
