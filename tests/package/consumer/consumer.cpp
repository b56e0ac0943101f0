// A program of somebody else: settings in a tree, an object of a plug-in, exceptions across three modules.
#include "tally.h"

#include <qzcore.h>

#include <cstdio>
#include <thread>

namespace {

CQZRef<ITally> new_tally() {
    RegisterObject("PackageTally", "tally.dll");
    IQZUnknown* made = nullptr;
    if (CreateObject("PackageTally", nullptr, typeid(ITally), &made) == 0) return nullptr;
    return CQZRef<ITally>::Adopt(static_cast<ITally*>(made));
}

void store_and_read(ITally* tally) {
    const auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    WriteObjectToXStream(stream.Get(), tally);
    stream->Seek(0, 0);
    IQZUnknown* read = nullptr;
    ReadObjectFromXStream(stream.Get(), &read);
    const auto object = CQZRef<IQZUnknown>::Adopt(read);
    std::printf("read back: %d\n", CQZRef<ITally>::Require(read)->Total());
}

} // namespace

int main() {
    const auto settings = CQZRef<IParam>::Adopt(new_MemParam());
    const CQZVariant spacing(12.5);
    settings->SetValue("Spacing", &spacing);
    CXString text;
    Param_Param2String(settings.Get(), text);
    std::printf("%s\n", text.GetData());

    const CQZRef<ITally> tally = new_tally();
    if (!tally) return 1;
    std::thread([&] { tally->Add(42); }).join();
    store_and_read(tally.Get());
    tally->Add(-43);
    try {
        store_and_read(tally.Get());
        return 1;
    } catch (const CXException& e) {
        std::printf("caught: %u\n", e.m_nCode);
    }
}
