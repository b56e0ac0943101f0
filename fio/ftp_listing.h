// Listings of remote directories, which count when they are read to their end alone.
//
// The tool is built with this file, ftp_session.h and ftp_reply.h as well: they need nothing of the library
// but what it exports, and the translation of system errors.
#pragma once

#include "fio/ftp_session.h"

namespace qzr {

class ListingTask : public FtpTask {
public:
    explicit ListingTask(const wchar_t* url, DWORD patience = kListing) : FtpTask(url, patience) {}

protected:
    // Gives take() what a pattern finds. @return 0 when that was all, or nothing; ERROR_FILE_NOT_FOUND when
    // the server does not list it; another error when the listing breaks off or does not end
    DWORD list(HINTERNET connection, const wchar_t* pattern);

    // An entry as the server tells it: its name ends within its buffer, nothing else is sure.
    virtual void take(const WIN32_FIND_DATAW& entry) = 0;

private:
    DWORD read_entries(HINTERNET listing, WIN32_FIND_DATAW& entry);
};

} // namespace qzr
