// Errors of the system as the codes that callers of files get. Few of them can be provoked, so the table is
// tested where it stands.
#include "core/file_error_code.h"

#include <gtest/gtest.h>

#include <map>
#include <vector>

namespace {

TEST(FileErrorCode, FollowsTheTable) {
    const std::map<unsigned, std::vector<DWORD>> errors_of = {
        {2, {8, 14, 84, 1130}},
        {3, {39, 112}},
        {4, {38}},
        {6, {2}},
        {7, {3, 15, 20, 55, 67, 123, 161, 206, 1203, 1214}},
        {8, {32, 33, 108}},
        {9, {5, 19, 65}},
        {12, {21, 23, 25, 27, 30, 132, 267, 1006, 1117, 1126, 1127, 1128, 1392, 1393}},
        {13, {50, 53, 54, 58, 64, 70, 88, 1201, 1204, 1206, 1222, 6118}},
        {14, {4}},
    };
    std::map<DWORD, unsigned> code_of;
    for (const auto& [code, errors] : errors_of)
        for (const DWORD error : errors)
            code_of[error] = code;
    for (DWORD error = 0; error < 16'000; ++error) {
        const auto row = code_of.find(error);
        EXPECT_EQ(qzr::file_error_code(error), row != code_of.end() ? row->second : 11u) << error;
    }
    EXPECT_EQ(qzr::file_error_code(0x80030002), 11u);
}

} // namespace
