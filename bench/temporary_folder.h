// Where the rows that need a disk keep their files, and how a program replaces a document without the
// library.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <windows.h>

namespace bench {

/// A folder of its own in the system's directory for temporary files. It goes with all that it holds.
class TemporaryFolder {
public:
    TemporaryFolder() {
        static unsigned count = 0;
        const std::string name =
            "qzrbench" + std::to_string(GetCurrentProcessId()) + "." + std::to_string(++count);
        path_ = std::filesystem::temp_directory_path() / name;
        std::filesystem::create_directory(path_);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::wstring file(const wchar_t* name) const { return (path_ / name).wstring(); }

private:
    std::filesystem::path path_;
};

struct CloseHandles {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using PlatformHandle = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseHandles>;

/// Opened as the library opens a file that is read from the front.
inline PlatformHandle open_for_reading(const std::wstring& path, DWORD hint = FILE_FLAG_SEQUENTIAL_SCAN) {
    return PlatformHandle(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | hint, nullptr));
}

/// Opened as the library opens a new file.
inline PlatformHandle create_for_writing(const std::wstring& path) {
    return PlatformHandle(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_ARCHIVE | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

/// The bare sequence of calls that replaces a document so that the old or the new one is whole at any time:
/// nothing is asked before, nobody is kept away, and no failure is told apart.
inline bool replace_bare(const TemporaryFolder& folder, const std::wstring& target, std::string_view text) {
    wchar_t temporary[MAX_PATH];
    if (GetTempFileNameW(folder.path().c_str(), L"QZB", 0, temporary) == 0) return false;
    {
        const PlatformHandle file = create_for_writing(temporary);
        DWORD written = 0;
        if (!WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) ||
            !FlushFileBuffers(file.get()))
            return false;
    }
    return DeleteFileW(target.c_str()) && MoveFileW(temporary, target.c_str());
}

} // namespace bench
