// Reading the text form: lines, statements, sections and names.
#include "forms.h"

#include "support/param_outline.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace {

using namespace forms;

struct Row {
    const char* text;
    const char* tree; // as Param_Param2String shows it
};

void expect_trees(std::initializer_list<Row> rows) {
    for (const Row& row : rows)
        EXPECT_EQ(text_of(*tree_from(row.text)), row.tree) << row.text;
}

TEST(TextParser, TakesBarsAndLineFeedsAsSeparators) {
    expect_trees({
        {"[\\]|a=i1|b=i2", "[\\]|a=i1|b=i2|"},
        {"[\\]\na=i1\nb=i2\n", "[\\]|a=i1|b=i2|"},
        {"[\\]\r\na=i1\r\nb=i2", "[\\]|a=i1|b=i2|"},
        {"\r\n[\\]\t\t| a=i1\t| b=i2", "[\\]|a=i1|b=i2|"},
        {" || [\\] | |a=i1||\n\n||  b=i2 | ", "[\\]|a=i1|b=i2|"},
        {"[\\]|a=sx\ry", "[\\]|a=sx\ry|"},
    });
}

TEST(TextParser, SkipsCommentsToTheEndOfTheLine) {
    expect_trees({
        {"; a\n[\\]|a=i1", "[\\]|a=i1|"},
        {"[\\]|a=i1|;b=i2|c=i3\nd=i4", "[\\]|a=i1|d=i4|"},
        {"[\\]|  ; b=i2\nd=i4", "[\\]|d=i4|"},
        {"[\\]|a=s;no comment|b=i1", "[\\]|a=s;no comment|b=i1|"},
        {"[\\]|a;b=i1", "[\\]|a;b=i1|"},
        {";[\\]|a=i1", "[\\]|"},
    });
}

TEST(TextParser, OpensSections) {
    expect_trees({
        {"", "[\\]|"},
        {"a=i1|[\\]|b=i2", "[\\]|b=i2|"}, // what comes before the first section is ignored
        {"a|[s]", "[\\]|[\\s]|"},
        {"[]", "[\\]|"},
        {"[", "[\\]|"},
        {"[\\s]|a=i1", "[\\]|[\\s]|a=i1|"},
        {"[s]|a=i1", "[\\]|[\\s]|a=i1|"},
        {"[\\s|a=i1", "[\\]|[\\s]|a=i1|"},
        {"[\\s\\t]|a=i1|[\\s]|b=i2|[\\]|c=i3", "[\\]|c=i3|[\\s]|b=i2|[\\s\\t]|a=i1|"},
        {"[\\\\s\\\\t\\]|a=i1", "[\\]|[\\s]|[\\s\\t]|a=i1|"},
        {"[\\S]|a=i1|[\\s]|b=i2", "[\\]|[\\S]|a=i1|b=i2|"},
        {"[\\a b\\c=d]|e=i1", "[\\]|[\\a b]|[\\a b\\c=d]|e=i1|"},
        {"[\\s]]|a=i1", "[\\]|[\\s]]|a=i1|"},
        {"[\\s] x|a=i1", "[\\]|[\\s] x]|a=i1|"},
    });
}

TEST(TextParser, TakesNamesAndValuesApart) {
    expect_trees({
        {"[\\]|a=i1", "[\\]|a=i1|"},
        {"[\\]|a b \t=  i1", "[\\]|a b=i1|"},
        {"[\\]|a=sb=c", "[\\]|a=sb=c|"},
        {"[\\]|=i1", "[\\]|@=i1|"},
        {"[\\]|a=", "[\\]|"},
        {"[\\]|a=q", "[\\]|"},
        {"[\\]|a=i", "[\\]|"},
        {"[\\]|a", "[\\]|a=i0|"},
        {"[\\]|a name of words", "[\\]|a name of words=i0|"},
        {"[\\]|a=i1|A=i2|a", "[\\]|a=i0|"},
        {"[\\]|a=i1|a=ix|a=w99999", "[\\]|a=i1|"}, // a refused value leaves the one that is there
        {"[\\]|s\\v=i1", "[\\]|[\\s]|v=i1|"},      // a name is a path to the tree
    });
}

TEST(TextParser, IgnoresOtherDirectives) {
    expect_trees({{"[\\]|#define a|b=i1", "[\\]|b=i1|"},
                  {"[\\]|#|#includes x|#include|#include \"\"|b=i1", "[\\]|b=i1|"}});
}

// In code page 932 these bytes are second bytes of characters; elsewhere they separate.
TEST(TextParser, KeepsDoubleByteCharactersWhole) {
    const bool japanese = GetACP() == 932;
    const struct {
        std::string text, whole, bytewise; // behind "[\]|"
    } rows[] = {
        {"a=s\x81\x7C|z", "a=s\x81\x7C|z=i0|", "a=s\x81|z=i0|"},
        {"[\\\x83\x5C_]|v=i1", "[\\\x83\x5C_]|v=i1|", "[\\\x83]|[\\\x83\\_]|v=i1|"},
        {"[\\\x83\x5D|v=i1", "[\\\x83\x5D]|v=i1|", "[\\\x83]|v=i1|"},
        {"[\\\x83\x5D]|v=i1", "[\\\x83\x5D]|v=i1|", "[\\\x83\x5D]|v=i1|"},
        {"a=i10\x83\x58", "a=i10|", "a=i16|"},           // an "X" that is none
        {"a=s\x81\nz=i1", "a=s|z=i1|", "a=s\x81|z=i1|"}, // half a character would take in the "|"
        {"a=s\x83\x5C\x81", "a=s\x83\x5C|", "a=s\x83\x5C\x81|"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(text_of(*tree_from("[\\]|" + row.text)), "[\\]|" + (japanese ? row.whole : row.bytewise))
            << row.text;
}

TEST(TextParser, ReadsLongNamesAndValues) {
    const std::string name(70000, 'n');
    const std::string value(300000, 'v');
    const Tree tree = tree_from("[\\" + name + "]|" + name + "=s" + value + "|last=i1");
    const Tree section = Tree::Adopt(tree->OpenSubParam(name.c_str(), 0));
    ASSERT_TRUE(section);
    EXPECT_EQ(value_in(*section, name.c_str()), "text '" + value + "'");
    EXPECT_EQ(value_in(*section, "last"), "int 1");
}

} // namespace
