#include "contracts/persistent_note.h"
#include "qzbytes.h"
#include "qzexception.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzvariant.h"
#include "support/file_failure.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

class EmptyStream : public testing::Test {
protected:
    CQZRef<IXStream> stream = CQZRef<IXStream>::Adopt(new_EmptyStream());
};

TEST_F(EmptyStream, ReadsZeroesWithoutEnd) {
    for (const unsigned count : {0u, 1u, 5u}) {
        char buffer[] = "------";
        EXPECT_EQ(stream->Read(buffer, count), 1u) << "whatever the count";
        EXPECT_EQ(std::string(buffer, 6), std::string(count, '\0') + std::string(6 - count, '-'));
    }
    EXPECT_EQ(stream->ReadByte(), 0);
    EXPECT_EQ(stream->ReadWord(), 0);
    EXPECT_EQ(stream->ReadDWord(), 0u);
    EXPECT_EQ(stream->ReadDouble(), 0.0);
    EXPECT_EQ(stream->GetPosition(), 0u);
    CQZVariant v("text");
    EXPECT_EQ(stream->ReadVariant(&v), 1);
    EXPECT_EQ(v.vt, QZVT_EMPTY);
    EXPECT_EQ(qz::read_rest(*stream), std::string(1, '\0')) << "whoever reads to the end gets there";
}

TEST_F(EmptyStream, LinesAreASingleZero) {
    for (const int max : {10, 1, 0, -1}) {
        char line[] = "--";
        wchar_t wide[] = L"--";
        EXPECT_EQ(stream->ReadLine(line, max), 1);
        EXPECT_EQ(std::string(line, 2), std::string("\0-", 2));
        EXPECT_EQ(stream->ReadLineW(wide, max), 1);
        EXPECT_EQ(std::wstring(wide, 2), std::wstring(L"\0-", 2));
    }
}

TEST_F(EmptyStream, SwallowsWhatIsWritten) {
    const auto note = CQZRef<test::PersistentNote>::Adopt(new test::PersistentNote("abc"));
    const CQZVariant object(static_cast<IQZUnknown*>(note.Get())), text("abc");
    stream->Write("abc", 3);
    stream->WriteByte(1);
    stream->WriteWord(1);
    stream->WriteDWord(1);
    stream->WriteDouble(1);
    stream->WriteString("abc");
    stream->WriteStringW(L"abc");
    stream->WriteVariant(&text);
    stream->WriteVariant(&object);
    EXPECT_EQ(stream->GetSize(), 1u);
    EXPECT_EQ(stream->GetPosition(), 0u);
    EXPECT_EQ(stream->ReadDWord(), 0u);
    EXPECT_EQ(WriteObjectToXStream(stream.Get(), note.Get()), 1);
    IQZUnknown* read = note.Get();
    EXPECT_EQ(ReadObjectFromXStream(stream.Get(), &read), 0);
    EXPECT_EQ(read, nullptr);
}

TEST_F(EmptyStream, SeeksWithinItsOneByte) {
    struct Row {
        int offset;
        unsigned origin, expected;
    };
    for (const Row& row : {Row{1, 0, 1}, Row{0, 1, 1}, Row{-1, 2, 0}, Row{1, 1, 1}, Row{0, 2, 1},
                           Row{-9, 1, 0}, Row{9, 0, 1}, Row{INT_MIN, 2, 0}, Row{INT_MAX, 1, 1}}) {
        EXPECT_EQ(stream->Seek(row.offset, row.origin), row.expected) << row.offset << " from " << row.origin;
        EXPECT_EQ(stream->GetPosition(), row.expected);
    }
    EXPECT_EQ(failure_of([&] { stream->Seek(0, 3); }), "code 10, operation 3, Empty stream");
    EXPECT_STREQ(stream->GetName(), L"Empty stream");
}

} // namespace
