// The contract suites over the streams in memory.
#include "contracts/stream_contract.h"
#include "contracts/stream_variant_contract.h"

extern "C" __declspec(dllexport) int TestNote(IQZUnknown*, const std::type_info& iid, IQZUnknown** out) {
    return test::PersistentNote::create(iid, out);
}

namespace {

struct MemoryKind {
    static constexpr const wchar_t* kName = L"Memory stream";
    static constexpr bool kStaysInside = true;
    static constexpr bool kFirstHalfOfWideText = true;
    IXStream* open() { return new_StreamOnMemory(); }
};

// A sink turns the block-wise paths off: what remains must do the same.
struct PatientSink final : CQZUnknownImpl<QZRFC::IProgress> {
    int CheckCancel() override { return 0; }
};

struct WatchedMemoryKind : MemoryKind {
    IXStream* open() { return new_StreamOnMemory(sink.Get()); }
    CQZRef<PatientSink> sink = CQZRef<PatientSink>::Adopt(new PatientSink);
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, StreamContract, MemoryKind);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, StreamVariantContract, MemoryKind);
INSTANTIATE_TYPED_TEST_SUITE_P(WatchedMemory, StreamContract, WatchedMemoryKind);
INSTANTIATE_TYPED_TEST_SUITE_P(WatchedMemory, StreamVariantContract, WatchedMemoryKind);
