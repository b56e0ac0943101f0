// Whole files to and from FTP servers.
#pragma once

#include "core/windows_lean.h"

namespace qzr {

// Each returns 0, or the error of the system.

// Replaces the local file when everything has arrived; on failure it is as it was.
DWORD download(const wchar_t* url, const wchar_t* local_path);

// Replaces the remote file when everything has arrived, where the server can rename; see ftp_upload.cpp.
// Nothing that others put there is deleted because a transfer failed.
DWORD upload(const wchar_t* url, const wchar_t* local_path);

// Deletes a remote file without looking whether it is there.
DWORD delete_remote(const wchar_t* url);

} // namespace qzr
