// Documents: storages and streams that a progress sink watches.
#include "support/cancelling_sink.h"
#include "support/param_outline.h"
#include "support/storages.h"

#include <gtest/gtest.h>

namespace {

// The names of the child storages, in one line.
std::string children_in(IXStorage& storage) {
    std::string all;
    for (const std::string& name : take_names(storage.EnumStorages()))
        all += (all.empty() ? "" : " ") + name;
    return all;
}

constexpr int kFlags = static_cast<int>(0x80000005);

class DocStorage : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(new_CIXDocStorage(raw.Get(), sink.Get(), document.Put(), kFlags), 1);
        ASSERT_TRUE(document);
    }

    StreamRef stream_of(const std::string& bytes) {
        put_stream(*raw, "s", bytes);
        auto stream = StreamRef::Adopt(document->OpenStream("s"));
        sink->asked = 0;
        return stream;
    }

    int sinks = 0;
    StorageRef raw = memory_storage();
    CQZRef<CancellingSink> sink = CQZRef<CancellingSink>::Adopt(new CancellingSink(&sinks));
    StorageRef document;
};

TEST_F(DocStorage, EverythingInsideKnowsTheDocument) {
    {
        const auto one = StorageRef::Adopt(document->CreateStorage("one"));
        const auto two = StorageRef::Adopt(one->CreateStorage("two"));
        StreamRef::Adopt(two->CreateStream("s"))->WriteByte(7);
        EXPECT_EQ(sink->asked, 1);
    }
    EXPECT_EQ(layout_of(*raw), "one{two{s=1}}");

    const auto one = StorageRef::Adopt(document->OpenStorage("one"));
    const auto two = StorageRef::Adopt(one->OpenStorage("two"));
    document.Reset(); // what is inside holds it
    const auto stream = StreamRef::Adopt(two->OpenStream("s"));
    const auto info = CQZRef<IDocStrorageInfo>::Query(stream.Get());
    ASSERT_TRUE(info);
    StorageRef storage, top;
    StreamRef below;
    EXPECT_EQ(info->GetStorage(storage.Put()), 1);
    EXPECT_EQ(storage, raw);
    EXPECT_EQ(info->GetDocStorage(top.Put()), 1);
    EXPECT_EQ(children_in(*top), "one");
    EXPECT_NE(top, storage);
    EXPECT_EQ(info->GetRawStream(below.Put()), 1);
    EXPECT_NE(below, stream);
    EXPECT_EQ(info->GetFlags(), 0x80000005u);
    EXPECT_EQ(info->Reserved2() + info->Reserved4() + info->Reserved6(), 0);
    EXPECT_EQ(info->GetStorage(nullptr), 0);

    EXPECT_EQ(stream->QueryInterface(typeid(IXStream), nullptr), 1);
    CQZRef<IQZUnknown> primary;
    EXPECT_EQ(info->QueryInterface(typeid(IQZUnknown), primary.Put()), 1);
    EXPECT_EQ(primary.Get(), static_cast<IQZUnknown*>(stream.Get()));
}

TEST_F(DocStorage, TheRestPassesThrough) {
    put_stream(*raw, "a", "1");
    StorageRef::Adopt(raw->CreateStorage("s"));
    const auto inner = StorageRef::Adopt(document->OpenStorage("s"));
    EXPECT_EQ(StorageRef::Adopt(inner->GetParent()), raw) << "not the document's";
    EXPECT_EQ(document->GetParent(), nullptr);
    EXPECT_EQ(layout_of(*inner), "");
    EXPECT_EQ(document->Commit(), 0);
    EXPECT_STREQ(document->GetName(), L"");
    EXPECT_EQ(document->OpenStream("none"), nullptr);
    EXPECT_EQ(thrown_by([&] { document->OpenStorage("none"); }), "6, 0, none");
    EXPECT_EQ(thrown_by([&] { document->DestroyStream("none"); }), "6, 4, ");
    document->DestroyStream("a");
    StorageRef::Adopt(raw->CreateStorage("t"));
    document->DestroyStorage("t");
    EXPECT_EQ(children_in(*document), "s");
    EXPECT_EQ(Storage_GetOLEStorage(document.Get()), nullptr);
}

TEST_F(DocStorage, AStreamMayHaveNoDocument) {
    const auto memory = StreamRef::Adopt(new_StreamOnMemory());
    StreamRef stream;
    StorageRef none;
    for (IXStorage* const storage : {raw.Get(), static_cast<IXStorage*>(nullptr)}) {
        EXPECT_EQ(new_CIXDocStream(storage, memory.Get(), stream.Put(), 3), 1);
        sink->cancel_from = 1;
        stream->WriteByte(1);
        const auto info = CQZRef<IDocStrorageInfo>::Query(stream.Get());
        EXPECT_EQ(info->GetStorage(none.Put()), 0);
        EXPECT_FALSE(none);
        EXPECT_EQ(info->GetDocStorage(none.Put()), 0);
        EXPECT_FALSE(none);
        StreamRef below;
        EXPECT_EQ(info->GetRawStream(below.Put()), 1);
        EXPECT_EQ(below, memory);
        EXPECT_EQ(info->GetFlags(), 3u);
    }
    // One made for a storage deeper inside belongs to the whole document.
    const auto inner = StorageRef::Adopt(document->CreateStorage("s"));
    EXPECT_EQ(new_CIXDocStream(inner.Get(), memory.Get(), stream.Put(), 0), 1);
    EXPECT_EQ(thrown_by([&] { stream->WriteByte(1); }), "1");
    EXPECT_EQ(CQZRef<IDocStrorageInfo>::Query(stream.Get())->GetDocStorage(none.Put()), 1);
    EXPECT_EQ(none, document);

    EXPECT_EQ(new_CIXDocStorage(raw.Get(), nullptr, none.Put(), 0), 1);
    put_stream(*none, "quiet", "1234"); // nobody is asked
    EXPECT_EQ(new_CIXDocStorage(nullptr, nullptr, none.Put(), 0), 1);
    EXPECT_FALSE(none);
    EXPECT_EQ(new_CIXDocStream(nullptr, nullptr, stream.Put(), 0), 1);
    EXPECT_FALSE(stream);
}

TEST_F(DocStorage, EverythingIsReleased) {
    auto stream = stream_of("x");
    CancellingSink* const watched = sink.Get();
    sink.Reset();
    document.Reset();
    EXPECT_EQ(sinks, 1) << "the stream holds the document, and that the sink";
    EXPECT_EQ(watched->asked, 0);
    stream.Reset();
    EXPECT_EQ(sinks, 0);
    EXPECT_EQ(raw->AddRef(), 2u);
    raw->Release();
}

} // namespace
