// Starts the library's process-wide objects, as its entry point does in the DLL.
#include "core/library.h"
#include "support/import_mock.h"

#include <gtest/gtest.h>

namespace {

class LibraryStart : public testing::Environment {
    void SetUp() override { ASSERT_TRUE(qzr::start_library()); }
    void TearDown() override { qzr::stop_library(); }
};

const testing::Environment* const library_start = testing::AddGlobalTestEnvironment(new LibraryStart);

HANDLE WINAPI no_heap(DWORD, SIZE_T, SIZE_T) { return nullptr; }

TEST(Library, DoesNotStartWithoutMemory) {
    qzr::stop_library();
    {
        const ImportMock none("internal_test.exe", "HeapCreate", reinterpret_cast<void*>(&no_heap));
        EXPECT_FALSE(qzr::start_library());
        qzr::stop_library(); // nothing to stop
    }
    ASSERT_TRUE(qzr::start_library());
}

} // namespace
