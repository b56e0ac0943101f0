#include "fio/ftp_session.h"

#include "core/system_error.h"
#include "qzexception.h"
#include "qzurl.h"

#include <new>
#include <utility>

namespace qzr {

namespace {

// The platform's own limits, where it has any.
void limit_waiting(HINTERNET session) {
    DWORD limit = kSilence;
    for (const DWORD option :
         {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT,
          INTERNET_OPTION_DATA_SEND_TIMEOUT, INTERNET_OPTION_DATA_RECEIVE_TIMEOUT})
        InternetSetOptionW(session, option, &limit, sizeof limit);
}

// The client speaks in the system's ANSI code page and puts "?" or a similar letter in the place of others:
// two files would have one name on the server.
bool can_be_sent(const wchar_t* text) {
    if (GetACP() == CP_UTF8) return true;
    constexpr int kWithItsZero = -1;
    BOOL replaced = FALSE;
    const int bytes =
        WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text, kWithItsZero, nullptr, 0, nullptr, &replaced);
    return bytes != 0 && replaced == FALSE;
}

// Null asks the platform for an anonymous log-in.
const wchar_t* text_or_null(const CXStringW& text) { return text.GetSize() != 0 ? text.GetData() : nullptr; }

// The library stays loaded as long as a thread of it runs, whoever frees it meanwhile.
HMODULE hold_library(const void* code) {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, static_cast<const wchar_t*>(code), &module);
    return module;
}

} // namespace

DWORD client_error() noexcept {
    const DWORD error = last_error();
    return error != ERROR_SUCCESS ? error : DWORD{ERROR_INTERNET_INTERNAL_ERROR};
}

DWORD FtpTask::take_apart(const wchar_t* url, UrlParts& parts) {
    if (Fio_UrlCrack(url, parts.host, parts.user, parts.password, parts.path) == 0 ||
        parts.host.GetSize() == 0)
        return ERROR_INTERNET_INVALID_URL;
    return can_be_sent(url) ? ERROR_SUCCESS : ERROR_NO_UNICODE_TRANSLATION;
}

DWORD FtpTask::connect_and_talk() {
    HINTERNET session = nullptr;
    const bool opened = keep([&] {
        session_ = InternetHandle(InternetOpenW(nullptr, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
        session = session_.get();
        return session != nullptr;
    });
    if (!opened) return client_error();
    limit_waiting(session);
    const InternetHandle connection(InternetConnectW(session, parts_.host, INTERNET_DEFAULT_FTP_PORT,
                                                     text_or_null(parts_.user), text_or_null(parts_.password),
                                                     INTERNET_SERVICE_FTP, INTERNET_FLAG_PASSIVE, 0));
    if (!connection) return client_error();
    moved();
    return talk(connection.get());
}

DWORD WINAPI FtpTask::thread_main(void* task) {
    const HMODULE library = static_cast<FtpTask*>(task)->library_;
    {
        const std::shared_ptr<FtpTask> self = std::move(static_cast<FtpTask*>(task)->self_);
        try {
            self->result_ = self->connect_and_talk();
        } catch (const CXException&) {
            self->result_ = ERROR_NOT_ENOUGH_MEMORY;
        } catch (const std::bad_alloc&) {
            self->result_ = ERROR_NOT_ENOUGH_MEMORY;
        }
        self->keep([&] {
            self->session_.reset();
            return true;
        });
    }
    FreeLibraryAndExitThread(library, 0);
}

// The session's end ends, where the platform can, the call that the thread waits in.
void FtpTask::give_up() noexcept {
    const std::lock_guard guard(lock_);
    given_up_ = true;
    give_back();
    session_.reset();
}

DWORD run_ftp(const std::shared_ptr<FtpTask>& task) {
    if (task->refusal_ != ERROR_SUCCESS) return task->refusal_;
    task->self_ = task;
    task->library_ = hold_library(reinterpret_cast<const void*>(&FtpTask::thread_main));
    const KernelHandle thread(CreateThread(nullptr, 0, &FtpTask::thread_main, task.get(), 0, nullptr));
    if (!thread) {
        const DWORD error = client_error();
        FreeLibrary(task->library_);
        task->self_.reset();
        return error;
    }
    for (unsigned seen = 0;;) {
        if (WaitForSingleObject(thread.get(), task->patience_) == WAIT_OBJECT_0) return task->result_;
        const unsigned moves = task->moves_.load(std::memory_order_relaxed);
        if (moves == std::exchange(seen, moves)) break;
    }
    task->give_up();
    return ERROR_INTERNET_TIMEOUT;
}

} // namespace qzr
