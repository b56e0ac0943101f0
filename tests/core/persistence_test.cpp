// Object records in streams. The platform's header comes first here and last in plug-ins: either order will
// do.
#include <windows.h>

#include "contracts/persistent_note.h"
#include "qzbytes.h"
#include "qzexception.h"
#include "qzvariant.h"
#include "support/file_failure.h"
#include "support/hex.h"

#include <gtest/gtest.h>

#include <string>

using test::PersistentNote;

extern "C" __declspec(dllexport) int TestNote(IQZUnknown*, const std::type_info& iid, IQZUnknown** out) {
    return PersistentNote::create(iid, out);
}

extern "C" __declspec(dllexport) int TestRefusal(IQZUnknown*, const std::type_info&, IQZUnknown**) {
    return 0;
}

extern "C" __declspec(dllexport) int TestOutburst(IQZUnknown*, const std::type_info& iid, IQZUnknown** out) {
    PersistentNote::create(iid, out);
    throw CXException(4711);
}

namespace {

const char kNote[] = "'TestNote' 00 04000000 03 'abc'";
const char kForeign[] = "'NoSuchClass' 00 05000000 de ad 00 0a ff";

class Persistence : public testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"TestNote", "TestRefusal", "TestOutburst"})
            ASSERT_EQ(RegisterObject(name, GetModuleHandleW(nullptr)), 1);
    }
    void TearDown() override {
        object.Reset();
        for (const char* name : {"TestNote", "TestRefusal", "TestOutburst"})
            UnregisterObject(name);
        PersistentNote::on_load = nullptr;
        EXPECT_EQ(PersistentNote::live, 0);
    }

    static CQZRef<IXStream> holding(std::string_view bytes) { return qz::stream_of(bytes); }
    int read(IXStream& s) {
        IQZUnknown* out = nullptr;
        const int result = ReadObjectFromXStream(&s, &out);
        object = CQZRef<IQZUnknown>::Adopt(out);
        return result;
    }
    int read(std::string_view hex) { return read(*holding(test::from_hex(hex))); }

    static std::string written(IPersistXStream* persistent) {
        const auto s = holding("");
        EXPECT_EQ(WriteObjectToXStream(s.Get(), persistent), 1);
        EXPECT_EQ(s->GetPosition(), s->GetSize());
        return test::to_hex(qz::bytes_of(*s));
    }
    CQZRef<IPersistXStream> persistent() const { return CQZRef<IPersistXStream>::Query(object.Get()); }
    static std::string spaced(std::string_view hex) { return test::to_hex(test::from_hex(hex)); }

    CQZRef<IQZUnknown> object; // what was read last
};

TEST_F(Persistence, RecordsAreNameLengthAndData) {
    struct Row {
        const char* name;
        const char* text;
        bool saves_nothing;
        unsigned overstated;
        const char* bytes;
        unsigned size; // as SizeOfObject tells it
    };
    const Row rows[] = {
        {"TestNote", "abc", false, 0, kNote, 17},
        {"TestNote", "", false, 0, "'TestNote' 00 01000000 00", 14},
        {"TestNote", "", true, 0, "'TestNote' 00 00000000", 14},
        {"TestNote", "abc", false, 6, kNote, 23}, // the length is what was written, not what was said
        {"N", "x", false, 0, "'N' 00 02000000 01 'x'", 8},
        {"", "x", false, 0, "00", 1}, // what a reader would take it for
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.bytes);
        const auto note = CQZRef<PersistentNote>::Adopt(new PersistentNote(row.text, row.name));
        note->saves_nothing = row.saves_nothing;
        note->overstated = row.overstated;
        EXPECT_EQ(written(note.Get()), spaced(row.bytes));
        EXPECT_EQ(SizeOfObject(note.Get()), row.size);
    }
    const auto note = CQZRef<PersistentNote>::Adopt(new PersistentNote("", "N"));
    note->overstated = 0xFFFFFFFE; // with its own byte: the largest number
    EXPECT_EQ(SizeOfObject(note.Get()), 5u) << "sizes wrap at 32 bits";
}

