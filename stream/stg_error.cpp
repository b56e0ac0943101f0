#include "stream/stg_error.h"

namespace qzr {

void check_storage(HRESULT result, QZFileOperation operation, const wchar_t* name) {
    if (FAILED(result)) throw CXFileException(storage_error_code(result), operation, name);
}

} // namespace qzr
