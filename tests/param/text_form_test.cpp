// The text form as it is written, and the one-line form that Param_Param2String makes of it.
#include "forms.h"

#include "support/param_outline.h"

#include <gtest/gtest.h>

namespace {

using namespace forms;

void set_text(IParam& tree, const char* name, const char* value) {
    const CQZVariant text(value);
    tree.SetValue(name, &text);
}

TEST(TextForm, GoesDepthFirstInOrderOfCreationValuesBeforeChildren) {
    const struct {
        const char* steps;
        const char* text;
    } rows[] = {
        {"", "[\\]|"},
        {"create s; set a", "[\\]|a=i2|[\\s]|"},
        {"set", "[\\]|@=i1|"},
        {"create b; create a; create b\\deep one; set a\\x; set b\\deep one\\z; set b\\deep one\\y; set "
         "b\\Upper",
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

} // namespace
