// The main of every test program: GoogleTest, and after each test a check of all heaps of the process.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
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

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    // A crash ends the process with its exception code, without a dialog.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    // A run under another numeric locale shows code that formats or scans by the process locale.
    if (const char* numeric = std::getenv("QZR_NUMERIC_LOCALE"))
        if (!std::setlocale(LC_NUMERIC, numeric)) return 2;
    testing::UnitTest::GetInstance()->listeners().Append(new HeapCheck);
    return RUN_ALL_TESTS();
}
