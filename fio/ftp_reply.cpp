#include "fio/ftp_reply.h"

#include "core/system_error.h"

#include <cwchar>

namespace qzr {

namespace {

// A command that needs no data connection.
bool command(HINTERNET connection, const wchar_t* text) {
    constexpr BOOL kNoData = FALSE;
    return FtpCommandW(connection, kNoData, FTP_TRANSFER_TYPE_BINARY, text, 0, nullptr) != FALSE;
}

bool is_digit(wchar_t c) { return c >= L'0' && c <= L'9'; }

} // namespace

Reply::Reply() {
    constexpr DWORD kUsual = 256;
    constexpr DWORD kLongest = 64 * 1024;
    for (DWORD units = kUsual; !read(units) && units < kLongest;)
        units *= 2;
}

const wchar_t* Reply::last_line() const {
    const wchar_t* line = text_;
    for (const wchar_t* p = text_; *p != L'\0'; ++p)
        if (*p == L'\n' && p[1] != L'\0') line = p + 1;
    return line;
}

int Reply::code() const {
    const wchar_t* const line = last_line();
    if (!is_digit(line[0]) || !is_digit(line[1]) || !is_digit(line[2])) return 0;
    return (line[0] - L'0') * 100 + (line[1] - L'0') * 10 + (line[2] - L'0');
}

// False when it does not fit into so many units.
bool Reply::read(DWORD units) {
    wchar_t* const buffer = text_.GetBuffer(static_cast<int>(units));
    DWORD error = 0;
    const bool known = InternetGetLastResponseInfoW(&error, buffer, &units) != FALSE;
    const bool too_long = !known && last_error() == ERROR_INSUFFICIENT_BUFFER;
    buffer[known ? units : 0] = L'\0';
    text_.ReleaseBuffer();
    return !too_long;
}

// Every server knows the command: each transfer begins with it.
bool still_answers(HINTERNET connection) {
    constexpr int kDone = 200;
    return command(connection, L"TYPE I") && Reply().code() == kDone;
}

DWORD transfer_end(HINTERNET connection) {
    if (Reply().is_failure()) return ERROR_INTERNET_EXTENDED_ERROR;
    return command(connection, L"TYPE I") ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_INTERNET_CONNECTION_ABORTED};
}

std::optional<FileSize> remote_size(HINTERNET connection, const wchar_t* path) {
    if (!command(connection, L"TYPE I") || !command(connection, CXStringW(L"SIZE ") + path)) return {};
    const Reply reply;
    constexpr int kSizeReply = 213;
    constexpr std::size_t kPrefix = 4;
    const wchar_t* const line = reply.last_line();
    if (reply.code() != kSizeReply || !is_digit(line[kPrefix])) return {};
    return std::wcstoull(line + kPrefix, nullptr, 10);
}

} // namespace qzr
