// A second process: this test program again, with one of its tests whose names begin with DISABLED_.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include <windows.h>

class ChildProcess {
public:
    // Starts the test ("Suite.DISABLED_Name"), which finds the argument by child_argument().
    ChildProcess(const char* test, const std::wstring& argument);
    ~ChildProcess(); // ends it
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool wait_ready() const; // until it calls child_ready(), or ends; false then
    DWORD exit_code() const; // waits for its end, 30 seconds at most
    void end() const;        // at once, in the middle of whatever it does

private:
    HANDLE ready_;
    PROCESS_INFORMATION process_{};
};

std::wstring child_argument();
void child_ready();

// Runs the test in a second process and expects it to pass.
void expect_passes_alone(const char* test, int row = 0); // which is the argument

// A test with a process of its own, in which nothing was loaded before.
#define TEST_ALONE(suite, name)                                                                              \
    TEST(suite, name) { expect_passes_alone(#suite ".DISABLED_" #name); }                                    \
    TEST(suite, DISABLED_##name)
