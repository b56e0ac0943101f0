// The stored form of variants, the same in every IXStream but for wide text: a suite over the kinds of
// stream_contract.h. The expected bytes are written by hand.
//
// The program that instantiates it exports a factory named TestNote (PersistentNote::create).
#pragma once

#include "contracts/persistent_note.h"
#include "contracts/stream_contract.h"
#include "qzheap.h"
#include "qzvariant.h"
#include "support/live_blocks.h"
#include "support/variants.h"

#include <cwchar>

#include <windows.h>

namespace stream_contract {

// What ReadVariant makes of a stream: "result, type value", or the failure and the record.
inline std::string read_variant(IXStream& s) {
    CQZVariant v("what was there before");
    std::string result;
    try {
        result = std::to_string(s.ReadVariant(&v));
    } catch (const CXException& e) {
        result = "failure " + std::to_string(e.GetCode());
    }
    return result + ", " + describe(v);
}

struct VariantRow {
    const char* name;
    CQZVariant value;
    const char* bytes;
};

inline std::vector<VariantRow> stored_variants() {
    char bytes[] = {1, 2, '\xFF'};
    std::vector<VariantRow> rows = {
        {"empty", CQZVariant(), "0000 00000000"},
        {"bool", CQZVariant(7, QZVT_BOOL), "0100 01000000"},
        {"byte", CQZVariant(static_cast<unsigned char>(200)), "0200 c8"},
        {"word", CQZVariant(static_cast<unsigned short>(0xABCD)), "0300 cdab"},
        {"unsigned long", CQZVariant(0xDEADBEEFul), "0400 efbeadde"},
        {"int", CQZVariant(-2), "0500 feffffff"},
        {"unsigned", CQZVariant(3000000000u), "0600 005ed0b2"},
        {"long", CQZVariant(-1l), "0700 ffffffff"},
        {"double", CQZVariant(-2.5), "0800 00000000000004c0"},
        {"float", CQZVariant(1.5f), "0900 0000c03f"},
        {"text", CQZVariant("xy"), "0a00 03000000 787900"},
        {"no text", CQZVariant(""), "0a00 01000000 00"},
        {"size", CQZVariant(tagSIZE{3, -4}), "0b00 03000000 fcffffff"},
        {"real size", CQZVariant(tagRSIZE{0.5, 2}), "0c00 000000000000e03f 0000000000000040"},
        {"point", CQZVariant(tagPOINT{-1, 258}), "0d00 ffffffff 02010000"},
        {"real point", CQZVariant(tagRPOINT{1, -1}), "0e00 000000000000f03f 000000000000f0bf"},
        {"rectangle", CQZVariant(tagRECT{1, 2, 3, 4}), "0f00 01000000 02000000 03000000 04000000"},
        {"real rectangle", CQZVariant(tagRRECT{0.5, 1, 2, -2}),
         "1000 000000000000e03f 000000000000f03f 0000000000000040 00000000000000c0"},
        {"blob", CQZVariant(tagQZBLOB{3, bytes}), "1100 03000000 0102ff"},
        {"no blob", CQZVariant(tagQZBLOB{0, nullptr}), "1100 00000000"},
        {"bytes that are not there", CQZVariant(tagQZBLOB{3, nullptr}), "1100 03000000 000000"},
        {"no object", CQZVariant(static_cast<IQZUnknown*>(nullptr)), "1200 00"},
    };
    return rows;
}

// Registers TestNote as long as it lives.
struct NoteClass {
    NoteClass() { EXPECT_EQ(RegisterObject("TestNote", GetModuleHandleW(nullptr)), 1); }
    ~NoteClass() { UnregisterObject("TestNote"); }
};

} // namespace stream_contract

template <class Kind>
class StreamVariantContract : public StreamContract<Kind> {
protected:
    // The bytes that WriteVariant makes.
    std::string written(const tagQZVARIANT& v) {
        const auto s = this->another();
        EXPECT_EQ(s->WriteVariant(&v), 1);
        EXPECT_EQ(s->GetPosition(), s->GetSize());
        return this->content(*s);
    }
    std::string read(std::string_view hex) {
        return stream_contract::read_variant(*this->another(test::from_hex(hex)));
    }
    static std::string spaced(std::string_view hex) { return test::to_hex(test::from_hex(hex)); }
};
TYPED_TEST_SUITE_P(StreamVariantContract);

