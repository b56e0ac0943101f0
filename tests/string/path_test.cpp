// Taking file names apart, changing extensions, shortening paths.
#include "string_kinds.h"

#include <climits>

namespace {

template <class Kind>
class StringPaths : public testing::Test {};
TYPED_TEST_SUITE(StringPaths, BothKinds, KindNames);

TYPED_TEST(StringPaths, AreTakenApart) {
    using Unit = typename TypeParam::Unit;
    const char* const none = nullptr;
    const struct {
        const char *path, *extension, *name, *stem, *directory;
        bool has_directory;
    } rows[] = {
        {"", none, "", "", "", false},
        {"name", none, "name", "name", "", false},
        {"name.tar.gz", "gz", "name.tar.gz", "name.tar", "", false},
        {"file.", "", "file.", "file", "", false},
        {".profile", "profile", ".profile", "", "", false},
        {".", "", ".", "", "", false},
        {"dir\\name.ext", "ext", "name.ext", "name", "dir", true},
        {"dir/name.ext", "ext", "name.ext", "name", "dir", true},
        {"arch.old\\readme", none, "readme", "readme", "arch.old", true},
        {"C:name", none, "name", "name", "C:", true},
        {"C:.x", "x", ".x", "", "C:", true},
        {"C:", none, "", "", "C:", true},
        {"\\x", none, "x", "x", "", true},
        {"dir\\", none, "", "", "dir", true},
        {"a:b\\c/d.e", "e", "d.e", "d", "a:b\\c", true},
        {"\\\\server\\share\\f", none, "f", "f", "\\\\server\\share", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        const auto s = string_of<TypeParam>(row.path);
        const std::string extension = row.extension != none ? row.extension : "";
        EXPECT_EQ(narrow(s.FileExt().GetData()), extension);
        EXPECT_EQ(narrow(s.FileName().GetData()), row.name);
        EXPECT_EQ(narrow(s.FilePath().GetData()), row.directory);
        const auto size = static_cast<int>(std::strlen(row.directory)); // with a spare unit
        EXPECT_EQ(s.FilePath().GetAllocSize(), size != 0 ? (size + 2) * TypeParam::kUnit : 0);

        const Unit* const end = s.GetData() + s.GetSize();
        const Unit* const in_text = s.GetFileExt();
        const Unit* const expected = row.extension != none ? end - extension.size() : nullptr;
        EXPECT_EQ(in_text, expected);
        EXPECT_EQ(s.GetFileName(), end - std::strlen(row.name));

        Unit buffer[32] = {'?', '?', 0};
        EXPECT_EQ(s.GetFileExt(buffer), static_cast<int>(extension.size()));
        EXPECT_EQ(narrow(buffer), extension);
        EXPECT_EQ(s.GetFileName(buffer), static_cast<int>(std::strlen(row.stem)));
        EXPECT_EQ(narrow(buffer), row.stem);
        buffer[0] = buffer[1] = '?', buffer[2] = 0;
        EXPECT_EQ(s.GetFilePath(buffer), static_cast<int>(std::strlen(row.directory)));
        EXPECT_EQ(narrow(buffer), row.has_directory ? row.directory : "??");
        EXPECT_EQ(s.GetFileExt(static_cast<Unit*>(nullptr)), static_cast<int>(extension.size()));
        EXPECT_EQ(s.GetFileName(static_cast<Unit*>(nullptr)), static_cast<int>(std::strlen(row.stem)));
        EXPECT_EQ(s.GetFilePath(nullptr), static_cast<int>(std::strlen(row.directory)));
    }
}

TYPED_TEST(StringPaths, DelimitersAreAddedOnce) {
    const struct {
        const char *text, *directory, *extension;
    } rows[] = {
        {"", "\\", "."},        {"C:", "C:\\", "C:."}, {"a/", "a/", "a/."},
        {"a\\", "a\\", "a\\."}, {"a.", "a.\\", "a."},  {"a", "a\\", "a."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        auto a = string_of<TypeParam>(row.text), b = a;
        EXPECT_EQ(&a.AddDirDelim(), &a);
        EXPECT_EQ(&b.AddFileExtDelim(), &b);
        EXPECT_EQ(narrow(a.GetData()), row.directory);
        EXPECT_EQ(narrow(b.GetData()), row.extension);
    }
}

TYPED_TEST(StringPaths, ExtensionsAreReplacedOrAdded) {
    const struct {
        const char *path, *extension, *result;
    } rows[] = {
        {"a.txt", "doc", "a.doc"},
        {"a.txt", ".doc", "a.doc"},
        {"a.txt", "", "a."},
        {"a.txt", "..x", "a..x"},
        {"a.txt", "extension", "a.extension"},
        {"dir.d\\file", "x", "dir.d\\file.x"},
        {"a.", "b", "a.b"},
        {"", "b", ".b"},
        {"a.b.c", ".d", "a.b.d"},
        {"a.txt", nullptr, "a."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.path) + " " + (row.extension != nullptr ? row.extension : "null"));
        auto s = string_of<TypeParam>(row.path);
        s.ChangeFileExt(row.extension != nullptr ? text<TypeParam>(row.extension).c_str() : nullptr);
        EXPECT_EQ(narrow(s.GetData()), row.result);
    }
}

TYPED_TEST(StringPaths, AreShortenedInTheirMiddle) {
    const char* const path = "C:\\one\\two\\three\\file.txt"; // 25 characters
    const char* const share = "\\\\srv\\share\\one\\two\\three\\f.txt";
    const struct {
        const char* path;
        int length;
        const char* result; // null: no root
    } rows[] = {
        {path, 25, path},
        {path, INT_MAX, path},
        {path, 24, "C:\\one\\...\\file.txt"}, // keeping "three" takes 25
        {path, 14, "C:\\one\\...\\file.txt"},
        {path, INT_MIN, "C:\\one\\...\\file.txt"},
        {"C:\\one\\two\\three\\four\\file.txt", 23, "C:\\one\\...\\file.txt"},
        {"C:\\one\\two\\three\\four\\file.txt", 24, "C:\\one\\...\\four\\file.txt"},
        {"C:\\one\\file.txt", 14, "C:\\...\\file.txt"},
        {"C:\\file.txt", 3, "C:\\file.txt"},
        {share, 27, "\\\\srv\\share\\...\\three\\f.txt"},
        {share, 26, "\\\\srv\\share\\...\\f.txt"},
        {"\\\\srv\\share", 3, "\\\\srv\\share"},
        {"\\\\srv", 3, nullptr},
        {"one\\two\\three", 5, nullptr},
        {"\\one\\two\\three", 5, nullptr},
        {"C:one\\two\\three", 5, nullptr},
        {"C:/one/two/three", 5, nullptr},
        {"", 0, ""},
        {"", -1, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.path) + " to " + std::to_string(row.length));
        auto s = string_of<TypeParam>(row.path);
        EXPECT_EQ(s.ReducePathString(row.length), row.result != nullptr ? 1 : 0);
        EXPECT_EQ(narrow(s.GetData()), row.result != nullptr ? row.result : row.path);
    }
}

TEST(NarrowPaths, DelimitersAreWholeCharacters) {
    // 835C ends in the byte of "\"; in a single-byte page that byte is the delimiter.
    const struct {
        Page page;
        const char *path, *name, *directory, *with_delimiter;
    } rows[] = {
        {Page::k932, "x\\\x83\\.y", "\x83\\.y", "x", "x\\\x83\\.y\\"},
        {Page::k932, "\x83\\", "\x83\\", "", "\x83\\\\"},
        {Page::kSingleByte, "x\\\x83\\.y", ".y", "x\\\x83", "x\\\x83\\.y\\"},
        {Page::kSingleByte, "\x83\\", "", "\x83", "\x83\\"},
        {Page::kAny, "a\\b\x83", "b\x83", "a", "a\\b\x83\\"},
    };
    for (const auto& row : rows) {
        if (!applies(row.page)) continue;
        SCOPED_TRACE(row.path);
        CXString s(row.path);
        EXPECT_STREQ(s.FileName().GetData(), row.name);
        EXPECT_STREQ(s.FilePath().GetData(), row.directory);
        EXPECT_STREQ(s.AddDirDelim().GetData(), row.with_delimiter);
    }
}

TEST(NarrowPaths, AreShortenedByCharacters) {
    CXString s("C:\\\x83\\\x83\\\x83\\\\two\\three\\f");
    const unsigned characters = s.GetLength();
    EXPECT_EQ(characters, applies(Page::k932) ? 18U : 21U);
    EXPECT_EQ(s.ReducePathString(static_cast<int>(characters)), 1);
    EXPECT_EQ(s.GetLength(), characters);
    EXPECT_EQ(s.ReducePathString(14), 1);
    EXPECT_STREQ(s.GetData(), applies(Page::k932) ? "C:\\\x83\\\x83\\\x83\\\\...\\f" : "C:\\\x83\\...\\f");
}

} // namespace