TEST_F(Persistence, ANullObjectIsOneZeroByte) {
    EXPECT_EQ(written(nullptr), "00");
    EXPECT_EQ(SizeOfObject(nullptr), 1u);
    const auto s = holding(test::from_hex("00 11"));
    EXPECT_EQ(read(*s), 0);
    EXPECT_FALSE(object);
    EXPECT_EQ(s->GetPosition(), 1u);
}

TEST_F(Persistence, WritesBehindWhatIsThere) {
    const auto s = holding("0123456789");
    const auto note = CQZRef<PersistentNote>::Adopt(new PersistentNote("abc"));
    s->Seek(0, 2);
    WriteObjectToXStream(s.Get(), note.Get());
    WriteObjectToXStream(s.Get(), nullptr);
    WriteObjectToXStream(s.Get(), note.Get());
    EXPECT_EQ(s->GetSize(), 10u + 17 + 1 + 17);
    s->Seek(10, 0);
    EXPECT_EQ(read(*s), 1);
    EXPECT_EQ(dynamic_cast<PersistentNote&>(*persistent().Get()).text, "abc");
    EXPECT_EQ(s->GetPosition(), 27u);
    EXPECT_EQ(read(*s), 0);
    EXPECT_EQ(read(*s), 1);
    EXPECT_EQ(s->GetPosition(), s->GetSize());
}

TEST_F(Persistence, AnUnknownClassPassesThroughUnchanged) {
    for (const char* bytes : {kForeign, "'TestRefusal' 00 02000000 0102", "'x' 00 00000000"}) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(read(bytes), 1);
        const auto proxy = persistent();
        ASSERT_TRUE(proxy);
        EXPECT_EQ(proxy.Get(), CQZRef<IPersistX>::Query(object.Get()).Get());
        EXPECT_EQ(written(proxy.Get()), spaced(bytes));
        EXPECT_EQ(SizeOfObject(proxy.Get()), test::from_hex(bytes).size());
        EXPECT_FALSE(CQZRef<IXStream>::Query(object.Get()));
    }
}

TEST_F(Persistence, AStandInLoadsAgain) {
    ASSERT_EQ(read(kForeign), 1);
    const auto proxy = persistent();
    EXPECT_STREQ(proxy->GetClassName(), "NoSuchClass");
    proxy->Load(holding("12345678").Get());
    EXPECT_EQ(written(proxy.Get()), spaced("'NoSuchClass' 00 05000000 '12345'"));
    EXPECT_THROW(proxy->Load(holding("1234").Get()), CXException);
    EXPECT_EQ(written(proxy.Get()), spaced("'NoSuchClass' 00 00000000")) << "what it held is gone";
}

TEST_F(Persistence, LengthsBeyondTheStream) {
    struct Row {
        const char* length;
        unsigned code; // 0: read
        const char* rewritten;
    };
    const Row rows[] = {
        {"03000000", 0, "'Foreign' 00 03000000 'abc'"},
        {"04000000", 16, ""},
        {"ffffff7f", 16, ""},
        // From 2 GiB on a length is negative, hence not too long: the stand-in takes what there is.
        {"00000080", 0, "'Foreign' 00 03000000 'abc'"},
        {"ffffffff", 0, "'Foreign' 00 03000000 'abc'"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.length);
        unsigned code = 0;
        try {
            EXPECT_EQ(read(std::string("'Foreign' 00 ") + row.length + "'abc'"), 1);
            EXPECT_EQ(written(persistent().Get()), spaced(row.rewritten));
        } catch (const CXException& e) {
            code = e.GetCode();
        }
        EXPECT_EQ(code, row.code);
    }
    ASSERT_EQ(read("'Foreign' 00 ffffffff 'abc'"), 1);
    EXPECT_EQ(persistent()->GetSizeMax(), 0xFFFFFFFFu) << "the length as it was stored";
}

