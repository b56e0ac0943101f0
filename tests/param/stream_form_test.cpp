// The binary form of trees, byte by byte, both ways.
#include "forms.h"

#include "support/param_outline.h"

#include "qzexception.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace forms;
using namespace std::string_literals;

// Thirty-two bits as they lie in a stream.
std::string word32(unsigned number) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(number >> shift & 0xFF);
    return bytes;
}

std::string int_value(const char* name, unsigned number) { return name + "\0\5\0"s + word32(number); }

TEST(StreamForm, PutsEachChildWholeBeforeTheNextAndBeforeTheValues) {
    struct Row {
        const char* text;
        std::string bytes;
    } const rows[] = {
        {"[\\]|", "\0\0"s},
        {"[\\]|a=i258|", "\0a\0\5\0\2\1\0\0\0"s},
        {"[\\]|a=i1|b=i2|", "\0"s + int_value("a", 1) + int_value("b", 2) + "\0"s},
        {"[\\]|[\\s]|", "s\0\0\0\0\0"s},
        {"[\\]|v=i1|[\\s]|w=i2|[\\s\\t]|x=i3|[\\u]|y=i4|",
         "s\0"s + "t\0\0"s + int_value("x", 3) + "\0"s + "\0"s + int_value("w", 2) + "\0"s + "u\0\0"s +
             int_value("y", 4) + "\0"s + "\0"s + int_value("v", 1) + "\0"s},
        {"[\\]|s=stext|@=sx|", "\0s\0\x0A\0\5\0\0\0text\0@\0\x0A\0\2\0\0\0x\0\0"s},
        {"[\\]|x=x00FF|", "\0x\0\x11\0\2\0\0\0\0\xFF\0"s},
        {"[\\]|w=w513|f=f1|e=e|", "\0w\0\3\0\1\2f\0\1\0\1\0\0\0e\0\0\0\0\0\0\0\0"s},
        {"[\\]|p=p1,-2|", "\0p\0\x0D\0"s + word32(1) + word32(0xFFFFFFFE) + "\0"s},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(bytes_of(*tree_from(row.text)), row.bytes) << row.text;
        EXPECT_EQ(text_of(*tree_of_bytes(row.bytes)), row.text);
    }
}

// Memory streams keep only half of a wide text, which comes back as that half.
TEST(StreamForm, LeavesWideTextsToTheStream) {
    const Tree tree = memory_tree();
    const CQZVariant wide(L"abcd");
    tree->SetValue("v", &wide);
    const std::string bytes = bytes_of(*tree);
    EXPECT_EQ(bytes, "\0v\0\x13\0\5\0\0\0a\0b\0c\0"s);
    EXPECT_EQ(text_of(*tree_of_bytes(bytes)), "[\\]|v=sabc|");
}

TEST(StreamForm, StartsAtTheStreamsPositionAndLeavesItBehindTheTree) {
    const Stream stream = stream_of("before");
    stream->Seek(0, 2);
    ASSERT_EQ(SaveParamToXStream(stream.Get(), tree_from("[\\]|a=i1").Get()), 1);
    stream->WriteString("after");
    stream->Seek(6, 0);
    const Tree tree = memory_tree();
    ASSERT_EQ(LoadParamFromXStream(stream.Get(), tree.Get()), 1);
    EXPECT_EQ(text_of(*tree), "[\\]|a=i1|");
    EXPECT_EQ(stream->GetPosition(), 6 + 10U);
}

