// The contract suites over the streams in memory, of storages and of the platform.
#include "contracts/stream_contract.h"
#include "contracts/stream_variant_contract.h"
#include "support/scratch_folder.h"
#include "support/storages.h"

#include <list>

#include <objbase.h>

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

// Each stream lies in a storage of its own: one storage opens a stream only once. The first storage is kept,
// and of the others as many as a test uses at a time.
struct StorageKind {
    static constexpr const wchar_t* kName = L"stream";
    static constexpr bool kStaysInside = false;
    static constexpr bool kFirstHalfOfWideText = false;
    IXStream* open() {
        const std::string name = std::to_string(opened++);
        storages.push_back(StorageRef::Adopt(root->CreateStorage(name.c_str())));
        if (storages.size() > 8) storages.erase(std::next(storages.begin()));
        return storages.back()->CreateStream("stream");
    }
    int opened = 0;
    StorageRef root = memory_storage();
    std::list<StorageRef> storages;
};

struct TransactedFileKind : StorageKind {
    TransactedFileKind() {
        root = StorageRef::Adopt(new_Storage(folder.path(L"file").c_str(), QZSTORAGE_TRANSACTED));
    }
    ~TransactedFileKind() {
        storages.clear();
        root.Reset();
    }
    ScratchFolder folder;
};

struct PlatformKind {
    static constexpr const wchar_t* kName = L"OLE stream";
    static constexpr bool kStaysInside = false;
    static constexpr bool kFirstHalfOfWideText = false;
    IXStream* open() {
        CQZRef<IStream> platform;
        EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, platform.Put()), S_OK);
        return new_StreamByOleStream(platform.Get());
    }
};

// Any stream inside a document is one of the same rules.
template <class Kind>
struct DocumentOf : Kind {
    static constexpr bool kFirstHalfOfWideText = false;
    DocumentOf() {
        new_CIXDocStorage(memory_storage().Get(), CQZRef<PatientSink>::Adopt(new PatientSink).Get(),
                          document.Put(), 0);
    }
    IXStream* open() {
        const auto raw = StreamRef::Adopt(Kind::open());
        IXStream* wrapped = nullptr;
        new_CIXDocStream(document.Get(), raw.Get(), &wrapped, 0);
        return wrapped;
    }
    StorageRef document;
};
using DocumentInStorage = DocumentOf<StorageKind>;
using DocumentInMemory = DocumentOf<MemoryKind>;

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, StreamContract, MemoryKind);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, StreamVariantContract, MemoryKind);
INSTANTIATE_TYPED_TEST_SUITE_P(WatchedMemory, StreamContract, WatchedMemoryKind);
INSTANTIATE_TYPED_TEST_SUITE_P(WatchedMemory, StreamVariantContract, WatchedMemoryKind);
INSTANTIATE_TYPED_TEST_SUITE_P(Storage, StreamContract, StorageKind);
INSTANTIATE_TYPED_TEST_SUITE_P(Storage, StreamVariantContract, StorageKind);
INSTANTIATE_TYPED_TEST_SUITE_P(TransactedFile, StreamContract, TransactedFileKind);
INSTANTIATE_TYPED_TEST_SUITE_P(TransactedFile, StreamVariantContract, TransactedFileKind);
INSTANTIATE_TYPED_TEST_SUITE_P(Platform, StreamContract, PlatformKind);
INSTANTIATE_TYPED_TEST_SUITE_P(Platform, StreamVariantContract, PlatformKind);
INSTANTIATE_TYPED_TEST_SUITE_P(Document, StreamContract, DocumentInStorage);
INSTANTIATE_TYPED_TEST_SUITE_P(Document, StreamVariantContract, DocumentInStorage);
INSTANTIATE_TYPED_TEST_SUITE_P(MemoryDocument, StreamContract, DocumentInMemory);
INSTANTIATE_TYPED_TEST_SUITE_P(MemoryDocument, StreamVariantContract, DocumentInMemory);
