// Where the paths of remote files go.
#pragma once

#include "qzfile.h"

namespace qzr {

// Fio_Open and Fio_OpenOut for a URL. Throw CXFileException.
IXFile* open_url_file(const wchar_t* url, int mode);
IXOutFile* open_url_out_file(const wchar_t* url, int mode);

} // namespace qzr
