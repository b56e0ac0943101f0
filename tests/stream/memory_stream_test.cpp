// What only the stream in memory has: its block and its growth.
#include "qzexception.h"
#include "qzheap.h"
#include "qzref.h"
#include "qzstream.h"
#include "support/file_failure.h"
#include "support/hex.h"
#include "support/import_mock.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <windows.h>

namespace {

class MemoryStream : public testing::Test {
protected:
    MemoryStream()
        : stream(CQZRef<IXStream>::Adopt(new_StreamOnMemory())),
          block(CQZRef<IMemBlock>::Query(stream.Get())) {}

    std::string content() const {
        return test::to_hex({static_cast<const char*>(block->GetData()), block->GetSize()});
    }
    // The block is one of the heap, which knows its size.
    int capacity() const {
        return block->GetData() != nullptr ? Mem_DefaultHeap()->GetSize(block->GetData()) : 0;
    }
    void append(unsigned count) {
        stream->Seek(0, 2);
        const std::string bytes(count, 'x');
        stream->Write(bytes.data(), count);
    }

    CQZRef<IXStream> stream;
    CQZRef<IMemBlock> block;
};

TEST_F(MemoryStream, AnswersForItsBlock) {
    ASSERT_TRUE(block);
    IQZUnknown* root = nullptr;
    EXPECT_EQ(block->QueryInterface(typeid(IQZUnknown), &root), 1);
    EXPECT_EQ(root, stream.Get()) << "one identity, whichever interface is asked";
    root->Release();
    EXPECT_EQ(CQZRef<IXStream>::Query(block.Get()).Get(), stream.Get());
    EXPECT_EQ(block->AddRef(), 3u) << "both interfaces share one count";
    EXPECT_EQ(stream->Release(), 2u);
    EXPECT_EQ(stream->QueryInterface(typeid(IMemBlock), nullptr), 1);
    EXPECT_EQ(stream->AddRef(), 3u) << "asking alone adds nothing";
    stream->Release();
    EXPECT_EQ(block->GetData(), nullptr);
    EXPECT_EQ(block->GetSize(), 0u);
}

// The capacity becomes the old one plus the requirement raised past the next multiple of the step.
TEST_F(MemoryStream, GrowsByItsRule) {
    struct Row {
        const char* name;
        int set_data; // length; -1 for a stream that has no block yet
        std::vector<unsigned> appended;
        std::vector<int> capacities;
    };
    const Row rows[] = {
        {"first byte", -1, {1}, {4096}},
        {"one step", -1, {1, 4095, 1}, {4096, 4096, 12288}},
        {"a multiple gains a whole step", -1, {4096, 4096, 1}, {8192, 8192, 20480}},
        {"several steps", -1, {10'000, 2'289}, {12288, 12289 + 12288 + 4095}},
        {"the data's length is the step", 3, {1, 5, 1}, {3 + 2 + 4, 9, 9 + 2 + 10}},
        {"no step", 0, {5, 1, 5}, {5, 5 + 6, 11}},
        {"nothing", 7, {0}, {7}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
        block = CQZRef<IMemBlock>::Query(stream.Get());
        if (row.set_data >= 0) block->SetData(nullptr, static_cast<unsigned>(row.set_data));
        for (std::size_t i = 0; i < row.appended.size(); ++i) {
            append(row.appended[i]);
            EXPECT_EQ(capacity(), row.capacities[i]) << i;
        }
    }
}

TEST_F(MemoryStream, SetDataReplacesTheBlockAndKeepsThePosition) {
    stream->WriteString("0123456");
    block->SetData("abc", 3);
    EXPECT_EQ(content(), test::to_hex("abc"));
    EXPECT_EQ(stream->GetSize(), 3u);
    EXPECT_EQ(stream->GetPosition(), 8u);
    char byte = '-';
    EXPECT_EQ(stream->Read(&byte, 1), 0u) << "beyond the end";
    EXPECT_THROW(stream->ReadDWord(), CXEofException);
    EXPECT_THROW(stream->ReadLine(&byte, 1), CXEofException);
    EXPECT_EQ(stream->GetPosition(), 8u);
    stream->WriteByte('z');
    EXPECT_EQ(content(), "61 62 63 00 00 00 00 00 7a") << "the gap is zero";

    block->SetData(nullptr, 4);
    EXPECT_EQ(content(), "00 00 00 00");
    stream->Write("", 0); // the position alone makes the stream longer
    EXPECT_EQ(stream->GetSize(), 9u);
    block->SetData("ignored", 0);
    EXPECT_EQ(block->GetData(), nullptr);
    EXPECT_EQ(block->GetSize(), 0u);
}

TEST_F(MemoryStream, TakesBytesOfItsOwnBlock) {
    stream->Write("0123456789", 10);
    const char* data = static_cast<const char*>(block->GetData());
    block->SetData(data + 2, 5);
    EXPECT_EQ(content(), test::to_hex("23456"));
    stream->Seek(0, 2);
    stream->Write(block->GetData(), 5); // grows, and moves the bytes while they are being copied
    EXPECT_EQ(content(), test::to_hex("2345623456"));
    stream->Seek(1, 0);
    stream->Write(block->GetData(), 5);
    EXPECT_EQ(content(), test::to_hex("2234563456"));
}

TEST_F(MemoryStream, AnEndPast4GiBIsRefusedBeforeAnythingMoves) {
    stream->Write("abc", 3);
    EXPECT_THROW(stream->Write("x", 0xFFFFFFFFu), CXMemException);
    EXPECT_THROW(stream->Write("x", 0xFFFFFFFDu), CXMemException);
    EXPECT_EQ(stream->GetPosition(), 3u);
    EXPECT_EQ(content(), test::to_hex("abc"));
    EXPECT_EQ(capacity(), 4096);
}

// Large blocks live in address space of their own; one of 128 MiB that more than doubles leaves it.
TEST_F(MemoryStream, LargeBlocksKeepTheirBytesWhenTheyMove) {
    constexpr unsigned kMiB = 1u << 20;
    const unsigned places[] = {0, kMiB - 1, kMiB, 5 * kMiB + 1, 120 * kMiB, 128 * kMiB - 1};
    const auto expect_marks = [&] {
        for (const unsigned place : places) {
            stream->Seek(static_cast<int>(place), 0);
            EXPECT_EQ(stream->ReadByte(), place % 251 + 1) << place;
        }
    };
    block->SetData(nullptr, 128 * kMiB);
    for (const unsigned place : places) {
        stream->Seek(static_cast<int>(place), 0);
        stream->WriteByte(static_cast<unsigned char>(place % 251 + 1));
    }
    expect_marks();
    append(1);
    EXPECT_EQ(stream->GetSize(), 128 * kMiB + 1);
    expect_marks();
    stream->Seek(64 * static_cast<int>(kMiB), 0);
    EXPECT_EQ(stream->ReadDWord(), 0u);
}

std::size_t most_reserved, most_committed; // at a time

void* WINAPI short_of_memory(void* place, SIZE_T bytes, DWORD type, DWORD protection) {
    const std::size_t most = type == MEM_RESERVE ? most_reserved : most_committed;
    return bytes <= most ? VirtualAlloc(place, bytes, type, protection) : nullptr;
}

TEST_F(MemoryStream, AProcessShortOfAddressSpaceGetsWhatItAsksFor) {
    constexpr unsigned kMiB = 1u << 20;
    const ImportMock mock("qzrcore.dll", "VirtualAlloc", reinterpret_cast<void*>(&short_of_memory));
    most_reserved = 8 * kMiB;
    most_committed = 4 * kMiB;
    block->SetData(nullptr, kMiB);
    stream->WriteDWord(0x12345678);
    append(kMiB); // moves
    EXPECT_THROW(block->SetData(nullptr, 5 * kMiB), CXMemException);
    EXPECT_THROW(block->SetData(nullptr, 9 * kMiB), CXMemException);
    EXPECT_THROW(append(3 * kMiB), CXMemException);
    EXPECT_EQ(stream->GetSize(), 2 * kMiB);
    most_reserved = 1024 * kMiB;
    append(kMiB); // to where it can grow in place
    EXPECT_THROW(append(3 * kMiB), CXMemException);
    EXPECT_EQ(stream->GetSize(), 3 * kMiB);
    stream->Seek(0, 0);
    EXPECT_EQ(stream->ReadDWord(), 0x12345678u);
}

// Positions and sizes count as signed numbers. A stream of 2 GiB and more can only be appended to.
TEST_F(MemoryStream, From2GiBOnSizesAreNegative) {
    block->SetData(nullptr, 0x7FFFFFFF);
    char bytes[2] = {};
    EXPECT_EQ(stream->Read(bytes, 1), 1u);
    EXPECT_EQ(stream->Seek(0, 2), 0x7FFFFFFFu);
    EXPECT_EQ(stream->Seek(-1, 1), 0x7FFFFFFEu);
    EXPECT_EQ(stream->Read(bytes, 2), 1u);

    block->SetData(nullptr, 0x80000000);
    EXPECT_EQ(stream->Read(bytes, 1), 0u) << "one byte before the end";
    stream->Write("ab", 2);
    EXPECT_EQ(stream->GetSize(), 0x80000001u);
    EXPECT_EQ(stream->GetPosition(), 0x80000001u);
    EXPECT_EQ(stream->Seek(0, 0), 0x80000001u);
    EXPECT_EQ(stream->Seek(-5, 1), 0x80000001u);
    EXPECT_EQ(stream->Seek(-5, 2), 0x80000001u);
    EXPECT_EQ(stream->Read(bytes, 2), 0u);
    EXPECT_THROW(stream->ReadByte(), CXEofException);
    EXPECT_EQ(static_cast<const char*>(block->GetData())[0x80000000], 'b');

    block->SetData("abc", 3);
    EXPECT_EQ(stream->Read(bytes, 2), 0u)
        << "a position of 2 GiB is no less beyond the end for being negative";
    EXPECT_EQ(stream->Seek(0, 1), 0u);
    EXPECT_EQ(stream->Read(bytes, 2), 2u);
}

} // namespace
