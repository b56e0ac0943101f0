#include "formats/address.h"

#include "qzfile.h"
#include "qzurl.h"
#include "system/failure.h"
#include "system/standard_streams.h"

namespace tool {

namespace fs = std::filesystem;

void fetch(const Address& address) {
    if (address.url.empty()) return;
    if (Fio_DownloadToFile(address.url.c_str(), address.file.c_str()) == 0)
        fail(address.shown + ": cannot be fetched");
}

void fetch_if_there(const Address& address) {
    if (address.url.empty() || Fio_DownloadToFile(address.url.c_str(), address.file.c_str()) != 0) return;
    if (Fio_IsFileExist(address.url.c_str()) != 0) fail(address.shown + ": cannot be fetched");
    std::error_code ignored;
    fs::remove(address.file, ignored);
}

void publish(const Address& address) {
    if (address.url.empty()) return;
    if (Fio_UrlPutFile(address.url.c_str(), address.file.c_str()) == 0)
        fail(address.shown + ": cannot be sent");
}

std::string read_source(const Address& address) {
    return address.standard ? read_standard_input() : read_file(address.file, address.shown);
}

void replace_target(const Address& address, std::string_view bytes) {
    if (!address.standard) return replace_file(address.file, bytes, address.shown);
    if (!write_standard(StandardStream::output, bytes)) fail("standard output cannot be written");
}

} // namespace tool
