#include "dictionary_files.h"

#include "qzsupp.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include <windows.h>

namespace fs = std::filesystem;

DictionaryFiles::DictionaryFiles() {
    static int directories = 0;
    directory_ = fs::temp_directory_path() / ("dictionary_test_" + std::to_string(GetCurrentProcessId()) +
                                              "_" + std::to_string(++directories));
    fs::create_directories(directory_);
}

DictionaryFiles::~DictionaryFiles() {
    std::error_code ignored;
    fs::remove_all(directory_, ignored);
}

std::wstring DictionaryFiles::write(const std::string& name, const std::string& content) const {
    const fs::path path = directory_ / name;
    std::ofstream(path, std::ios::binary) << content;
    return path.wstring();
}

int DictionaryFiles::add(const std::string& content) {
    const std::string name = "added" + std::to_string(++added_);
    write(name + ".dlg", "");
    return Supp_AddWld(write(name + ".wld", content).c_str());
}

std::string pair_lines(const std::string& source, const std::string& translation) {
    return "\"" + source + "\"\r\n\"" + translation + "\"\r\n";
}

void expect_passes_alone(const std::string& test, int row) {
    constexpr DWORD kPatience = 30'000;
    SetEnvironmentVariableA("QZR_TEST_ROW", std::to_string(row).c_str());
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    std::string command = "\"" + std::string(program) +
                          "\" --gtest_brief=1 --gtest_also_run_disabled_tests --gtest_filter=" + test;
    STARTUPINFOA start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION child{};
    ASSERT_TRUE(
        CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &child));
    DWORD result = 1;
    EXPECT_EQ(WaitForSingleObject(child.hProcess, kPatience), WAIT_OBJECT_0);
    GetExitCodeProcess(child.hProcess, &result);
    EXPECT_EQ(result, 0U) << test << ", row " << row;
    if (result == STILL_ACTIVE) TerminateProcess(child.hProcess, 1);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
}

int fresh_row() {
    char text[16] = {};
    GetEnvironmentVariableA("QZR_TEST_ROW", text, sizeof text);
    return std::atoi(text);
}
