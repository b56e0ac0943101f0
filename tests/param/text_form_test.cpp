// The text form as it is written, and the one-line form that Param_Param2String makes of it.
#include "forms.h"

#include "support/param_outline.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace {

using namespace forms;

void set_text(IParam& tree, const char* name, const char* value) {
    const CQZVariant text(value);
    tree.SetValue(name, &text);
}

TEST(TextForm, GoesDepthFirstInOrderOfCreationValuesBeforeChildren) {
    const struct {
        std::vector<Step> steps;
        const char* text;
    } rows[] = {
        {{}, "[\\]|"},
        {{{"create", "s"}, {"set", "a"}}, "[\\]|a=i2|[\\s]|"},
        {{{"set", ""}}, "[\\]|@=i1|"},
        {{{"create", "b"},
          {"create", "a"},
          {"create", "b\\deep one"},
          {"set", "a\\x"},
          {"set", "b\\deep one\\z"},
          {"set", "b\\deep one\\y"},
          {"set", "b\\Upper"}},
         "[\\]|[\\b]|Upper=i7|[\\b\\deep one]|z=i5|y=i6|[\\a]|x=i4|"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(text_of(*memory_tree(row.steps)), row.text);
}

TEST(TextForm, OfNoTreeIsRefused) {
    CXString text("untouched");
    EXPECT_EQ(Param_Param2String(nullptr, text), 0);
    EXPECT_EQ(text, "untouched");
    EXPECT_EQ(Param_String2Param(text, nullptr), 0);
}

// The one-line form is what reading the lines back finds, so texts that hold separators come apart.
TEST(TextForm, OnOneLineIsCutAsReadingWouldCutIt) {
    const struct {
        const char* name;
        const char* value;
        const char* text;
    } rows[] = {
        {"v", "plain", "[\\]|v=splain|w=i1|"},
        {"v", "", "[\\]|v=s|w=i1|"},
        {"v", "  both  ", "[\\]|v=s  both|w=i1|"},
        {"v", "a|b", "[\\]|v=sa|b|w=i1|"},
        {"v", "a||b|", "[\\]|v=sa|b|w=i1|"},
        {"v", "a\nb", "[\\]|v=sa|b|w=i1|"},
        {"v", "a\r\nb", "[\\]|v=sa|b|w=i1|"},
        {"v", "a\rb", "[\\]|v=sa\rb|w=i1|"}, // a carriage return alone separates nothing
        {"v", "a|", "[\\]|v=sa|w=i1|"},
        {"v", "a;b", "[\\]|v=sa;b|w=i1|"},
        {"v", "a|;b", "[\\]|v=sa|"}, // the rest of the line is a comment
        {"v", "a\n;b", "[\\]|v=sa|"},
        {"v", "a|;b\nc", "[\\]|v=sa|c|w=i1|"},
        {";v", "a", "[\\]|"},
        {" v ", "a", "[\\]|v =sa|w=i1|"},
        {"a|b", "c", "[\\]|a|b=sc|w=i1|"},
        {"[v", "a", "[\\]|[v=sa|w=i1|"},
    };
    for (const auto& row : rows) {
        const Tree tree = memory_tree();
        set_text(*tree, row.name, row.value);
        set_int(*tree, "w", 1);
        EXPECT_EQ(text_of(*tree), row.text) << row.name << "=" << row.value;
    }
}

// In code page 932 "|", "\" and "]" are second bytes of characters; elsewhere the bytes are characters of
// their own.
TEST(TextForm, KeepsDoubleByteCharactersWhole) {
    const bool japanese = GetACP() == 932;
    const struct {
        const char* value;
        const char* whole;
        const char* bytewise;
    } rows[] = {
        {"a\x81\x7C", "[\\]|v=sa\x81\x7C|", "[\\]|v=sa\x81|"},
        {"\x83\x7C\x81\x7C|z", "[\\]|v=s\x83\x7C\x81\x7C|z|", "[\\]|v=s\x83|\x81|z|"},
        {"\x81", "[\\]|v=s\x81|", "[\\]|v=s\x81|"},
        {"\x83\x5C\x83\x5D", "[\\]|v=s\x83\x5C\x83\x5D|", "[\\]|v=s\x83\x5C\x83\x5D|"},
    };
    for (const auto& row : rows) {
        const Tree tree = memory_tree();
        set_text(*tree, "v", row.value);
        EXPECT_EQ(text_of(*tree), japanese ? row.whole : row.bytewise);
    }
}

TEST(TextForm, LeavesOutNamesThatDoNotOpen) {
    const Tree tree = tree_from("[\\]|a=i1|aeaea=i2|b=i3|[\\aeaea]|[\\c]|");
    tree->DeleteValue(kSameHash);
    tree->DeleteSubParam(kSameHash);
    EXPECT_EQ(text_of(*tree), "[\\]|a=i1|b=i3|[\\c]|");
}

TEST(TextForm, TooLargeForAStringIsRefused) {
    const Tree tree = memory_tree();
    CQZVariant huge;
    huge.vt = QZVT_BLOB;
    huge.blobVal = {0x40000000, nullptr}; // its digits alone are 2 GiB
    tree->SetValue("v", &huge);
    CXString text("untouched");
    EXPECT_EQ(Param_Param2String(tree.Get(), text), 0);
    EXPECT_EQ(text, "untouched");
}

TEST(TextForm, ReadBackGivesTheSameTree) {
    const char* const text = "[\\]|a=e|b=f1|c=w7|d=W8|e=i-9|f=u10|g=l-11|h=R2.5|i=r0.25|j=ssome text|k=z1,2|"
                             "l=Z0.5,1.5|m=p3,4|n=P2.5,3.5|o=t1,2,3,4|p=T0.5,1.5,2.5,3.5|q=x00FF|"
                             "[\\a]|n=i0|[\\a\\b c]|[\\d]|@=s@|";
    EXPECT_EQ(text_of(*tree_from(text)), text);
}

} // namespace
