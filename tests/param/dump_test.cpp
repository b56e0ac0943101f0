#include <gtest/gtest.h>

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
        const char* steps;
        const char* expected;
    };
    const Row rows[] = {
        {"", ""},
        {"set v; create s", " v \n--- s ---\n"},
        {"create a\\b; set a\\v; set a\\b\\w; create c; set x; set %s%n",
         " x \n %s%n \n--- a ---\n v \n--- b ---\n w \n--- c ---\n"},
        {"create boskui; drop ckygvi", "--- boskui ---\n"}, // listed, does not open
    };
    for (const Row& row : rows) {
        const CQZRef<IParam> tree = memory_tree(row.steps);
        SCOPED_TRACE(outline_of(*tree));
        EXPECT_EQ(dump_of(tree.Get()), row.expected);
    }
    EXPECT_EQ(dump_of(nullptr), "");
}

} // namespace
