// Whole files in the text form: read into trees and replaced by them.
#include "foreign_param.h"
#include "forms.h"

#include "support/file_failure.h"
#include "support/low_memory.h"
#include "support/param_outline.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <cstring>

#include <windows.h>

namespace {

using namespace forms;

class IniFile : public testing::Test {
protected:
    // The tree of a file, in its string form.
    static std::string read(const std::wstring& path) {
        const Tree tree = memory_tree();
        EXPECT_EQ(Param_IniFile2Param(path.c_str(), tree.Get()), 1);
        return text_of(*tree);
    }

    ScratchFolder folder_;
};

TEST_F(IniFile, WritesALineForEachNode) {
    const Tree tree = tree_from("[\\]|a=i3|t=s two words|[\\s]|[\\s\\deep]|b=f1|[\\z]|c=z1,2");
    const std::wstring path = folder_.file(L"f.ini", std::string(10000, 'x'));
    EXPECT_EQ(Param_Param2IniFile(tree.Get(), path.c_str()), 1);
    EXPECT_EQ(folder_.contents(L"f.ini"),
              "\r\n[\\]\t\t| a=i3\t| t=s two words\r\n[\\s]\t\r\n[\\s\\deep]\t\t| b=f1\r\n[\\z]\t\t| c=z1,2");
    EXPECT_EQ(folder_.count(), 1u); // no temporary file is left
    EXPECT_EQ(read(path), text_of(*tree));
    EXPECT_EQ(Param_Param2IniFile(memory_tree().Get(), path.c_str()), 1);
    EXPECT_EQ(folder_.contents(L"f.ini"), "\r\n[\\]\t");
}

TEST_F(IniFile, ReadsWhatALiveTreeWrote) {
    const std::wstring path = folder_.path(L"live.ini");
    const auto live = Tree::Adopt(new_IParamIniFile(path.c_str()));
    const Tree tree = tree_from("[\\]|a=i3|t=stext|[\\s]|[\\s\\deep]|b=f1|");
    Param_CopyTo(tree.Get(), live.Get());
    EXPECT_EQ(read(path), "[\\]|@=e|a=i3|t=stext|[\\s]|@=e|[\\s\\deep]|@=e|b=f1|");
    // The other way the sections are there, but their values stand on the line of the name.
    Param_Param2IniFile(tree.Get(), path.c_str());
    const auto again = Tree::Adopt(new_IParamIniFile(path.c_str()));
    EXPECT_EQ(get_int(*again, "a"), kNoValue);
}

TEST_F(IniFile, IncludesBlocksOfMemory) {
    const LowMemory block("from_memory=i7");
    const std::string memory = narrow(block.path().c_str());
    const std::string place = memory.substr(0, memory.find(',') + 1);
    const struct {
        std::string include;
        const char* read;
    } rows[] = {
        {memory, "from_memory=i7|"},
        {"FMEM" + place.substr(4) + "11", "from_memory=i0|"},
        {place + "2000000000", ""}, // more than there is
        {"fmem::1,100", ""},
        {"fmem::", ""},
        {"ftp://", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.include);
        const std::wstring path = folder_.file(L"f.ini", "[\\]\na=i1\n#include " + row.include + "\nz=i1");
        EXPECT_EQ(read(path), std::string("[\\]|a=i1|") + row.read + "z=i1|");
    }
    // A file in memory that includes itself.
    LowMemory whole(std::string(100, '\n'));
    const std::string text = "[\\]|v=i1|#include " + narrow(whole.path().c_str());
    std::memcpy(whole.data(), text.data(), text.size());
    EXPECT_EQ(read(whole.path()), "[\\]|v=i1|");
}

TEST_F(IniFile, ThrowsWhatOpeningThrows) {
    const Tree tree = memory_tree();
    const std::wstring missing = folder_.path(L"missing.ini");
    const std::wstring held = folder_.file(L"held.ini", "[\\]");
    const HANDLE holder = CreateFileW(held.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const auto read_from = [&](const std::wstring& path, IParam* target) {
        return failure_of([&] { EXPECT_EQ(Param_IniFile2Param(path.c_str(), target), 0); });
    };
    EXPECT_EQ(read_from(missing, tree.Get()), failure(6, 1, missing));
    EXPECT_EQ(read_from(missing, nullptr), failure(6, 1, missing));
    EXPECT_EQ(read_from(held, tree.Get()), failure(8, 1, held));
    EXPECT_EQ(failure_of([&] { Param_Param2IniFile(tree.Get(), held.c_str()); }), "code 9");
    CloseHandle(holder);
    EXPECT_EQ(read_from(held, nullptr), "");
    EXPECT_EQ(Param_Param2IniFile(nullptr, held.c_str()), 0);
    ForeignTree failing("set v; create a");
    failing.calls_left = 4;
    EXPECT_EQ(failure_of([&] { Param_Param2IniFile(failing.root().Get(), held.c_str()); }), "code 4711");
    EXPECT_EQ(folder_.contents(L"held.ini"), "[\\]");
    EXPECT_EQ(folder_.count(), 1u);
}

} // namespace
