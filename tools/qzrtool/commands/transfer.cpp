// qzrtool file get, put, ls, rm, mkdir.
#include "commands/commands.h"
#include "qzfile.h"
#include "qzurl.h"
#include "system/encoding.h"
#include "system/files.h"
#include "system/remote.h"

#include <algorithm>

namespace tool {

namespace {

namespace fs = std::filesystem;

std::string shown(const std::wstring& argument) { return without_passwords(printable(utf8(argument))); }

void require_remote(const std::wstring& argument) {
    if (!is_remote(argument))
        fail(shown(argument) + ": is no address; one is written as ftp://host/folder/file");
}

/// The address itself, or the path as this system takes it.
std::wstring place_of(const std::wstring& argument) {
    return is_remote(argument) ? argument : fs::absolute(native_path(argument)).wstring();
}

std::vector<RemoteEntry> list_local(const std::wstring& argument) {
    const fs::path folder = place_of(argument);
    std::error_code error;
    std::vector<RemoteEntry> entries;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        std::error_code ignored;
        const bool is_directory = entry.is_directory(ignored);
        entries.push_back({entry.path().filename().wstring(), is_directory,
                           is_directory ? 0 : static_cast<unsigned long long>(entry.file_size(ignored))});
    }
    if (error) fail(shown(argument) + ": cannot be listed: " + error.message());
    return entries;
}

} // namespace

ExitCode run_file_get(Invocation& invocation) {
    const std::wstring& source = invocation.arguments[0];
    const std::wstring& target = invocation.arguments[1];
    require_remote(source);
    const fs::path path = place_of(target);
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) fail(shown(target) + ": is a directory");
    if (Fio_DownloadToFile(source.c_str(), path.c_str()) == 0)
        fail(shown(source) + ": cannot be fetched; " + shown(target) + " is as it was");
    return kOk;
}

ExitCode run_file_put(Invocation& invocation) {
    const std::wstring& source = invocation.arguments[0];
    const std::wstring& target = invocation.arguments[1];
    require_remote(target);
    std::error_code ignored;
    if (!fs::is_regular_file(place_of(source), ignored)) fail(shown(source) + ": there is no such file");
    if (Fio_UrlPutFile(target.c_str(), place_of(source).c_str()) == 0)
        fail(shown(target) + ": cannot be sent");
    return kOk;
}

ExitCode run_file_ls(Invocation& invocation) {
    const std::wstring& place = invocation.arguments[0];
    auto entries = is_remote(place) ? list_remote(place, invocation.options.timeout) : list_local(place);
    std::sort(entries.begin(), entries.end(),
              [](const RemoteEntry& a, const RemoteEntry& b) { return a.name < b.name; });
    for (const RemoteEntry& entry : entries) {
        const std::string size = entry.is_directory ? std::string() : std::to_string(entry.size);
        const std::string gap(std::max<std::size_t>(size.size(), 12) - size.size(), ' ');
        invocation.out.write(gap + size + "  " + printable(utf8(entry.name)) +
                             (entry.is_directory ? "/\n" : "\n"));
    }
    return kOk;
}

ExitCode run_file_rm(Invocation& invocation) {
    const std::wstring& place = invocation.arguments[0];
    if (!is_remote(place)) {
        Fio_DeleteFile(place_of(place).c_str());
    } else if (Fio_UrlDeleteFile(place.c_str()) == 0) {
        print_error(shown(place) + ": there is no such file, or it stays");
        return kNo;
    }
    return kOk;
}

ExitCode run_file_mkdir(Invocation& invocation) {
    Fio_CreateDirectory(place_of(invocation.arguments[0]).c_str());
    return kOk;
}

} // namespace tool
