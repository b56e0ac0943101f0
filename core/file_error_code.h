// The one table from errors of the system to the codes of CXFileException.
#pragma once

#include "core/windows_lean.h"
#include "qzexception.h"

namespace qzr {

constexpr QZError file_error_code(DWORD system_error) noexcept {
    switch (system_error) {
    case ERROR_FILE_NOT_FOUND:
        return QZERR_NOT_FOUND;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_UNIT:
    case ERROR_DEV_NOT_EXIST:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_NO_NET_OR_BAD_PATH:
    case ERROR_INVALID_NETNAME:
        return QZERR_BAD_PATH;
    case ERROR_TOO_MANY_OPEN_FILES:
        return QZERR_TOO_MANY;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_NETWORK_ACCESS_DENIED:
        return QZERR_ACCESS;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
    case ERROR_OUT_OF_STRUCTURES:
    case ERROR_NOT_ENOUGH_SERVER_MEMORY:
        return QZERR_MEMORY;
    case ERROR_NOT_READY:
    case ERROR_CRC:
    case ERROR_SEEK:
    case ERROR_SECTOR_NOT_FOUND:
    case ERROR_READ_FAULT:
    case ERROR_SEEK_ON_DEVICE:
    case ERROR_DIRECTORY:
    case ERROR_FILE_INVALID:
    case ERROR_IO_DEVICE:
    case ERROR_DISK_RECALIBRATE_FAILED:
    case ERROR_DISK_OPERATION_FAILED:
    case ERROR_DISK_RESET_FAILED:
    case ERROR_FILE_CORRUPT:
    case ERROR_DISK_CORRUPT:
        return QZERR_DEVICE;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_DRIVE_LOCKED:
        return QZERR_SHARING;
    case ERROR_HANDLE_EOF:
        return QZERR_EOF;
    case ERROR_HANDLE_DISK_FULL:
    case ERROR_DISK_FULL:
        return QZERR_DISK_FULL;
    case ERROR_NOT_SUPPORTED:
    case ERROR_BAD_NETPATH:
    case ERROR_NETWORK_BUSY:
    case ERROR_BAD_NET_RESP:
    case ERROR_NETNAME_DELETED:
    case ERROR_SHARING_PAUSED:
    case ERROR_NET_WRITE_FAULT:
    case ERROR_CONNECTION_UNAVAIL:
    case ERROR_BAD_PROVIDER:
    case ERROR_BAD_PROFILE:
    case ERROR_NO_NETWORK:
    case ERROR_NO_BROWSER_SERVERS_FOUND:
        return QZERR_NETWORK;
    default:
        return QZERR_OTHER;
    }
}

} // namespace qzr
