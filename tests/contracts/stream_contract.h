// What every IXStream does: one suite, run against each implementation.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(Memory, StreamContract, MemoryKind);
//
// A kind opens new, empty, writable streams and declares in what they differ:
//
//     struct MemoryKind {
//         static constexpr const wchar_t* kName = L"Memory stream"; // GetName
//         static constexpr bool kStaysInside = true;                // seeks stop at both ends
//         static constexpr bool kFirstHalfOfWideText = true;        // of a wide text in a variant
//         IXStream* open();                                         // one reference for the caller
//     };
#pragma once

#include "contracts/lines.h"
#include "qzexception.h"
#include "qzref.h"
#include "qzstream.h"
#include "support/file_failure.h"
#include "support/hex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <string>
#include <vector>

template <class Kind>
class StreamContract : public testing::Test {
protected:
    StreamContract() : stream(CQZRef<IXStream>::Adopt(kind.open())) {}
    void SetUp() override { ASSERT_TRUE(stream); }

    // Puts bytes into a new stream.
    static void fill(IXStream& s, std::string_view bytes) {
        s.Write(bytes.data(), static_cast<unsigned>(bytes.size()));
        ASSERT_EQ(s.GetSize(), bytes.size());
        s.Seek(0, 0);
    }
    void fill(std::string_view hex) { fill(*stream, test::from_hex(hex)); }
    CQZRef<IXStream> another(std::string_view bytes = "") {
        auto fresh = CQZRef<IXStream>::Adopt(kind.open());
        fill(*fresh, bytes);
        return fresh;
    }

    // All bytes as hexadecimal text; the position stays.
    static std::string content(IXStream& s) {
        const unsigned position = s.GetPosition();
        std::string bytes(s.GetSize(), '\0');
        s.Seek(0, 0);
        EXPECT_EQ(s.Read(bytes.data(), static_cast<unsigned>(bytes.size())), bytes.size());
        s.Seek(static_cast<int>(position), 0);
        return test::to_hex(bytes);
    }
    std::string content() { return content(*stream); }

    Kind kind;
    CQZRef<IXStream> stream;
};
TYPED_TEST_SUITE_P(StreamContract);

TYPED_TEST_P(StreamContract, IsNewAndAnswersForItsInterfaces) {
    IXStream& s = *this->stream;
    char byte = 'x';
    EXPECT_EQ(s.GetSize(), 0u);
    EXPECT_EQ(s.GetPosition(), 0u);
    EXPECT_EQ(s.Read(&byte, 1), 0u);
    EXPECT_EQ(byte, 'x');
    IQZUnknown* found = nullptr;
    for (const std::type_info* iid : {&typeid(IXStream), &typeid(IQZUnknown)}) {
        EXPECT_EQ(s.QueryInterface(*iid, &found), 1);
        EXPECT_EQ(found, &s);
        EXPECT_EQ(found->Release(), 1u);
    }
    EXPECT_EQ(s.QueryInterface(typeid(IXStorage), &found), 0);
    EXPECT_EQ(found, nullptr);
}

TYPED_TEST_P(StreamContract, TransfersMoveThePosition) {
    IXStream& s = *this->stream;
    s.Write("abcdef", 6);
    EXPECT_EQ(s.GetPosition(), 6u);
    s.Seek(2, 0);
    s.Write("XY", 2);
    EXPECT_EQ(s.GetPosition(), 4u);
    EXPECT_EQ(s.GetSize(), 6u);
    s.Write("Z12345", 6); // over the end
    EXPECT_EQ(s.GetSize(), 10u);
    s.Write("", 0);
    EXPECT_EQ(this->content(), test::to_hex("abXYZ12345"));

    char buffer[8] = "-------";
    s.Seek(-3, 2);
    EXPECT_EQ(s.Read(buffer, 0), 0u);
    EXPECT_EQ(s.Read(buffer, 7), 3u) << "what is left";
    EXPECT_STREQ(buffer, "345----");
    EXPECT_EQ(s.Read(buffer, 7), 0u);
    EXPECT_EQ(s.GetPosition(), 10u);
}

