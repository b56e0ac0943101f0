// Starts the library's process-wide objects, as its entry point does in the DLL.
#include "core/library.h"

#include <gtest/gtest.h>

namespace {

class LibraryStart : public testing::Environment {
    void SetUp() override { ASSERT_TRUE(qzr::start_library()); }
    void TearDown() override { qzr::stop_library(); }
};

const testing::Environment* const library_start = testing::AddGlobalTestEnvironment(new LibraryStart);

} // namespace
