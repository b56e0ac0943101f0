#include "system/child_process.h"

#include "qzexport.h" // keeps min and max out of the system header
#include "system/failure.h"

#include <windows.h>

#include <array>

namespace tool {

namespace {

/// A handle of the system that is closed in the end.
class Handle {
public:
    explicit Handle(HANDLE handle = nullptr) : handle_(handle) {}
    ~Handle() { close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    HANDLE get() const { return handle_; }
    HANDLE* put() { return &handle_; }
    void close() {
        if (handle_ != nullptr) CloseHandle(handle_);
        handle_ = nullptr;
    }

private:
    HANDLE handle_;
};

/// Quotes an argument as the runtime takes command lines apart: backslashes count only in front of a quote.
std::wstring quoted(const std::wstring& argument) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'"') text.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, L'\\') + L"\"";
}

std::wstring own_path() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return path.substr(0, length);
        path.resize(2 * path.size());
    }
}

std::string read_to_end(HANDLE pipe) {
    std::string text;
    std::array<char, 4096> buffer;
    DWORD got = 0;
    while (ReadFile(pipe, buffer.data(), static_cast<DWORD>(buffer.size()), &got, nullptr) != 0 && got != 0) {
        text.append(buffer.data(), got);
    }
    return text;
}

} // namespace

std::string output_of_child(const std::vector<std::wstring>& arguments) {
    const std::wstring program = own_path();
    std::wstring line = quoted(program);
    for (const std::wstring& argument : arguments) {
        line += L" " + quoted(argument);
    }
    Handle read_end, write_end;
    if (CreatePipe(read_end.put(), write_end.put(), nullptr, 0) == 0 ||
        SetHandleInformation(write_end.get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT) == 0) {
        fail("a second process cannot be started");
    }
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = write_end.get();
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &process) == 0) {
        fail("a second process cannot be started");
    }
    const Handle thread(process.hThread), child(process.hProcess);
    write_end.close();
    std::string text = read_to_end(read_end.get());
    WaitForSingleObject(child.get(), INFINITE);
    return text;
}

} // namespace tool
