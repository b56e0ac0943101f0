// What every file does: one suite, run against each implementation of IXFile and IXOutFile.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(MappedRead, FileContract, MappedReadKind);
//
// A kind opens files with given contents, at their start, and declares in what they differ:
//
//     struct MappedReadKind {
//         using File = IXFile;
//         enum class Writing { kWrites, kThrows, kIgnores };
//         static constexpr unsigned kAccess = 1;                        // operation of failures
//         static constexpr FileWriting kWriting = FileWriting::kThrows;
//         static constexpr bool kStaysInside = true;                    // seeks behind the end throw
//         File* open(std::string_view contents);                        // one reference for the caller
//         std::wstring name();                                          // GetName of the file opened last
//         bool names(const std::wstring& failing);                      // is it the name in its failures?
//     };
#pragma once

#include "contracts/lines.h"
#include "qzexception.h"
#include "qzfile.h"
#include "qzheap.h"
#include "qzref.h"
#include "support/file_failure.h"
#include "support/hex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

enum class FileWriting { kWrites, kThrows, kIgnores };

template <class Kind>
class FileContract : public testing::Test {
protected:
    using File = typename Kind::File;

    CQZRef<File> open(std::string_view contents) { return CQZRef<File>::Adopt(kind.open(contents)); }

    static std::string read_all(File& file, unsigned piece = 1 << 20) {
        std::string bytes;
        std::string buffer(piece, '\0');
        while (const unsigned n = file.Read(buffer.data(), piece))
            bytes.append(buffer, 0, n);
        return bytes;
    }

    void expect_failure(const std::function<void()>& call, unsigned code, unsigned operation) {
        try {
            call();
            ADD_FAILURE() << "no exception";
        } catch (const CXFileException& e) {
            EXPECT_EQ(e.m_nCode, code);
            EXPECT_EQ(e.m_nOperation, operation);
            EXPECT_TRUE(kind.names(e.m_pszFileName)) << narrow(e.m_pszFileName);
        }
    }

    Kind kind;
};
TYPED_TEST_SUITE_P(FileContract);

namespace file_contract {

inline std::string pattern(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>((i * 2654435761u) >> 11);
    return bytes;
}

// Around blocks, pages, and the 128 KiB by which files grow.
inline constexpr unsigned kSizes[] = {0,    1,    63,   64,    65,     511,    512,    513,
                                      4095, 4096, 4097, 65536, 131071, 131072, 131073, 300000};

inline constexpr lines::Row kLines[] = {
    {"", 0, 10, "0: .0.......... @0"}, // the end: the place stays, the terminator goes behind it
    {"$", 0, 10, "0: $0.......... @1"},      {"ab$cd", 0, 10, "2: ab$0........ @3"},
    {"ab$cd", 3, 10, "2: cd.0........ @5"}, // a last line without line feed ends like the end
    {"a0b$c", 0, 10, "3: a0b$0....... @4"}, // a zero is a character
    {"a\r$b", 0, 10, "2: a\r$0........ @3"}, {"abc$", 0, 5, "3: abc$0....... @4"},
    {"abcd$", 0, 5, "4: abcd0....... @5"}, // no place behind: the terminator covers the line feed
    {"abcde$", 0, 5, "5: abcde0...... @5"},  {"abcdefg$", 5, 5, "2: fg$0........ @8"},
    {"abcd", 4, 5, "0: .0.......... @4"},    {"$$", 0, 1, "0: 0........... @1"},
    {"ab", 0, 1, "1: a0.......... @1"},      {"", 0, 1, "0: 0........... @0"},
    {"ab$", 0, 0, "0: 0........... @0"},     {"ab$", 0, -2147483647 - 1, "0: 0........... @0"},
};

} // namespace file_contract

TYPED_TEST_P(FileContract, AnswersForItsInterfaceAndName) {
    const auto file = this->open("abc");
    IQZUnknown* found = nullptr;
    EXPECT_EQ(file->QueryInterface(typeid(typename TypeParam::File), &found), 1);
    EXPECT_EQ(found, file.Get());
    EXPECT_EQ(found->Release(), 1u);
    EXPECT_EQ(file->QueryInterface(typeid(IHeap), &found), 0);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(narrow(file->GetName()), narrow(this->kind.name().c_str()));
    EXPECT_NE(file->Flush(), 0);
}

