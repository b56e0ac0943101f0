#include "support/child_process.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr wchar_t kArgument[] = L"QZR_CHILD_ARGUMENT";
constexpr DWORD kPatience = 30000; // milliseconds

std::wstring ready_name(DWORD parent_or_self) { return L"QzrChildReady" + std::to_wstring(parent_or_self); }

} // namespace

ChildProcess::ChildProcess(const char* test, const std::wstring& argument) {
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(program) +
                           L"\" --gtest_also_run_disabled_tests --gtest_brief=1 --gtest_filter=" +
                           std::wstring(test, test + std::char_traits<char>::length(test));
    STARTUPINFOW start{};
    start.cb = sizeof start;
    SetEnvironmentVariableW(kArgument, argument.c_str());
    const BOOL started = CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED,
                                        nullptr, nullptr, &start, &process_);
    SetEnvironmentVariableW(kArgument, nullptr);
    if (!started) {
        std::fprintf(stderr, "the second process does not start: %lu\n", GetLastError());
        std::abort();
    }
    ready_ = CreateEventW(nullptr, TRUE, FALSE, ready_name(process_.dwProcessId).c_str());
    ResumeThread(process_.hThread);
}

ChildProcess::~ChildProcess() {
    end();
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
    CloseHandle(ready_);
}

bool ChildProcess::wait_ready() const {
    const HANDLE both[] = {ready_, process_.hProcess};
    return WaitForMultipleObjects(2, both, FALSE, kPatience) == WAIT_OBJECT_0;
}

DWORD ChildProcess::exit_code() const {
    DWORD code = ~0u;
    if (WaitForSingleObject(process_.hProcess, kPatience) == WAIT_OBJECT_0)
        GetExitCodeProcess(process_.hProcess, &code);
    return code;
}

void ChildProcess::end() const {
    TerminateProcess(process_.hProcess, 9);
    WaitForSingleObject(process_.hProcess, kPatience);
}

std::wstring child_argument() {
    wchar_t text[4096] = L"";
    GetEnvironmentVariableW(kArgument, text, 4096);
    return text;
}

void child_ready() {
    const HANDLE ready = OpenEventW(EVENT_MODIFY_STATE, FALSE, ready_name(GetCurrentProcessId()).c_str());
    SetEvent(ready);
    CloseHandle(ready);
}

void expect_passes_alone(const char* test, int row) {
    EXPECT_EQ(ChildProcess(test, std::to_wstring(row)).exit_code(), 0u) << test << ", row " << row;
}
