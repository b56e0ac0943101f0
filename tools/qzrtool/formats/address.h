// Where a tree is kept, and where something is in it.
#pragma once

#include "system/files.h"
#include "trees/tree.h"

#include <filesystem>
#include <memory>
#include <string>

namespace tool {

struct Kind;

/// An argument such as text:settings.qzt, taken apart.
struct Address {
    const Kind* kind;
    std::filesystem::path file;        // empty for keys of the registry
    std::wstring inside;               // the storage in the file; the key of the registry below its root
    std::string shown;                 // as the user wrote it, for messages, without a password
    std::wstring url;                  // of a file on a server, else empty
    std::shared_ptr<ScratchFile> copy; // of that file: file is its path
    bool standard = false;             // "-": standard input or output
    bool machine = false;              // the key is below HKLM rather than HKCU
};

/// @return the path as this system takes it: under Wine one of the Unix system is found on a drive
std::filesystem::path native_path(const std::wstring& path);

/// For a file on a server: brings it into the local copy, or fails.
void fetch(const Address& address);
/// The same, but a file that is not there yet leaves no copy.
void fetch_if_there(const Address& address);

/// For a file on a server: sends the local copy, or fails.
void publish(const Address& address);

/// The bytes of a file, or of standard input.
std::string read_source(const Address& address);

/// Puts the bytes in a file's place, or writes them to standard output.
void replace_target(const Address& address, std::string_view bytes);

/// The address of a tree that is there. Without a kind in front of it the file's contents tell the kind, or
/// its extension when it is empty. Fails when there is no such file.
Address source_address(const std::wstring& argument);

/// The address of a tree to be written. Without a kind in front of it the extension tells the kind; failing
/// that, the contents of the file that is there already.
Address target_address(const std::wstring& argument);

/// FILE!PATH, where only a compound file makes sense; a "stor:" in front may be left out. The file need not
/// be there.
Address compound_address(const std::wstring& argument);

/// Takes the path of a value or section apart. "\" separates names, and so does "/" in a path without any
/// "\"; a separator at the end makes it the path of a section.
TreePath value_path(const std::wstring& argument);

/// The same where only a section makes sense.
std::vector<CXString> section_path(const std::wstring& argument);

} // namespace tool