TEST(StreamForm, LoadingEmptiesTheTreeFirst) {
    const Tree tree = tree_from("[\\]|a=i1|[\\s]|b=i2");
    EXPECT_EQ(LoadParamFromXStream(stream_of("\0c\0\5\0\3\0\0\0\0"s).Get(), tree.Get()), 1);
    EXPECT_EQ(text_of(*tree), "[\\]|c=i3|");
    EXPECT_EQ(LoadParamFromXStream(stream_of({}).Get(), tree.Get()), 1);
    EXPECT_EQ(text_of(*tree), "[\\]|");
    const Tree kept = tree_from("[\\]|a=i1");
    EXPECT_EQ(LoadParamFromXStream(nullptr, kept.Get()), 0);
    EXPECT_EQ(LoadParamFromXStream(stream_of({}).Get(), nullptr), 0);
    EXPECT_EQ(SaveParamToXStream(nullptr, kept.Get()), 0);
    EXPECT_EQ(SaveParamToXStream(stream_of({}).Get(), nullptr), 0);
    EXPECT_EQ(text_of(*kept), "[\\]|a=i1|");
}

TEST(StreamForm, ReadsUnusualNames) {
    const std::string longest(1023, 'n');
    const std::string too_long(1024, 'n');
    const struct {
        std::string what;
        std::string bytes;
        std::string text;
    } rows[] = {
        {"a line feed ends a name and belongs to it", "\0a\n\5\0\1\0\0\0\0"s, "[\\]|a|=i1|"},
        {"a line feed alone is the empty name", "\n\n"s, "[\\]|"},
        {"the longest", "\0"s + int_value(longest.c_str(), 7) + "\0"s, "[\\]|" + longest + "=i7|"},
        {"one too long: its terminator ends the list", too_long + "\0\0\0\0"s, "[\\]|[\\" + too_long + "]|"},
        {"a path", "\0a\\b\0\5\0\1\0\0\0\0"s, "[\\]|[\\a]|b=i1|"},
        {"a path to a child", "a\0\0\0a\\b\0\0\0\0a\\c\0\5\0\1\0\0\0\0"s, "[\\]|[\\a]|c=i1|[\\a\\b]|"},
        {"a child named twice is the second one", "a\0\0b\0\5\0\1\0\0\0\0a\0\0\0\0\0"s, "[\\]|[\\a]|"},
        {"a value named twice", "\0"s + int_value("a", 1) + int_value("A", 2) + "\0"s, "[\\]|a=i2|"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(text_of(*tree_of_bytes(row.bytes)), row.text) << row.what;
}

// Wherever the data ends, what was read stays and the result is a success.
TEST(StreamForm, KeepsWhatCameBeforeAnEarlyEnd) {
    const std::string bytes =
        "s\0"s + "\0"s + int_value("w", 2) + "\0"s + "\0"s + int_value("v", 1) + "t\0\x0A\0\3\0\0\0ab\0\0"s;
    const struct {
        std::size_t from; // bytes, up to those of the next row
        const char* text;
    } rows[] = {
        {0, "[\\]|"},
        {2, "[\\]|[\\s]|"},
        {5, "[\\]|[\\s]|w=e|"},  // a name without a value
        {7, "[\\]|[\\s]|w=i0|"}, // a code without a value
        {8, "[\\]|[\\s]|w=i2|"}, // the missing bytes are zeroes
        {15, "[\\]|v=e|[\\s]|w=i2|"},
        {17, "[\\]|v=i0|[\\s]|w=i2|"},
        {18, "[\\]|v=i1|[\\s]|w=i2|"},
        {23, "[\\]|v=i1|t=e|[\\s]|w=i2|"},
        {25, "[\\]|v=i1|t=s|[\\s]|w=i2|"},
        {30, "[\\]|v=i1|t=sa|[\\s]|w=i2|"},
        {31, "[\\]|v=i1|t=sab|[\\s]|w=i2|"},
    };
    std::size_t row = 0;
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        while (row + 1 < std::size(rows) && size >= rows[row + 1].from)
            ++row;
        std::string text = rows[row].text;
        // A code cut in half is its lower byte, which is all there is to these two.
        if (size == 6) text = "[\\]|[\\s]|w=i0|";
        if (size == 16) text = "[\\]|v=i0|[\\s]|w=i2|";
        if (size == 24) text = "[\\]|v=i1|t=s|[\\s]|w=i2|";
        EXPECT_EQ(text_of(*tree_of_bytes(bytes.substr(0, size))), text) << size << " bytes";
    }
}

TEST(StreamForm, AnUnknownTypeEmptiesTheWholeTree) {
    for (const std::string& bytes : {"\0a\0\5\0\1\0\0\0b\0\x14\0"s, "s\0t\0\0b\0\xFF\xFF\0\0"s}) {
        const Tree tree = tree_from("[\\]|before=i1");
        EXPECT_EQ(LoadParamFromXStream(stream_of(bytes).Get(), tree.Get()), 0);
        EXPECT_EQ(text_of(*tree), "[\\]|");
    }
}

// A progress sink that throws what it is told to after some transfers: a stream that fails midway.
class FailingSink final : public CQZUnknownImpl<QZRFC::IProgress> {
public:
    FailingSink(int transfers, std::function<void()> failure)
        : left_(transfers), failure_(std::move(failure)) {}
    int CheckCancel() override {
        if (left_-- == 0) failure_();
        return 0;
    }

private:
    int left_;
    std::function<void()> failure_;
};

Stream failing_stream(int transfers, std::function<void()> failure) {
    const auto sink = CQZRef<FailingSink>::Adopt(new FailingSink(transfers, std::move(failure)));
    return Stream::Adopt(new_StreamOnMemory(sink.Get()));
}

TEST(StreamForm, AFileErrorWhileSavingGivesZeroAndOthersPass) {
    const Tree tree = tree_from("[\\]|a=i1|b=i2|[\\s]|c=i3|[\\s\\t]|d=stext");
    const Stream file_error =
        failing_stream(5, [] { throw CXFileException(QZERR_DISK_FULL, QZOP_WRITE, L"full"); });
    EXPECT_EQ(SaveParamToXStream(file_error.Get(), tree.Get()), 0);
    const Stream eof = failing_stream(5, [] { throw CXEofException(); });
    EXPECT_THROW(SaveParamToXStream(eof.Get(), tree.Get()), CXEofException);
    const Stream cancelled = failing_stream(5, [] { throw CXException(QZERR_CANCELLED); });
    EXPECT_THROW(SaveParamToXStream(cancelled.Get(), tree.Get()), CXException);
}

TEST(StreamForm, AFileErrorWhileLoadingEmptiesTheTreeAndOthersPass) {
    const std::string bytes = bytes_of(*tree_from("[\\]|a=i1|b=i2|[\\s]|c=i3|[\\s\\t]|d=stext"));
    const auto load = [&](std::function<void()> failure, IParam& tree) {
        const Stream stream = failing_stream(20, std::move(failure)); // the first transfer writes the bytes
        stream->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
        stream->Seek(0, 0);
        return LoadParamFromXStream(stream.Get(), &tree);
    };
    const Tree tree = memory_tree();
    EXPECT_EQ(load([] { throw CXFileException(QZERR_DEVICE, QZOP_READ, L"broken"); }, *tree), 0);
    EXPECT_EQ(text_of(*tree), "[\\]|");
    EXPECT_EQ(load([] { throw CXEofException(); }, *tree), 1);
    EXPECT_EQ(text_of(*tree), "[\\]|[\\s]|c=i3|[\\s\\t]|d=stext|");
    EXPECT_THROW(load([] { throw CXException(QZERR_CANCELLED); }, *tree), CXException);
}

// A listed value that is gone keeps its place, or the form would fall out of step; never with the value
// before it.
TEST(StreamForm, KeepsInStepOverNamesThatDoNotOpen) {
    const Tree tree = tree_from("[\\]|a=stext|aeaea=i2|b=i3|[\\aeaea]|[\\]|[\\c]|");
    tree->DeleteValue(kSameHash);
    tree->DeleteSubParam(kSameHash);
    const Tree unnamed = Tree::Adopt(tree->CreateSubParam(""));
    set_int(*unnamed, "lost", 1); // the form has no room for an empty name
    EXPECT_EQ(text_of(*tree_of_bytes(bytes_of(*tree))), "[\\]|a=stext|aeaea=e|b=i3|[\\c]|");
}

} // namespace