TYPED_TEST_P(StreamVariantContract, EachTypeHasItsBytes) {
    for (const auto& row : stream_contract::stored_variants()) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(this->written(row.value), this->spaced(row.bytes));
        const auto s = this->another(test::from_hex(row.bytes));
        CQZVariant back("what was there before");
        const bool nothing_last =
            row.value.vt == QZVT_OBJECT || (row.value.vt == QZVT_BLOB && row.value.blobVal.cbSize == 0);
        EXPECT_EQ(s->ReadVariant(&back), nothing_last ? 0 : 1);
        EXPECT_EQ(s->GetPosition(), s->GetSize());
        EXPECT_EQ(back.vt, row.value.vt);
        EXPECT_EQ(this->written(back), this->spaced(row.bytes));
    }
}

TYPED_TEST_P(StreamVariantContract, AWideTextIsCountedByTheKindOfStream) {
    struct Row {
        const wchar_t* text;
        const char *whole, *half; // bytes
        const char* back_from_half;
    };
    const Row rows[] = {
        {L"", "1300 02000000 0000", "1300 01000000 00", ""},
        {L"x", "1300 04000000 78000000", "1300 02000000 7800", "x"},
        {L"xy", "1300 06000000 780079000000", "1300 03000000 780079", "xy"},
        {L"abc", "1300 08000000 6100620063000000", "1300 04000000 61006200", "ab"},
        {L"abcd", "1300 0a000000 61006200630064000000", "1300 05000000 6100620063", "abc"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.half);
        EXPECT_EQ(this->written(CQZVariant(row.text)),
                  this->spaced(TypeParam::kFirstHalfOfWideText ? row.half : row.whole));
        // Every stream reads both.
        EXPECT_EQ(this->read(row.whole), "1, wide '" + narrow(row.text) + "'");
        EXPECT_EQ(this->read(row.half), "1, wide '" + std::string(row.back_from_half) + "'");
    }
}

