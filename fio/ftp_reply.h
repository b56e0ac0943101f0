// What a server says beside its data.
#pragma once

#include "core/windows_lean.h"
#include "qzstring.h"

#include <optional>

#include <wininet.h>

namespace qzr {

using FileSize = unsigned long long;

// Failures of a command: those that may pass, and the others.
constexpr bool is_failure(int code) { return code >= 400; }
constexpr bool is_final_failure(int code) { return code >= 500; }

// What the server said last on this thread: a code and text, possibly of several lines, of which the last one
// counts.
class Reply {
public:
    Reply();

    const wchar_t* last_line() const;

    int code() const; // 0 when there is none
    bool is_failure() const { return qzr::is_failure(code()); }

private:
    bool read(DWORD units);

    CXStringW text_;
};

// Whether the server still answers, and answers what it was asked. Its last word may be missing when a
// transfer breaks off, and the client does not tell that from a good end. A word that comes too late, or
// twice, is taken for the answer to the next command, and so on to the end: nothing that is said then can be
// relied on.
bool still_answers(HINTERNET connection);

// How a transfer ended whose handle is closed. The client does not tell whether the server was content in the
// end; its last reply does, also when it comes late. @return 0, or an error
DWORD transfer_end(HINTERNET connection);

// The size that the server says a file has; none when it tells no number.
std::optional<FileSize> remote_size(HINTERNET connection, const wchar_t* path);

} // namespace qzr
