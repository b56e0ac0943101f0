// The text form as it is written, and the one-line form that Param_Param2String makes of it.
#include "forms.h"

#include "param/foreign_param.h"
#include "support/param_outline.h"

#include "qzexception.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace {

using namespace forms;

void set_text(IParam& tree, const char* name, const char* value) {
    const CQZVariant text(value);
    tree.SetValue(name, &text);
}

Tree child_of(IParam& tree, const char* name) { return Tree::Adopt(tree.CreateSubParam(name)); }

TEST(TextForm, OfAnEmptyTreeIsTheRootSection) { EXPECT_EQ(text_of(*memory_tree()), "[\\]|"); }

TEST(TextForm, PutsASectionsValuesBehindItAndChildrenAfterThem) {
    const Tree root = memory_tree();
    const Tree s = child_of(*root, "s");
    set_int(*root, "a", 3);
    EXPECT_EQ(text_of(*root), "[\\]|a=i3|[\\s]|");
}

TEST(TextForm, GoesDepthFirstInOrderOfCreation) {
    const Tree root = memory_tree();
    const Tree b = child_of(*root, "b");
    const Tree a = child_of(*root, "a");
    const Tree deep = child_of(*b, "deep one");
    set_int(*a, "x", 1);
    set_int(*deep, "z", 2);
    set_int(*deep, "y", 3);
    set_int(*b, "Upper", 4);
    EXPECT_EQ(text_of(*root), "[\\]|[\\b]|Upper=i4|[\\b\\deep one]|z=i2|y=i3|[\\a]|x=i1|");
}

TEST(TextForm, NamesTheDefaultValue) {
    const Tree root = memory_tree();
    set_int(*root, "", 1);
    EXPECT_EQ(text_of(*root), "[\\]|@=i1|");
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

TEST(TextForm, NeedsEnumerators) {
    for (bool ForeignTree::*enumerates :
         {&ForeignTree::enumerates_values, &ForeignTree::enumerates_children}) {
        ForeignTree tree;
        tree.*enumerates = false;
        CXString text("untouched");
        EXPECT_THROW(Param_Param2String(tree.root().Get(), text), CXIFaceException);
        EXPECT_EQ(text, "untouched");
    }
}

// Exceptions of a tree pass, wherever they come from, and everything that was held is released.
TEST(TextForm, ReleasesWhatItHoldsWhenATreeThrows) {
    ForeignTree tree(
        {{"set", "v"}, {"create", "a"}, {"set", "a\\v"}, {"create", "a\\b"}, {"set", "a\\b\\v"}});
    int result = 0;
    int calls = 0;
    while (result == 0) {
        tree.calls_left = ++calls;
        CXString text("untouched");
        try {
            result = Param_Param2String(tree.root().Get(), text);
        } catch (const CXException& e) {
            EXPECT_EQ(e.GetCode(), ForeignTree::kFailure);
            EXPECT_EQ(text, "untouched");
        }
        EXPECT_EQ(tree.held, 0) << "after call " << calls;
    }
    EXPECT_GT(calls, 15);
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
