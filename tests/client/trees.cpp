// Typed values by their paths.
#include "qzbytes.h"
#include "qztree.h"

#include "expect.h"

namespace {

/// A tree that holds nothing and makes nothing.
class BarrenNode final : public CQZUnknownImpl<IParam> {
public:
    IParam* CreateSubParam(const char*) override { return nullptr; }
    IParam* OpenSubParam(const char*, int) override { return nullptr; }
    void DeleteSubParam(const char*) override {}
    void DeleteAllSubParams() override {}
    CTEnum<const char*>* EnumSubParams() override { return nullptr; }
    int GetValue(const char*, tagQZVARIANT*) override { return 0; }
    void SetValue(const char*, const tagQZVARIANT*) override {}
    void DeleteValue(const char*) override {}
    void DeleteAllValues() override {}
    CTEnum<const char*>* EnumValues() override { return nullptr; }
    void Clear() override {}
};

template <class Work>
unsigned code_of(Work work) {
    try {
        work();
        return 0;
    } catch (const CXException& e) {
        return e.GetCode();
    }
}

void use_typed_values() {
    const auto tree = qz::new_tree();
    qz::set(*tree, "View\\Grid\\Spacing", 12.5);
    qz::set(*tree, "View\\Grid\\Visible", true);
    qz::set(*tree, "View\\Title", std::string("plan"));
    qz::set(*tree, "", 7);
    expect(qz::text_of(*tree) == "[\\]|@=i7|[\\View]|Title=splan|[\\View\\Grid]|Spacing=R12.5|Visible=f1|",
           "all nodes on the way are made");
    expect(qz::get<double>(*tree, "View\\Grid\\Spacing") == 12.5 &&
               qz::get<bool>(*tree, "view\\grid\\visible") == true,
           "values are found by their paths");
    expect(qz::get<long>(*tree, "@") == 7 && qz::get<int>(*tree, "") == 7, "the default value");
    expect(!qz::get<int>(*tree, "View\\Grid\\Spacing") && !qz::get<int>(*tree, "No\\Where") &&
               !qz::get<int>(*tree, "x"),
           "what is of another type, or nowhere, is not there");
    expect(qz::get(*tree, "x", 3) == 3 && qz::get(*tree, "View\\Title", "none") == "plan" &&
               qz::get(*tree, "View\\Width", L"none") == L"none" &&
               qz::get(*tree, "View\\Grid\\Visible", false),
           "values to fall back on");
    expect(qz::get_converted<int>(*tree, "View\\Grid\\Spacing") == 12 &&
               !qz::get_converted<int>(*tree, "View\\Title"),
           "values are converted when that is asked");
    qz::erase_value(*tree, "View\\Grid\\Spacing");
    qz::erase_value(*tree, "No\\Where");
    expect(!qz::find_value(*qz::open(*tree, "View\\Grid"), "Spacing") && qz::find_value(*tree, "@"),
           "a value is erased");
    qz::erase_node(*tree, "View\\Grid");
    qz::erase_node(*tree, "No\\Where");
    expect(!qz::open(*tree, "View\\Grid") && qz::open(*tree, "View"), "a node is erased");
}

void use_odd_paths() {
    const auto tree = qz::new_tree();
    qz::set(*tree, "\\v", 1);
    expect(qz::get<int>(*tree, "\\v") == 1 && tree->GetValue("v", nullptr) == 0,
           "an empty component is a node's name");
    qz::set(*tree, "a\\", 2);
    expect(qz::get<int>(*qz::open(*tree, "a"), "@") == 2, "a path may end in the default value");
    expect(qz::make(*tree, "a") == qz::open(*tree, "a") && qz::get<int>(*tree, "a\\@") == 2,
           "what is there stays");
    const auto text = "k=u0x|" + std::string(3, '\\');
    expect(code_of([&] { qz::set(*tree, text, 3); }) == 0 && qz::get<int>(*tree, text) == 3,
           "any path leads somewhere");

    // In a double-byte code page 0x5C may be the second byte of a character.
    const bool double_byte = CXString("\x83\x5C").GetLength() == 1;
    const auto other = qz::new_tree();
    qz::set(*other, "\x83\x5C\\v", 4);
    expect(qz::get<int>(*other, "\x83\x5C\\v") == 4, "the value is where it was put");
    for (const char* name : qz::child_names(*other))
        expect(std::string_view(name) == (double_byte ? "\x83\x5C" : "\x83"),
               "paths are cut between characters");
}

void use_forms() {
    const auto tree = qz::new_tree();
    qz::set(*tree, "a\\n", 1);
    const std::string bytes = qz::bytes_of(*tree);
    expect(bytes == std::string("a\0\0n\0\5\0\1\0\0\0\0\0\0", 14), "the binary form");
    const auto copy = qz::new_tree();
    expect(qz::read_bytes(*copy, bytes) && qz::get<int>(*copy, "a\\n") == 1, "and back");
    qz::read_text(*copy, "[\\b]|t=sx|");
    expect(qz::get(*copy, "b\\t", "") == "x" && qz::get<int>(*copy, "a\\n") == 1, "a text adds to a tree");
    const auto stream = qz::stream_of("abc");
    expect(stream->GetPosition() == 0 && qz::read_rest(*stream) == "abc" && qz::read_rest(*stream).empty(),
           "the rest");
    qz::write(*stream, "de");
    expect(qz::bytes_of(*stream) == "abcde" && qz::bytes_of(*qz::stream_of("")).empty(), "a stream as bytes");
}

void use_failures() {
    const auto barren = CQZRef<IParam>::Adopt(new BarrenNode);
    expect(code_of([&] { qz::make(*barren, "a"); }) == QZERR_OTHER, "a node that cannot be made is told");
    expect(code_of([&] { qz::set(*barren, "a\\b", 1); }) == QZERR_OTHER, "also when a value is stored in it");
    expect(!qz::get<int>(*barren, "a\\b") && !qz::open(*barren, "a"), "reading makes nothing");
    expect(code_of([&] { qz::child_names(*barren); }) == QZERR_INTERFACE &&
               code_of([&] { qz::values(*barren); }) == QZERR_INTERFACE,
           "no enumerator is not an empty tree");
    const auto tree = qz::new_tree();
    bool refused = false;
    try {
        qz::set(*tree, "a\\b", std::string_view("x\0y", 3));
    } catch (const std::invalid_argument&) {
        refused = true;
    }
    expect(refused && !qz::open(*tree, "a"),
           "a text that would be cut is refused, and nothing is made for it");
}

} // namespace

void use_trees() {
    use_typed_values();
    use_odd_paths();
    use_forms();
    use_failures();
}
