// Where a tree is kept: a file or a part of one, here or on a server, a key of the registry, a standard
// stream.
#pragma once

#include "system/files.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

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

} // namespace tool
