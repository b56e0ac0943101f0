// A folder for the files of one test, in the system's temporary directory; it goes with all that is in it.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include <windows.h>

class ScratchFolder {
public:
    ScratchFolder() {
        static int number = 0;
        do // a process that was ended may have left one, and its number serves another one some day
            folder_ = std::filesystem::temp_directory_path() /
                      ("qzr" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++number));
        while (!std::filesystem::create_directory(folder_));
    }
    ~ScratchFolder() {
        std::error_code ignored;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_, ignored))
            SetFileAttributesW(entry.path().c_str(), FILE_ATTRIBUTE_NORMAL);
        std::filesystem::remove_all(folder_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::wstring path() const { return folder_.wstring(); }
    std::wstring path(std::wstring_view name) const { return (folder_ / name).wstring(); }

    // Writes a file and answers its path.
    std::wstring file(std::wstring_view name, std::string_view contents = "x") const {
        std::ofstream(folder_ / name, std::ios::binary) << contents;
        return path(name);
    }
    std::string contents(std::wstring_view name) const { return contents_of(folder_ / name); }
    static std::string contents_of(const std::filesystem::path& path) { // empty when there is none
        std::ifstream in(path, std::ios::binary | std::ios::ate);
        std::string bytes(in ? static_cast<std::size_t>(in.tellg()) : 0, '\0');
        in.seekg(0).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return bytes;
    }
    bool has(std::wstring_view name) const { return std::filesystem::exists(folder_ / name); }

    // Everything in the folder, to be compared when nothing may be left behind.
    std::size_t count() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_), {}));
    }

private:
    std::filesystem::path folder_;
};
