// Remote files are refused as long as the library has no transfer for them.
#include "fio/url_file.h"

#include "core/system_error.h"

namespace qzr {

IXFile* open_url_file(const wchar_t* url, int) { throw_file_error(QZOP_OPEN, url, ERROR_NOT_SUPPORTED); }

IXOutFile* open_url_out_file(const wchar_t* url, int) {
    throw_file_error(QZOP_OPEN, url, ERROR_NOT_SUPPORTED);
}

} // namespace qzr