TYPED_TEST_P(StreamVariantContract, LongValuesAreWhole) {
    const std::string text(100'000, 'x');
    const CQZVariant values[] = {
        CQZVariant(text.c_str()),
        CQZVariant(std::wstring(100'000, L'\x0439').c_str()),
        CQZVariant(tagQZBLOB{100'000, const_cast<char*>(text.data())}),
    };
    for (const CQZVariant& value : values) {
        const auto s = this->another();
        s->WriteVariant(&value);
        s->WriteByte(0x5A); // what follows is not taken for a part of it
        s->Seek(0, 0);
        CQZVariant back;
        EXPECT_EQ(s->ReadVariant(&back), 1);
        EXPECT_EQ(s->ReadByte(), 0x5A);
        if (value.vt != QZVT_WTEXT) {
            EXPECT_TRUE(back == value) << value.vt;
        } else {
            EXPECT_EQ(std::wcslen(back.pwszVal), TypeParam::kFirstHalfOfWideText ? 50'001u : 100'000u);
        }
    }
}

TYPED_TEST_P(StreamVariantContract, AnInvalidTypeIsACodeWithoutValue) {
    for (const unsigned short vt : {20, 21, 255, 16384, 65535}) {
        SCOPED_TRACE(vt);
        tagQZVARIANT v;
        QZVariantInit(&v);
        v.vt = vt;
        const auto s = this->another();
        s->WriteVariant(&v);
        EXPECT_EQ(s->GetSize(), 2u);
        s->Seek(0, 0);
        CQZVariant back(5);
        EXPECT_EQ(failure_of([&] { s->ReadVariant(&back); }), failure(15, 1, TypeParam::kName));
        EXPECT_EQ(back.vt, 0) << "nobody takes it for a value";
    }
}

TYPED_TEST_P(StreamVariantContract, MalformedValues) {
    struct Row {
        const char* bytes;
        std::string expected;
    };
    const Row rows[] = {
        {"", "0, empty"},
        {"05", "0, int 0"}, // half a code
        {"0500", "0, int 0"},
        {"0500 1122", "1, int 8721"},
        {"0200 ff 01", "1, byte 255"},
        {"0a00", "0, text ''"},
        {"0a00 03", "0, text ''"},
        {"0a00 00000000 7879", "0, text ''"},
        {"0a00 03000000 78", "1, text 'x'"},
        {"0a00 02000000 7879", "1, text 'xy'"},      // without its terminator
        {"0a00 05000000 7800797a00", "1, text 'x'"}, // with more behind it
        {"0a00 ffffffff 787900", "1, text 'xy'"},    // 4 GiB announced
        {"0a00 feffffff", "0, text ''"},
        {"1300", "0, wide ''"},
        {"1300 03000000 780079", "1, wide 'xy'"}, // half a unit at the end
        {"1300 04000000 78007900", "1, wide 'xy'"},
        {"1300 ffffffff 78007900", "1, wide 'xy'"},
        {"1300 00000080 7800", "1, wide 'x'"},
        {"1100", "failure 4, blob 0 null"},
        {"1100 00000000", "0, blob 0 null"},
        {"1100 04000000 0102", "1, blob 01020000"}, // the size stays, with zeroes
        {"1100 04000000", "0, blob 00000000"},
        {"1100 00200000 01", "1, blob 01" + std::string(62, '0') + "... of 8192"},
        {"1100 ffffffff 01", "failure 2, blob 0 null"}, // 4 GiB announced
        {"0a00 00000070 787900", "1, text 'xy'"},
        {"1100 00000070 7879", "failure 2, blob 0 null"},
        {"1100 02000004 01", "failure 2, blob 0 null"}, // a byte more than 64 MiB beyond the end
        {"1200", "failure 4, object null"},
        {"1200 00", "0, object null"},
        {"1200 'NoSuchClass'", "failure 4, object null"},
        {"1200 'NoSuchClass' 00", "failure 4, object null"},
        {"1200 'NoSuchClass' 00 04000000 'abc'", "failure 16, object null"},
        {"1200 'NoSuchClass' 00 04000000 'abcd'", "1, object object"},
    };
    unsigned long long before = 0, after = 0;
    Get_CoreActivity(&before, nullptr);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.bytes);
        EXPECT_EQ(this->read(row.bytes), row.expected);
    }
    Get_CoreActivity(&after, nullptr);
    EXPECT_LT(after - before, 1u << 20) << "no more is allocated than there is";
}

TYPED_TEST_P(StreamVariantContract, CutAtAnyByteNothingLeaks) {
    const stream_contract::NoteClass registered;
    std::string all;
    for (const auto& row : stream_contract::stored_variants())
        all += test::from_hex(row.bytes);
    all += test::from_hex("1300 06000000 780079000000"
                          "1200 'TestNote' 00 04000000 03 'abc'"
                          "1200 'NoSuchClass' 00 04000000 'abcd'");
    std::size_t blocks = 0;
    for (int round = 0; round < 2; ++round) { // the first fills what the library keeps for later
        blocks = live_blocks();
        for (std::size_t length = 0; length < all.size(); ++length) {
            SCOPED_TRACE(length);
            const auto s = this->another(all.substr(0, length));
            CQZVariant v;
            try {
                while (s->GetPosition() < length)
                    s->ReadVariant(&v);
            } catch (const CXException& e) {
                EXPECT_TRUE(e.GetCode() == QZERR_EOF || e.GetCode() == QZERR_LENGTH) << e.GetCode();
            }
        }
    }
    EXPECT_EQ(live_blocks(), blocks);
    EXPECT_EQ(test::PersistentNote::live, 0);
}

TYPED_TEST_P(StreamVariantContract, ObjectsTravelByTheirClassName) {
    using test::PersistentNote;
    const stream_contract::NoteClass registered;
    {
        const auto note = CQZRef<PersistentNote>::Adopt(new PersistentNote("abc"));
        const CQZVariant v(static_cast<IQZUnknown*>(note.Get()));
        EXPECT_EQ(this->written(v), this->spaced("1200 'TestNote' 00 04000000 03 'abc'"));
        EXPECT_EQ(note->AddRef(), 3u) << "the query for persistence was given back";
        note->Release();

        CQZVariant back;
        EXPECT_EQ(this->another(test::from_hex("1200 'TestNote' 00 04000000 03 'abc'"))->ReadVariant(&back),
                  1);
        const auto persistent = CQZRef<IPersistXStream>::Query(back.pUnkVal);
        const auto* copy = dynamic_cast<PersistentNote*>(persistent.Get());
        ASSERT_NE(copy, nullptr);
        EXPECT_EQ(copy->text, "abc");
    }
    EXPECT_EQ(PersistentNote::live, 0);
    const CQZVariant mute(static_cast<IQZUnknown*>(this->stream.Get())); // cannot save itself
    EXPECT_EQ(this->written(mute), "12 00 00");
}

REGISTER_TYPED_TEST_SUITE_P(StreamVariantContract, EachTypeHasItsBytes, AWideTextIsCountedByTheKindOfStream,
                            LongValuesAreWhole, AnInvalidTypeIsACodeWithoutValue, MalformedValues,
                            CutAtAnyByteNothingLeaks, ObjectsTravelByTheirClassName);