TEST_F(Persistence, ClassNamesOfUpTo259Characters) {
    for (const unsigned length : {1u, 258u, 259u}) {
        const std::string record = std::string(length, 'n') + test::from_hex("00 02000000 1122");
        EXPECT_EQ(read(*holding(record)), 1) << length;
        EXPECT_EQ(written(persistent().Get()), test::to_hex(record));
    }
    // Of a longer name the first 260 characters are the name; the length is read from where it goes on.
    const std::string longer = std::string(260, 'n') + test::from_hex("02000000 1122");
    EXPECT_EQ(read(*holding(longer)), 1);
    EXPECT_EQ(std::string(persistent()->GetClassName()), std::string(260, 'n'));
    EXPECT_EQ(persistent()->GetSizeMax(), 2u);
}

TEST_F(Persistence, WhatAClassThrowsPassesThrough) {
    PersistentNote::on_load = [](IXStream*) { throw CXException(99); };
    for (const auto& [bytes, code] :
         {std::pair{kNote, "code 99"}, std::pair{"'TestOutburst' 00 00000000", "code 4711"},
          std::pair{"'TestNote'", "code 4"}, std::pair{"'NoSuchClass' 00 05000000 de", "code 16"}}) {
        const auto s = holding(test::from_hex(bytes));
        IQZUnknown* out = s.Get();
        EXPECT_EQ(failure_of([&] { ReadObjectFromXStream(s.Get(), &out); }), code);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(PersistentNote::live, 0);
    }
}

TEST_F(Persistence, SkippingGoesToTheEndOfTheRecord) {
    struct Row {
        const char* bytes;
        unsigned start, end;
    };
    const Row rows[] = {
        {"'TestNote' 00 04000000 03 'abc' ff", 0, 17},
        {"ff 'NoSuchClass' 00 05000000 de ad 00 0a ff ff", 1, 22},
        {"'x' 00 00000000 ff", 0, 6},
        {"'x' 00 04000000 ff", 0, 7},     // cut short
        {"'x' 00 ffffffff ffffff", 0, 9}, // never backwards
        {"'x' 00 00000080 ffffff", 0, 9},
        {"00 02000000 1122 33", 0, 7}, // the null record is taken for one with an empty name
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.bytes);
        const auto s = holding(test::from_hex(row.bytes));
        s->Seek(static_cast<int>(row.start), 0);
        EXPECT_EQ(SkipObjectToXStream(s.Get()), row.start);
        EXPECT_EQ(s->GetPosition(), row.end);
    }
    for (const char* bytes : {"", "'Tes'", "'Test' 00", "00"})
        EXPECT_THROW(SkipObjectToXStream(holding(test::from_hex(bytes)).Get()), CXEofException) << bytes;
}

TEST_F(Persistence, ObjectsInVariantsInObjects) {
    PersistentNote::on_load = [](IXStream* stream) {
        CQZVariant inner;
        EXPECT_EQ(stream->ReadVariant(&inner), 1);
        EXPECT_EQ(inner.vt, QZVT_OBJECT);
    };
    const auto s = holding(test::from_hex("'TestNote' 00 19000000"
                                          "1200 'NoSuchClass' 00 05000000 de ad 00 0a ff"
                                          "01 'o' 77"));
    EXPECT_EQ(read(*s), 1);
    EXPECT_EQ(dynamic_cast<PersistentNote&>(*persistent().Get()).text, "o");
    EXPECT_EQ(s->ReadByte(), 0x77);
}

TEST_F(Persistence, AnObjectThatNobodyTakesIsReleased) {
    EXPECT_EQ(ReadObjectFromXStream(holding(test::from_hex(kNote)).Get(), nullptr), 1);
    EXPECT_EQ(PersistentNote::live, 0);
}

} // namespace
