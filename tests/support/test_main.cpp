// The main of every test program: GoogleTest, and after each test a check of all heaps of the process.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <windows.h>

namespace {

// A write past a block or after its release shows as a damaged heap; the test that did it fails.
class HeapCheck : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo&) override {
        std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr) + 8);
        const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
        ASSERT_LE(count, heaps.size());
        for (DWORD i = 0; i < count; ++i)
            EXPECT_TRUE(HeapValidate(heaps[i], 0, nullptr))
                << "heap " << i << " of " << count << " is damaged";
    }
};

// Ends a crashed test at once, without a debugger or a dialog, and names it.
LONG WINAPI end_crashed(EXCEPTION_POINTERS* crash) {
    std::fflush(stdout);
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    std::fprintf(stderr, "crashed in %s.%s: exception %08lX at %p\n",
                 test ? test->test_suite_name() : "no test", test ? test->name() : "",
                 crash->ExceptionRecord->ExceptionCode, crash->ExceptionRecord->ExceptionAddress);
    std::fflush(stderr);
    TerminateProcess(GetCurrentProcess(), 3);
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(end_crashed);
    // A run under another numeric locale shows code that formats or scans by the process locale.
    const char* const numeric = std::getenv("QZR_NUMERIC_LOCALE");
    if (numeric != nullptr && std::setlocale(LC_NUMERIC, numeric) == nullptr) {
        std::fprintf(stderr, "there is no locale %s\n", numeric);
        return 2;
    }
    testing::UnitTest::GetInstance()->listeners().Append(new HeapCheck);
    return RUN_ALL_TESTS();
}
