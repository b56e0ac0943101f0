#include <gtest/gtest.h>

#include "param/foreign_param.h"
#include "qzexception.h"
#include "support/param_outline.h"

#include <windows.h>

namespace {

// Collects what the process sends to a debugger; the system raises an exception with the text.
class DebuggerOutput {
public:
    DebuggerOutput() : handler_(AddVectoredExceptionHandler(1, catch_text)) { text_.clear(); }
    ~DebuggerOutput() { RemoveVectoredExceptionHandler(handler_); }
    const std::string& text() const { return text_; }

private:
    static LONG CALLBACK catch_text(EXCEPTION_POINTERS* exception) {
        const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
        constexpr DWORD kPrintException = 0x40010006;
        if (record.ExceptionCode != kPrintException) return EXCEPTION_CONTINUE_SEARCH;
        text_ += reinterpret_cast<const char*>(record.ExceptionInformation[1]);
        return EXCEPTION_CONTINUE_EXECUTION;
    }

    static inline std::string text_;
    void* handler_;
};

std::string dump_of(IParam* tree) {
    const DebuggerOutput output;
    Dump_Param(tree);
    return output.text();
}

TEST(DumpParam, WritesNamesOfValuesThenChildrenWithTheirs) {
    struct Row {
        std::vector<Step> steps;
        const char* expected;
    };
    const Row rows[] = {
        {{}, ""},
        {{{"set", "v"}, {"create", "s"}}, " v \n--- s ---\n"},
        {{{"create", "a\\b"},
          {"set", "a\\v"},
          {"set", "a\\b\\w"},
          {"create", "c"},
          {"set", "x"},
          {"set", "%s%n"}},
         " x \n %s%n \n--- a ---\n v \n--- b ---\n w \n--- c ---\n"},
        {{{"create", "boskui"}, {"drop", "ckygvi"}}, "--- boskui ---\n"}, // listed, does not open
    };
    for (const Row& row : rows) {
        const CQZRef<IParam> tree = memory_tree(row.steps);
        SCOPED_TRACE(outline_of(*tree));
        EXPECT_EQ(dump_of(tree.Get()), row.expected);
    }
    EXPECT_EQ(dump_of(nullptr), "");
}

TEST(DumpParam, ReleasesEverythingWhereverItFails) {
    ForeignTree tree({{"set", "v"}, {"create", "a\\b"}, {"create", "c"}});
    int failures = 0;
    for (bool done = false; !done; ++failures) {
        tree.calls_left = failures + 1;
        const DebuggerOutput output;
        try {
            Dump_Param(tree.root().Get());
            done = true;
            EXPECT_EQ(output.text(), " v \n--- a ---\n--- b ---\n--- c ---\n");
        } catch (const CXException& e) {
            EXPECT_EQ(e.GetCode(), ForeignTree::kFailure);
        }
        EXPECT_EQ(tree.held, 0) << failures;
    }
    EXPECT_GT(failures, 10);
}

TEST(DumpParam, NeedsEnumerators) {
    ForeignTree tree(std::vector<Step>{{"set", "v"}});
    for (const bool children : {true, false}) {
        tree.enumerates_children = !children;
        tree.enumerates_values = children;
        EXPECT_THROW(Dump_Param(tree.root().Get()), CXIFaceException);
        EXPECT_EQ(tree.held, 0);
    }
}

} // namespace
