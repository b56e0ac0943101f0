// Files on FTP servers, by their addresses. Nothing here or elsewhere prints a password.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// @return whether an argument is an address (ftp://...) rather than a path
bool is_remote(std::wstring_view argument);

/// @return the text with the passwords of all addresses in it replaced by "***"
std::string without_passwords(std::string text);

struct RemoteEntry {
    std::wstring name;
    bool is_directory;
    unsigned long long size;
};

constexpr unsigned kListingTimeout = 120; // seconds

/// What a directory of a server holds, in the server's order. Fails when it cannot be listed to its end.
/// @param timeout seconds without a move that are one too many
std::vector<RemoteEntry> list_remote(const std::wstring& url, unsigned timeout);

} // namespace tool
