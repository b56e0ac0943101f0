// The one table from results of the platform's storages to the codes of exceptions.
#pragma once

#include "qzexception.h"
#include "stream/platform_storage.h"

namespace qzr {

constexpr QZError storage_error_code(HRESULT result) noexcept {
    switch (result) {
    case STG_E_FILENOTFOUND:
    case STG_E_PATHNOTFOUND:
        return QZERR_NOT_FOUND;
    case STG_E_TOOMANYOPENFILES:
        return QZERR_TOO_MANY;
    case STG_E_ACCESSDENIED:
    case STG_E_SHAREVIOLATION:
    case STG_E_LOCKVIOLATION:
    case STG_E_INUSE:
    case STG_E_SHAREREQUIRED:
        return QZERR_SHARING;
    case STG_E_INSUFFICIENTMEMORY:
        return QZERR_MEMORY;
    case STG_E_NOMOREFILES:
    case STG_E_MEDIUMFULL:
        return QZERR_DISK_FULL;
    case STG_E_DISKISWRITEPROTECTED:
        return QZERR_ACCESS;
    case STG_E_SEEKERROR:
    case STG_E_WRITEFAULT:
    case STG_E_READFAULT:
    case STG_E_CANTSAVE:
        return QZERR_DEVICE;
    case STG_E_PROPSETMISMATCHED:
    case STG_E_ABNORMALAPIEXIT:
    case STG_E_UNKNOWN:
    case STG_E_UNIMPLEMENTEDFUNCTION:
    case STG_E_OLDFORMAT:
    case STG_E_OLDDLL:
    case STG_E_EXTANTMARSHALLINGS:
        return QZERR_OTHER;
    case STG_E_INVALIDNAME:
        return QZERR_BAD_PATH;
    case STG_E_INCOMPLETE:
    case STG_E_TERMINATED:
        return QZERR_NETWORK;
    default: // a damaged file (STG_E_INVALIDHEADER), a reverted element (STG_E_REVERTED) and all others
        return QZERR_FORMAT;
    }
}

// Throws CXFileException when a result is a failure. The name may be null.
void check_storage(HRESULT result, QZFileOperation operation, const wchar_t* name);

} // namespace qzr
