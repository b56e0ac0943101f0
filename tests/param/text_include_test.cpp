// "#include" in texts: where files are looked for, how they nest, and what stays silent.
#include "forms.h"

#include "support/import_mock.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace {

using namespace forms;
namespace fs = std::filesystem;

// Runs in a folder of its own, which is the current one meanwhile.
class TextInclude : public testing::Test {
protected:
    TextInclude() {
        fs::create_directories(folder_.path(L"sub\\deeper"));
        fs::current_path(folder_.path());
    }
    ~TextInclude() override { fs::current_path(before_); }

    static void write(const std::string& name, const std::string& text) {
        std::ofstream(name, std::ios::binary) << text;
    }
    static std::string path(const std::string& name) { return fs::absolute(name).string(); }

    // The tree of "[\]|a=i1|#include <how>|z=i2".
    static std::string including(const std::string& how) {
        return text_of(*tree_from("[\\]|a=i1|#include " + how + "|z=i2"));
    }

    const fs::path before_ = fs::current_path();
    ScratchFolder folder_;
};

const char kPlain[] = "[\\]|a=i1|z=i2|";
const char kIncluded[] = "[\\]|a=i1|b=i5|z=i2|";

TEST_F(TextInclude, FindsFilesByTheirName) {
    write("one.ini", "b=i5");
    write("sub\\one.ini", "b=i5");
    write("name with blanks.ini", "b=i5");
    write(".hidden", "b=i5");
    const struct {
        std::string how;
        const char* tree;
    } rows[] = {
        {"\"one.ini\"", kIncluded},
        {"\"one.ini", kIncluded},
        {"  \t \"one.ini\"  ", kIncluded},
        {"\"one.ini\" and more", kIncluded},
        {"./one.ini", kIncluded},
        {"sub\\one.ini", kIncluded},
        {".\\sub/one.ini", kIncluded},
        {"sub\\..\\one.ini", kIncluded},
        {"name with blanks.ini", kIncluded},
        {".hidden", kIncluded},
        {path("one.ini"), kIncluded},
        {"missing.ini", kPlain},
        {"sub", kPlain}, // a directory
        {"..", kPlain},
        {"?*<>", kPlain},
        {"NUL", kPlain},
        {std::string(40000, 'x'), kPlain},
    };
    for (const auto& row : rows)
        EXPECT_EQ(including(row.how), row.tree) << row.how.substr(0, 100);
    for (const char* directive : {"#INCLUDE one.ini", "#Include\tone.ini", "#include\"one.ini\""})
        EXPECT_EQ(text_of(*tree_from(std::string("[\\]|a=i1|") + directive + "|z=i2")), kIncluded);
}

TEST_F(TextInclude, TakesNamesWithADotFromTheDirectoryOfTheFileThatNamesThem) {
    write("sub\\one.ini", "#include .\\deeper\\two.ini");
    write("sub\\deeper\\two.ini", "#include ..\\three.ini|#include four.ini");
    write("sub\\three.ini", "three=i3");
    write("sub\\deeper\\four.ini", "wrong=i4");
    write("four.ini", "four=i4"); // without a dot it is the current directory's
    EXPECT_EQ(text_of(*tree_from("[\\]|#include .\\sub\\one.ini")), "[\\]|three=i3|four=i4|");
}

TEST_F(TextInclude, SharesTheCurrentSection) {
    write("one.ini", "b=i5|[\\s]|c=i6|");
    write("none.ini", "b=i5");
    EXPECT_EQ(including("one.ini"), "[\\]|a=i1|b=i5|[\\s]|c=i6|z=i2|");
    EXPECT_EQ(text_of(*tree_from("#include none.ini|[\\]|z=i2")), "[\\]|z=i2|");
    EXPECT_EQ(text_of(*tree_from("#include one.ini|z=i2")), "[\\]|[\\s]|c=i6|z=i2|");
}

TEST_F(TextInclude, ContinuesWithTheRestOfTheLine) {
    write("one.ini", "b=i5 ; no comment\r\n;comment\r\n");
    EXPECT_EQ(text_of(*tree_from("[\\]|#include one.ini|c=i1\nd=i2")), "[\\]|b=i5|c=i1|d=i2|");
}

TEST_F(TextInclude, ReadsAFileOnceInAChainButAgainAfterwards) {
    write("self.ini", "b=i5|#include SELF.ini|#include .\\self.ini|c=i6");
    write("ping.ini", "p=i1|#include pong.ini|q=i2");
    write("pong.ini", "r=i3|#include ping.ini|s=i4");
    write("one.ini", "b=i5");
    EXPECT_EQ(text_of(*tree_from("[\\]|#include self.ini")), "[\\]|b=i5|c=i6|");
    EXPECT_EQ(text_of(*tree_from("[\\]|#include ping.ini")), "[\\]|p=i1|r=i3|s=i4|q=i2|");
    EXPECT_EQ(text_of(*tree_from("[\\]|#include one.ini|[\\s]|#include one.ini")), "[\\]|b=i5|[\\s]|b=i5|");
}

