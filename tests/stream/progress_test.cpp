// Streams that a progress sink watches: those in memory, and those of documents.
#include "support/cancelling_sink.h"
#include "support/file_failure.h"
#include "support/hex.h"
#include "support/storages.h"

#include "qzvariant.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

struct MemoryKind {
    static constexpr int kOthers = 0; // how often it is asked after a call that transfers nothing
    static StreamRef open(CancellingSink& sink) { return StreamRef::Adopt(new_StreamOnMemory(&sink)); }
};

struct DocumentKind {
    static constexpr int kOthers = 1;
    static StreamRef open(CancellingSink& sink) {
        StorageRef document;
        new_CIXDocStorage(memory_storage().Get(), &sink, document.Put(), 0);
        return StreamRef::Adopt(document->CreateStream("s"));
    }
};

template <class Kind>
class StreamProgress : public testing::Test {};
using Kinds = testing::Types<MemoryKind, DocumentKind>;
TYPED_TEST_SUITE(StreamProgress, Kinds);

TYPED_TEST(StreamProgress, TheStreamHoldsItsSink) {
    int sinks = 0;
    auto sink = CQZRef<CancellingSink>::Adopt(new CancellingSink(&sinks));
    auto stream = TypeParam::open(*sink);
    sink.Reset();
    EXPECT_EQ(sinks, 1);
    stream.Reset();
    EXPECT_EQ(sinks, 0);
}

struct Operation {
    const char* name;
    int transfers; // the sink is asked after each
    int others;    // calls that transfer nothing
    std::function<void(IXStream&)> run;
};

std::vector<Operation> operations() {
    static const CQZVariant number(1.5), text("xy");
    static char line[16];
    static wchar_t wide[16];
    static CQZVariant out;
    return {
        {"write", 1, 0, [](IXStream& s) { s.Write("abc", 3); }},
        {"nothing", 1, 0, [](IXStream& s) { s.Write("", 0); }},
        {"typed write", 1, 0, [](IXStream& s) { s.WriteDouble(1); }},
        {"text", 1, 0, [](IXStream& s) { s.WriteString("abc"); }},
        {"variant", 2, 0, [](IXStream& s) { s.WriteVariant(&number); }},
        {"text variant", 3, 0, [](IXStream& s) { s.WriteVariant(&text); }}, // code, count, text
        {"read", 1, 0, [](IXStream& s) { s.Read(line, 3); }},
        {"typed read", 1, 0, [](IXStream& s) { s.ReadWord(); }},
        {"line", 4, 0, [](IXStream& s) { s.ReadLine(line, 10); }}, // for each character
        {"wide line", 2, 0, [](IXStream& s) { s.ReadLineW(wide, 2); }},
        {"read variant", 3, 1, [](IXStream& s) { s.Seek(4, 0), s.ReadVariant(&out); }},
        {"read an empty blob", 3, 1, [](IXStream& s) { s.Seek(13, 0), s.ReadVariant(&out); }},
        {"read a long text", 3, 1, [](IXStream& s) { s.Seek(19, 0), s.ReadVariant(&out); }},
        {"seek", 0, 3, [](IXStream& s) { s.Seek(1, 0), s.GetPosition(), s.GetSize(); }},
        {"read at the end", 0, 2, [](IXStream& s) { s.Seek(0, 2), s.Read(line, 3); }},
    };
}

// "abc", line feed, a text variant "xy", one of an empty blob, a text with more than is allocated unseen
const std::string kStart =
    test::from_hex("'abc' 0a 0a00 03000000 787900 1100 00000000 0a00 00200000") + std::string(8192, 'x');

// Cancelled at its k-th transfer, an operation has moved what the first k transfers move, and the stream
// works on as if it had never been asked for more. In round 0 nothing cancels.
TYPED_TEST(StreamProgress, TheSinkIsAskedAfterEachTransferAndMayCancel) {
    for (const Operation& operation : operations()) {
        const int all = operation.transfers + operation.others * TypeParam::kOthers;
        for (int k = 0; k <= all; ++k) {
            SCOPED_TRACE(testing::Message() << operation.name << " at " << k);
            const auto sink = CQZRef<CancellingSink>::Adopt(new CancellingSink);
            const auto stream = TypeParam::open(*sink);
            stream->Write(kStart.data(), static_cast<unsigned>(kStart.size()));
            stream->Seek(0, 0);
            sink->asked = 0;
            if (k != 0) sink->cancel_from = k;
            EXPECT_EQ(failure_of([&] { operation.run(*stream); }), k != 0 ? "code 1" : "");
            EXPECT_EQ(sink->asked, k != 0 ? k : all);
            if (k == 0) continue;
            sink->cancel_from = 1'000'000;
            EXPECT_GE(stream->GetPosition(), operation.name == std::string("nothing") ? 0u : 1u);
            EXPECT_LE(stream->GetPosition(), stream->GetSize());
            sink->asked = 0;
            stream->Seek(0, 2);
            stream->WriteByte(1);
            EXPECT_EQ(sink->asked, 1 + TypeParam::kOthers);
        }
    }
}

TYPED_TEST(StreamProgress, ACancelledTransferHasHappened) {
    const auto sink = CQZRef<CancellingSink>::Adopt(new CancellingSink);
    const auto stream = TypeParam::open(*sink);
    const auto expect_cancelled = [&](int at, auto call) {
        sink->cancel_from = sink->asked + at;
        EXPECT_EQ(failure_of(call), "code 1");
        sink->cancel_from = 1'000'000;
    };
    expect_cancelled(1, [&] { stream->Write("abc\n", 4); });
    EXPECT_EQ(stream->GetPosition(), 4u);
    EXPECT_EQ(stream->GetSize(), 4u);
    stream->Seek(0, 0);
    char buffer[8] = "-------";
    expect_cancelled(1, [&] { stream->Read(buffer, 2); });
    EXPECT_STREQ(buffer, "ab-----");
    EXPECT_EQ(stream->GetPosition(), 2u);
    expect_cancelled(2, [&] { stream->ReadLine(buffer, 6); }); // at the line feed
    EXPECT_EQ(stream->GetPosition(), 4u);
}

} // namespace