TYPED_TEST_P(FileContract, ContentsOfEverySizeAreReadWholeAndInPieces) {
    for (const unsigned size : file_contract::kSizes) {
        SCOPED_TRACE(size);
        const std::string bytes = file_contract::pattern(size);
        const auto file = this->open(bytes);
        EXPECT_EQ(file->GetSize(), size);
        EXPECT_EQ(file->GetPosition(), 0u);
        EXPECT_TRUE(this->read_all(*file) == bytes);
        EXPECT_EQ(file->GetPosition(), size);
        char byte = 'x';
        EXPECT_EQ(file->Read(&byte, 1), 0u);
        EXPECT_EQ(file->Seek(0, 0), 0u);
        EXPECT_EQ(file->Read(&byte, 0), 0u);
        EXPECT_EQ(byte, 'x');
        EXPECT_TRUE(this->read_all(*file, 1000) == bytes);
        if (size == 0) continue;
        std::string few(100, '.');
        for (unsigned count = 0; count <= 80 && 7 + count <= size; ++count) {
            file->Seek(7, 0);
            EXPECT_EQ(file->Read(few.data() + 1, count), count);
            EXPECT_EQ(few, "." + bytes.substr(7, count) + std::string(99 - count, '.'));
        }
        file->Seek(size / 2, 0);
        std::string rest(size, '\0');
        EXPECT_EQ(file->Read(rest.data(), 0xFFFFFFFF), size - size / 2) << "position and count pass 4 GiB";
        EXPECT_TRUE(rest.compare(0, size - size / 2, bytes, size / 2) == 0);
    }
}

TYPED_TEST_P(FileContract, SeeksFromThreeOriginsWithSignedResults) {
    struct Row {
        unsigned offset;
        unsigned origin;
        unsigned expected;
    };
    const Row inside[] = {{0, 0, 0},           {3, 0, 3},           {10, 0, 10},        {0, 1, 4},
                          {0u - 4, 1, 0},      {6, 1, 10},          {0, 2, 10},         {0u - 10, 2, 0},
                          {0u - 3, 2, 7},      {0u - 1, 0, 0},      {0u - 5, 1, 0},     {0u - 11, 2, 0},
                          {0x80000000u, 0, 0}, {0x7FFFFFFCu, 1, 0}, {0x80000000u, 2, 0}};
    const Row outside[] = {{11, 0, 11}, {7, 1, 11}, {1, 2, 11}, {0x7FFFFFFFu, 0, 0x7FFFFFFFu}};
    const auto file = this->open("0123456789");
    const auto seek = [&](const Row& row) {
        file->Seek(4, 0);
        return file->Seek(row.offset, row.origin);
    };
    for (const Row& row : inside) {
        SCOPED_TRACE(testing::Message() << row.offset << " from " << row.origin);
        EXPECT_EQ(seek(row), row.expected);
        EXPECT_EQ(file->GetPosition(), row.expected);
    }
    for (const Row& row : outside) {
        SCOPED_TRACE(testing::Message() << row.offset << " from " << row.origin);
        if (TypeParam::kStaysInside) {
            this->expect_failure([&] { seek(row); }, 5, TypeParam::kAccess);
            EXPECT_EQ(file->GetPosition(), 4u);
        } else {
            EXPECT_EQ(seek(row), row.expected);
            char byte;
            EXPECT_EQ(file->Read(&byte, 1), 0u);
            EXPECT_EQ(file->GetSize(), 10u);
            EXPECT_EQ(file->GetPosition(), row.expected) << "asking for the size keeps the position";
        }
    }
    for (const unsigned origin : {3u, 0xFFFFFFFFu}) {
        file->Seek(2, 0);
        this->expect_failure([&] { file->Seek(0, origin); }, 5, TypeParam::kAccess);
        EXPECT_EQ(file->GetPosition(), 2u);
    }
}

TYPED_TEST_P(FileContract, TypedValuesAreReadWholeOrNotAtAll) {
    const auto file = this->open(test::from_hex("fe 3412 efbeadde 00000000000004c0 77"));
    EXPECT_EQ(file->ReadByte(), 0xFE);
    EXPECT_EQ(file->ReadWord(), 0x1234);
    EXPECT_EQ(file->ReadDWord(), 0xDEADBEEF);
    EXPECT_EQ(file->ReadDouble(), -2.5);
    for (const unsigned left : {1u, 0u}) {
        SCOPED_TRACE(left);
        const std::function<void()> reads[] = {[&] { file->ReadWord(); }, [&] { file->ReadDWord(); },
                                               [&] { file->ReadDouble(); }};
        for (const auto& read : reads) {
            file->Seek(16 - left, 0);
            this->expect_failure(read, 4, 1);
        }
    }
    file->Seek(0, 2);
    this->expect_failure([&] { file->ReadByte(); }, 4, 1);
}

