// The parts of a URL.
#pragma once

#include "qzstring.h"

namespace qzr {

// As wide text each; a part that the URL lacks is empty. Nothing is decoded.
struct UrlParts {
    CXStringW host;
    CXStringW user;
    CXStringW password;
    CXStringW path;
};

// @return false, and parts are left alone, for null, for what is no URL and for what the platform cannot
// split. A "\" behind the scheme counts as "/". Control characters make a URL one that cannot be split: they
// would end one command to the server and begin another.
bool split_url(const wchar_t* url, UrlParts& parts);

} // namespace qzr