TYPED_TEST_P(StreamContract, SeeksFromThreeOrigins) {
    struct Row {
        int offset;
        unsigned origin;
        unsigned expected;
    };
    const Row inside[] = {{3, 0, 3}, {0, 1, 4}, {-4, 1, 0}, {6, 1, 10}, {0, 2, 10}, {-10, 2, 0}};
    const Row outside[] = {{-5, 0, 0},       {-5, 1, 0},       {-11, 2, 0},     {11, 0, 10},
                           {INT_MAX, 1, 10}, {INT_MAX, 2, 10}, {INT_MIN, 0, 0}, {INT_MIN, 2, 0}};
    std::vector<Row> rows(std::begin(inside), std::end(inside));
    if (TypeParam::kStaysInside) rows.insert(rows.end(), std::begin(outside), std::end(outside));
    this->fill("'0123456789'");
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.offset << " from " << row.origin);
        this->stream->Seek(4, 0);
        EXPECT_EQ(this->stream->Seek(row.offset, row.origin), row.expected);
        EXPECT_EQ(this->stream->GetPosition(), row.expected);
        EXPECT_EQ(this->stream->GetSize(), 10u);
    }
}

TYPED_TEST_P(StreamContract, ABadSeekOriginNamesTheStream) {
    this->fill("'0123'");
    this->stream->Seek(2, 0);
    for (const unsigned origin : {3u, 4u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(origin);
        EXPECT_EQ(failure_of([&] { this->stream->Seek(0, origin); }), failure(10, 3, TypeParam::kName));
        EXPECT_EQ(this->stream->GetPosition(), 2u);
    }
}

TYPED_TEST_P(StreamContract, TypedValuesLieLittleEndian) {
    IXStream& s = *this->stream;
    s.WriteByte(0xFE);
    s.WriteWord(0x1234);
    s.WriteDWord(0xDEADBEEF);
    s.WriteDouble(0.1);
    s.WriteString("");
    s.WriteString("a\xE9");
    s.WriteStringW(L"");
    s.WriteStringW(L"a\x0439");
    EXPECT_EQ(this->content(), test::to_hex(test::from_hex("fe 3412 efbeadde 9a9999999999b93f"
                                                           "00 61e900 0000 6100 3904 0000")));
    s.Seek(0, 0);
    EXPECT_EQ(s.ReadByte(), 0xFE);
    EXPECT_EQ(s.ReadWord(), 0x1234);
    EXPECT_EQ(s.ReadDWord(), 0xDEADBEEF);
    EXPECT_EQ(s.ReadDouble(), 0.1);
    EXPECT_EQ(s.GetPosition(), 15u);
}

TYPED_TEST_P(StreamContract, AValueThatTheEndCutsShortIsFilledWithZeroes) {
    this->fill("11 22 33");
    IXStream& s = *this->stream;
    s.Seek(2, 0);
    EXPECT_EQ(s.ReadWord(), 0x33);
    s.Seek(1, 0);
    EXPECT_EQ(s.ReadDWord(), 0x3322u);
    EXPECT_EQ(s.GetPosition(), 3u);
    s.Seek(0, 0);
    const double value = s.ReadDouble();
    EXPECT_EQ(test::to_hex({reinterpret_cast<const char*>(&value), 8}), "11 22 33 00 00 00 00 00");
}

TYPED_TEST_P(StreamContract, ReadingATypedValueAtTheEndThrows) {
    this->fill("11 22");
    IXStream& s = *this->stream;
    char line[4];
    wchar_t wide[4];
    s.Seek(0, 2);
    const std::function<void()> reads[] = {[&] { s.ReadByte(); },        [&] { s.ReadWord(); },
                                           [&] { s.ReadDWord(); },       [&] { s.ReadDouble(); },
                                           [&] { s.ReadLine(line, 2); }, [&] { s.ReadLineW(wide, 2); }};
    for (std::size_t i = 0; i < std::size(reads); ++i) {
        EXPECT_THROW(reads[i](), CXEofException) << i;
        EXPECT_EQ(s.GetPosition(), 2u) << i;
    }
}

namespace stream_contract {

inline constexpr lines::Row kLines[] = {
    {"", 0, 10, "end: ............ @0"},
    {"$", 0, 10, "1: $0.......... @1"},
    {"0", 0, 10, "1: 00.......... @1"},
    {"ab$cd", 0, 10, "3: ab$0........ @3"},
    {"ab0cd", 0, 10, "3: ab00........ @3"},
    {"ab$cd", 3, 10, "end: cd.......... @5"},
    {"a\r$b", 0, 10, "3: a\r$0........ @3"}, // a carriage return is a character like any other
    {"abcd$", 0, 5, "5: abcd$0...... @5"},
    {"abcde", 0, 5, "6: abcde.0..... @5"}, // the place behind the last character is skipped
    {"abcdefg$", 0, 5, "6: abcde.0..... @5"},
    {"abcdefg$", 5, 5, "3: fg$0........ @8"},
    {"$$", 0, 1, "1: $0.......... @1"},
    {"ab", 0, 1, "2: a.0......... @1"},
    {"ab$", 0, 0, "1: .0.......... @0"},
    {"ab$", 0, -7, "1: .0.......... @0"},
    {"", 0, 0, "1: .0.......... @0"}, // reads nothing, so does not find the end
};

} // namespace stream_contract

TYPED_TEST_P(StreamContract, LinesKeepTheirStopAndTheOddTerminator) {
    for (const auto& row : stream_contract::kLines) {
        SCOPED_TRACE(testing::Message() << '"' << row.input << "\" max " << row.max);
        const auto narrow = this->another(lines::bytes_of(row.input, 1));
        narrow->Seek(static_cast<int>(row.start), 0);
        EXPECT_EQ(lines::read<char>(*narrow, row.max, &IXStream::ReadLine), row.expected);
        const auto wide = this->another(lines::bytes_of(row.input, 2));
        wide->Seek(static_cast<int>(row.start) * 2, 0);
        EXPECT_EQ(lines::read<wchar_t>(*wide, row.max, &IXStream::ReadLineW), row.expected);
    }
}

TYPED_TEST_P(StreamContract, AWideLineMayStartAnywhereAndEndInHalfACharacter) {
    this->fill("ff 0a01 000a 6100 0a00 62");
    wchar_t buffer[8] = {};
    this->stream->Seek(1, 0);
    EXPECT_EQ(this->stream->ReadLineW(buffer, 6), 4);
    const wchar_t expected[] = {0x010A, 0x0A00, 'a', '\n', 0};
    EXPECT_TRUE(std::equal(std::begin(expected), std::end(expected), buffer));
    EXPECT_EQ(this->stream->ReadLineW(buffer, 1), 2);
    EXPECT_EQ(buffer[0], L'b') << "the missing half is zero";
    EXPECT_THROW(this->stream->ReadLineW(buffer, 1), CXEofException);
}

TYPED_TEST_P(StreamContract, LongLinesComeWholeAndInPieces) {
    const std::string text = std::string(5000, 'x') + '\n';
    const auto narrow = this->another(text);
    std::string line(text.size() + 2, '#');
    EXPECT_EQ(narrow->ReadLine(line.data(), 5001), 5001);
    EXPECT_EQ(line, text + '\0' + '#');
    narrow->Seek(0, 0);
    EXPECT_EQ(narrow->ReadLine(line.data(), 4000), 4001);
    EXPECT_EQ(narrow->ReadLine(line.data(), 4000), 1001);
    EXPECT_EQ(line[1000], '\n');

    std::string units;
    for (const char c : text)
        units += {c, '\0'};
    const auto wide = this->another(units);
    wchar_t wide_line[104];
    for (int start = 4950; start <= 5000; ++start) { // the line feed at every distance
        narrow->Seek(start, 0);
        EXPECT_EQ(narrow->ReadLine(line.data(), 100), 5001 - start) << start;
        wide->Seek(start * 2, 0);
        EXPECT_EQ(wide->ReadLineW(wide_line, 100), 5001 - start) << start;
    }
}

TYPED_TEST_P(StreamContract, LargeTransfersArriveWhole) {
    std::string bytes(3 << 20, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 2654435761u >> 13);
    IXStream& s = *this->stream;
    for (std::size_t at = 0; at < bytes.size(); at += 100'000)
        s.Write(bytes.data() + at, static_cast<unsigned>(std::min<std::size_t>(100'000, bytes.size() - at)));
    ASSERT_EQ(s.GetSize(), bytes.size());
    std::string back(bytes.size(), 'x');
    s.Seek(0, 0);
    EXPECT_EQ(s.Read(back.data(), static_cast<unsigned>(back.size())), bytes.size());
    EXPECT_TRUE(back == bytes);
}

REGISTER_TYPED_TEST_SUITE_P(StreamContract, IsNewAndAnswersForItsInterfaces, TransfersMoveThePosition,
                            SeeksFromThreeOrigins, ABadSeekOriginNamesTheStream, TypedValuesLieLittleEndian,
                            AValueThatTheEndCutsShortIsFilledWithZeroes, ReadingATypedValueAtTheEndThrows,
                            LinesKeepTheirStopAndTheOddTerminator,
                            AWideLineMayStartAnywhereAndEndInHalfACharacter, LongLinesComeWholeAndInPieces,
                            LargeTransfersArriveWhole);
