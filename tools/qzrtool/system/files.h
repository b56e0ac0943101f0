// Whole files, read at once and replaced at once.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace tool {

// @return the path as this system takes it: under Wine one of the Unix system is found on a drive
std::filesystem::path native_path(const std::wstring& path);

/// @param shown the file's name for messages. Fails when the file cannot be read or holds 2 GiB or more, the
/// limit of the library's streams.
std::string read_file(const std::filesystem::path& file, const std::string& shown);

/// Reads a file piece by piece. Fails when it cannot be read.
/// @param piece called for each piece; what it throws ends the reading
void read_pieces(const std::filesystem::path& file, const std::string& shown,
                 const std::function<void(std::string_view)>& piece);

/// Puts the bytes in the file's place: they are written to a new file beside it, flushed to the disk, and
/// that file is then given the name. Whatever fails, the file keeps what it had, and no other file is left.
void replace_file(const std::filesystem::path& file, std::string_view bytes, const std::string& shown);

/// The same for standard input, whose pieces come as they are typed or sent.
void read_standard_pieces(const std::function<void(std::string_view)>& piece);
std::string read_standard_input();

/// A new file beside a target, which takes the target's place in the end, or goes away.
class Replacement {
public:
    /// Fails when the target cannot be replaced, or no file can be made beside it.
    Replacement(const std::filesystem::path& target, std::string shown);
    ~Replacement();
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    const std::filesystem::path& path() const { return path_; }

    void write(std::string_view bytes);
    void close(); ///< lets others open the file

    /// Flushes the file to the disk and gives it the target's name.
    void take_place();

private:
    [[noreturn]] void fail_writing() const;

    std::filesystem::path target_, path_;
    std::string shown_;
    int number_ = -1;
    bool made_ = false;
};

/// A new, empty file in the system's temporary directory, removed in the end.
class ScratchFile {
public:
    ScratchFile();
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// @return the system's text for an errno value
std::string system_text(int error);

} // namespace tool