TYPED_TEST_P(FileContract, LinesEndAtLineFeedsAlone) {
    using Interface = typename TypeParam::File;
    for (const auto& row : file_contract::kLines) {
        SCOPED_TRACE(testing::Message() << '"' << row.input << "\" from " << row.start << " max " << row.max);
        const auto narrow = this->open(lines::bytes_of(row.input, 1));
        narrow->Seek(row.start, 0);
        EXPECT_EQ(lines::read<char>(*narrow, row.max, &Interface::ReadLine), row.expected);
        const auto wide = this->open(lines::bytes_of(row.input, 2));
        wide->Seek(row.start * 2, 0);
        EXPECT_EQ(lines::read<wchar_t>(*wide, row.max, &Interface::ReadLineW), row.expected);
    }
}

TYPED_TEST_P(FileContract, LongLinesComeWholeAndInPieces) {
    const std::string text = std::string(5000, 'x') + '\n';
    std::string units;
    for (const char c : text)
        units += {c, '\0'};
    const auto narrow = this->open(text);
    const auto wide = this->open("y" + units + "zz"); // at an odd place, half a character at the end
    std::string line(5003, '#');
    EXPECT_EQ(narrow->ReadLine(line.data(), 6000 - 998), 5000);
    EXPECT_EQ(line, text + '\0' + '#');
    narrow->Seek(0, 0);
    EXPECT_EQ(narrow->ReadLine(line.data(), 4000), 4000);
    EXPECT_EQ(narrow->ReadLine(line.data(), 4000), 1000);
    std::wstring wide_line(104, L'#');
    for (unsigned start = 4950; start <= 5000; ++start) { // the line feed at every distance
        narrow->Seek(start, 0);
        EXPECT_EQ(narrow->ReadLine(line.data(), 100), static_cast<int>(5000 - start));
        wide->Seek(1 + start * 2, 0);
        EXPECT_EQ(wide->ReadLineW(wide_line.data(), 100), static_cast<int>(5000 - start));
    }
    EXPECT_EQ(wide->ReadLineW(wide_line.data(), 3), 1);
    EXPECT_EQ(wide_line[0], 0x7A7A);
}

TYPED_TEST_P(FileContract, WritesLandWhereTheyShould) {
    const auto file = this->open("0123456789");
    const auto write = [&] {
        file->WriteByte(0xFE);
        file->WriteWord(0x1234);
        file->WriteDWord(0xDEADBEEF);
        file->WriteDouble(-2.5);
        file->WriteString("a\xE9");
        file->WriteString(nullptr);
        file->WriteStringW(L"a\x0439");
        file->Write("", 0);
    };
    file->Seek(8, 0);
    if (TypeParam::kWriting == FileWriting::kThrows) {
        this->expect_failure(write, 9, TypeParam::kAccess);
    } else {
        write();
    }
    if (TypeParam::kWriting != FileWriting::kWrites) {
        EXPECT_EQ(file->GetPosition(), 8u);
        EXPECT_EQ(file->GetSize(), 10u);
        return;
    }
    EXPECT_EQ(file->GetPosition(), 33u);
    file->Seek(40, 0);
    file->Write("end", 3);
    file->Seek(1, 0);
    file->Write("!", 1);
    file->Seek(0, 0);
    EXPECT_EQ(test::to_hex(this->read_all(*file)),
              test::to_hex(test::from_hex("'0!234567' fe 3412 efbeadde 00000000000004c0 61e900 00 "
                                          "610039040000 00000000000000 'end'")))
        << "what was skipped reads as zeroes";
}

TYPED_TEST_P(FileContract, PiecesOfEverySizeGrowTheFile) {
    if (TypeParam::kWriting != FileWriting::kWrites) return;
    const unsigned pieces[][2] = {{1, 1},       {100, 100}, {4095, 4095}, {4096, 4096},
                                  {5000, 5000}, {4, 4096},  {100, 5000},  {70000, 70000}};
    for (const auto& [piece, next] : pieces) { // by turns
        SCOPED_TRACE(testing::Message() << piece << ", " << next);
        const std::string bytes = file_contract::pattern(piece == 1 ? 70'001 : 700'001);
        const auto file = this->open("");
        bool first = true;
        for (std::size_t at = 0; at < bytes.size(); first = !first) {
            const auto n = std::min<std::size_t>(first ? piece : next, bytes.size() - at);
            file->Write(bytes.data() + at, static_cast<unsigned>(n));
            at += n;
        }
        EXPECT_EQ(file->GetSize(), bytes.size());
        file->Seek(0, 0);
        EXPECT_TRUE(this->read_all(*file) == bytes);
    }
}

REGISTER_TYPED_TEST_SUITE_P(FileContract, AnswersForItsInterfaceAndName,
                            ContentsOfEverySizeAreReadWholeAndInPieces,
                            SeeksFromThreeOriginsWithSignedResults, TypedValuesAreReadWholeOrNotAtAll,
                            LinesEndAtLineFeedsAlone, LongLinesComeWholeAndInPieces,
                            WritesLandWhereTheyShould, PiecesOfEverySizeGrowTheFile);