TEST_F(TextInclude, NestsSixteenFilesDeep) {
    for (int i = 1; i <= 20; ++i) {
        const std::string number = std::to_string(i);
        write(number + ".ini",
              "in" + number + "=i1|#include " + std::to_string(i + 1) + ".ini|out" + number + "=i1");
    }
    const Tree tree = tree_from("[\\]|#include 1.ini|after=i1");
    EXPECT_EQ(value_in(*tree, "in16"), "int 1");
    EXPECT_EQ(value_in(*tree, "out16"), "int 1");
    EXPECT_EQ(value_in(*tree, "in17"), "none");
    EXPECT_EQ(value_in(*tree, "out1"), "int 1");
    EXPECT_EQ(value_in(*tree, "after"), "int 1");
}

using TextIncludeScale = TextInclude;

// Sixteen levels of files that include the next one ten times would take years.
TEST_F(TextIncludeScale, EndsWhereFilesMultiply) {
    for (int i = 1; i <= 16; ++i) {
        std::string text;
        for (int n = 0; n < 10; ++n)
            text += "#include " + std::to_string(i + 1) + ".ini\n";
        write(std::to_string(i) + ".ini", text);
    }
    write("17.ini", "x");
    EXPECT_EQ(value_in(*tree_from("[\\]|#include 1.ini|after=i1"), "after"), "int 1");
}

TEST_F(TextIncludeScale, ALargeFileIsReadAgainUpTo64MiBInAll) {
    std::string file = "v=i1\n;";
    file.resize(4 << 20, ';');
    folder_.file(L"large.ini", file);
    folder_.file(L"small.ini", "v=i1\n");
    std::string text;
    for (int i = 0; i < 30; ++i)
        text += "[\\s" + std::to_string(i) + "]|#include " + (i % 2 == 0 ? "large.ini|" : "LARGE.ini|");
    text += "[\\last]|#include small.ini|";
    const Tree tree = tree_from(text);
    EXPECT_EQ(value_in(*tree, "s16\\v"), "int 1"); // the first time and sixteen more
    EXPECT_EQ(value_in(*tree, "s17\\v"), "none");
    EXPECT_EQ(value_in(*tree, "last\\v"), "int 1");
}

int opened = 0;
HANDLE WINAPI open_and_count(const wchar_t* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                             DWORD how, DWORD flags, HANDLE like) {
    ++opened;
    return CreateFileW(name, access, share, security, how, flags, like);
}

// A live tree may write to the file that it is filled from.
TEST_F(TextInclude, OpensAFileOnceForATreeInMemoryAndEachTimeForOthers) {
    const std::string text = "[\\]|#include one.ini|#include ONE.ini|#include none.ini|#include none.ini";
    const std::wstring path = folder_.file(L"one.ini", "[\\s]\r\nv=i1\r\n[\\]\r\nb=i5\r\n");
    const ImportMock mock("qzrcore.dll", "CreateFileW", reinterpret_cast<void*>(&open_and_count));
    opened = 0;
    EXPECT_EQ(text_of(*tree_from(text)), "[\\]|b=i5|[\\s]|v=i1|");
    EXPECT_EQ(opened, 2);
    const auto live = Tree::Adopt(new_IParamIniFile(path.c_str()));
    opened = 0;
    CXString again(text.c_str());
    Param_String2Param(again, live.Get());
    EXPECT_EQ(opened, 4);
}

TEST_F(TextInclude, CutsALineOfAFileAtItsFirstZero) {
    write("one.ini", std::string("b=i5\0c=i6|d=i7\ne=i8\0", 21));
    EXPECT_EQ(text_of(*tree_from("[\\]|#include one.ini")), "[\\]|b=i5|e=i8|");
}

TEST_F(TextInclude, PassesOverAFileThatSomebodyWrites) {
    write("one.ini", "b=i5");
    {
        const HANDLE held =
            CreateFileA("one.ini", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(held, INVALID_HANDLE_VALUE);
        EXPECT_EQ(including("one.ini"), kPlain);
        CloseHandle(held);
    }
    const HANDLE reader =
        CreateFileA("one.ini", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(reader, INVALID_HANDLE_VALUE);
    EXPECT_EQ(including("one.ini"), kIncluded);
    CloseHandle(reader);
    EXPECT_TRUE(fs::remove("one.ini")) << "the file is still open";
}

} // namespace
