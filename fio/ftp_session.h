// One conversation with an FTP server, on a thread of its own.
//
// The platform's client waits in places where no time limit reaches it. So each conversation is a task that a
// thread works on, and its caller gives it up when nothing has moved for a while: the task's resources are
// closed as far as the platform lets go of them, the caller goes on, and the thread ends whenever the server
// does. Until then it keeps the module that the task belongs to loaded.
#pragma once

#include "core/native_lock.h"
#include "core/win_handle.h"
#include "fio/url_split.h"

#include <atomic>
#include <memory>
#include <mutex>

#include <wininet.h>

namespace qzr {

struct InternetTraits {
    using Handle = HINTERNET;
    static constexpr Handle kInvalid = nullptr;
    static void close(Handle handle) noexcept { InternetCloseHandle(handle); }
};
using InternetHandle = WinHandle<InternetTraits>;

constexpr DWORD kSilence = 30000;  // for what moves byte by byte
constexpr DWORD kListing = 120000; // the platform reads listings as a whole, and slowly

// A fresh copy, as it is, and nothing of it into the cache.
constexpr DWORD kFreshListing = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE;
constexpr DWORD kFreshTransfer = kFreshListing | INTERNET_FLAG_RESYNCHRONIZE | FTP_TRANSFER_TYPE_BINARY;

// The error of a call of the client that has failed: never 0, even where the client forgets to say why.
DWORD client_error() noexcept;

// Derived classes hold what the conversation needs and what comes of it, all of it their own: the caller may
// be gone before the thread is.
class FtpTask {
public:
    // A URL that cannot be split, or that the client cannot send, makes a task that fails.
    // @param patience milliseconds without a move that are one too many
    explicit FtpTask(const wchar_t* url, DWORD patience = kSilence)
        : refusal_(take_apart(url, parts_)), patience_(patience) {}
    virtual ~FtpTask() = default;
    FtpTask(const FtpTask&) = delete;
    FtpTask& operator=(const FtpTask&) = delete;

    // The part of the URL behind the host.
    const wchar_t* path() const { return parts_.path; }

protected:
    // The conversation. @return 0, or the error of the system
    virtual DWORD talk(HINTERNET connection) = 0;

    // Closes what the caller wants to have back at once. Called by the caller, never while keep() runs.
    virtual void give_back() noexcept {}

    // Something came or went: the caller may wait on.
    void moved() noexcept { moves_.fetch_add(1, std::memory_order_relaxed); }

    // Runs an action that uses what give_back() closes. @return its result; false when the task was given up
    template <class Action>
    bool keep(Action action) {
        const std::lock_guard guard(lock_);
        return !given_up_ && action();
    }

private:
    friend DWORD run_ftp(const std::shared_ptr<FtpTask>& task);

    static DWORD take_apart(const wchar_t* url, UrlParts& parts);
    static DWORD WINAPI thread_main(void* task);
    DWORD connect_and_talk();
    void give_up() noexcept;

    UrlParts parts_;
    DWORD refusal_; // why there is nothing to begin; 0 when there is something
    DWORD patience_;
    DWORD result_ = ERROR_SUCCESS;
    std::atomic<unsigned> moves_{0};
    NativeLock lock_; // of the members below
    bool given_up_ = false;
    InternetHandle session_;
    HMODULE library_ = nullptr;     // held for the thread
    std::shared_ptr<FtpTask> self_; // keeps the task for its thread
};

// @return 0; or the error of the system, and then no result may be read from the task: its thread may be at
// work still
DWORD run_ftp(const std::shared_ptr<FtpTask>& task);

} // namespace qzr
