// Files on an FTP server. Wherever a path is taken, an address is.
#include "guide.h"

#include "qzcore.h"

#include <cstdio>

void remote(const Argument& folder) {
    const Argument url = folder + L"guide/drawing.txt";
    Fio_CreateDirectory((folder + L"guide").c_str());

    CXStringW host, user, password, path;
    Fio_UrlCrack(url.c_str(), host, user, password, path);
    std::printf("on %s as %s: %s\n", qz::utf8(host).c_str(), qz::utf8(user).c_str(), qz::utf8(path).c_str());

    // To know that it arrived, write a local file and send that: Commit of a remote file does not tell.
    const Argument local = Fio_GetTempFileName();
    qz::replace_file(local, "sent as a whole");
    std::printf("sent: %s\n", Fio_UrlPutFile(url.c_str(), local.c_str()) != 0 ? "yes" : "no");
    Fio_DeleteFile(local.c_str());

    std::printf("read: %s\n", qz::read_file(url).c_str()); // a copy is fetched first
    FioFileInfo info = {};
    Fio_GetFileInfo(url.c_str(), &info);
    std::printf("listed with %u bytes\n", info.size);

    Fio_DeleteFile(url.c_str());
    try {
        qz::read_file(url);
    } catch (const CXFileException& e) { // the name is the address, with its password: show it to nobody
        std::printf("deleted: error %u\n", e.GetCode());
    }
}
