// Sending files.
//
// A file is sent beside its target under a name of its own, compared in size, and renamed over the target,
// which is whole until then. Servers that take no such name, or rename nothing, get it under the target's
// name.
#include "core/system_error.h"
#include "fio/ftp_reply.h"
#include "fio/ftp_session.h"
#include "fio/ftp_transfer.h"
#include "fio/make_ftp_task.h"

#include <objbase.h>

namespace qzr {

namespace {

constexpr DWORD kChunk = 32 * 1024;

// The names that a file has on the way to its own. Nobody else has them, on whatever machine.
struct NamesOnTheWay {
    CXStringW sent;
    CXStringW moved; // while its target is deleted
};

// None without a source of unique names.
NamesOnTheWay names_beside(const CXStringW& target) {
    GUID id;
    if (FAILED(CoCreateGuid(&id))) return {};
    CXStringW name;
    name.Format(L"%s/QZP%08X%04X%04X", target.FilePath().GetData(), static_cast<unsigned>(id.Data1),
                static_cast<unsigned>(id.Data2), static_cast<unsigned>(id.Data3));
    for (const unsigned char byte : id.Data4) {
        CXStringW digits;
        digits.Format(L"%02X", static_cast<unsigned>(byte));
        name = name + digits;
    }
    return {name + L".tmp", name + L"m.tmp"};
}

enum class Placing {
    kDone,
    kRefused,      // the file is where it was, beside its target
    kTargetIsGone, // and the file is the only one that the server has
    kUnknown,      // the conversation ended
};

// The steps of sending for which the local file is not needed.
class PlacingTask : public FtpTask {
public:
    PlacingTask(const wchar_t* url, NamesOnTheWay names) : FtpTask(url), names_(std::move(names)) {}

protected:
    const NamesOnTheWay& names() const { return names_; }

    // False once the caller has given up and gone on: nothing of what people have may be changed after that.
    bool still_wanted() {
        return keep([] { return true; });
    }

    // Of a file that is whole under its first name. Is a target in the way, or does the server rename nothing
    // at all? Nothing is deleted before that is known.
    Placing place(HINTERNET connection) {
        if (rename(connection, names_.sent, path())) return Placing::kDone;
        if (!still_answers(connection)) return Placing::kUnknown;
        if (!rename(connection, names_.sent, names_.moved)) return Placing::kRefused;
        if (still_wanted() && FtpDeleteFileW(connection, path()) != FALSE) {
            moved();
            return place_moved(connection);
        }
        return rename(connection, names_.moved, names_.sent) ? Placing::kRefused : Placing::kUnknown;
    }

    // Of a file whose target is deleted.
    Placing place_moved(HINTERNET connection) {
        if (rename(connection, names_.moved, path())) return Placing::kDone;
        return still_answers(connection) ? Placing::kTargetIsGone : Placing::kUnknown;
    }

    // Of what was sent, under its first name or the other. @return whether it is gone
    static bool remove(HINTERNET connection, const wchar_t* name) {
        return FtpDeleteFileW(connection, name) != FALSE;
    }

private:
    bool rename(HINTERNET connection, const wchar_t* from, const wchar_t* to) {
        moved();
        return still_wanted() && FtpRenameFileW(connection, from, to) != FALSE;
    }

    const NamesOnTheWay names_;
};

// How far a file came on its way.
enum class Way {
    kNotBegun, // or nothing of it is beside its target any more
    kPart,
    kAll,    // the server took every byte, and has not said whether it is content
    kPlacing // it is whole, and being renamed
};

class UploadTask final : public PlacingTask {
public:
    UploadTask(const wchar_t* url, NamesOnTheWay names, FileHandle file)
        : PlacingTask(url, std::move(names)), file_(std::move(file)) {}

    // These hold after a failure too, also of a conversation that was given up.
    Way way() const { return way_; }
    FileSize sent() const { return sent_; }

private:
    DWORD talk(HINTERNET connection) override {
        if (names().sent.GetSize() == 0) return send_to_target(connection);
        way_ = Way::kPart; // the server may begin the file and never say so
        InternetHandle remote = open(connection, names().sent);
        if (!remote) return name_refused(connection);
        if (const DWORD error = send(connection, std::move(remote), names().sent); error != ERROR_SUCCESS) {
            if (way_ == Way::kPart && remove(connection, names().sent)) way_ = Way::kNotBegun;
            return error;
        }
        way_ = Way::kPlacing;
        const Placing placing = place(connection);
        if (placing == Placing::kUnknown) return ERROR_INTERNET_CONNECTION_ABORTED;
        way_ = Way::kNotBegun;
        return placing == Placing::kDone ? DWORD{ERROR_SUCCESS} : send_instead(connection, placing);
    }

    static InternetHandle open(HINTERNET connection, const wchar_t* name) {
        return InternetHandle(FtpOpenFileW(connection, name, GENERIC_WRITE, kFreshTransfer, 0));
    }

    // Where it is the name that the server does not take, the file gets the target's. Where there is no room
    // for a second file, the first one is not touched.
    DWORD name_refused(HINTERNET connection) {
        const DWORD error = client_error();
        constexpr int kNoRoom = 552;
        const int code = Reply().code();
        if (is_failure(code)) way_ = Way::kNotBegun;
        return is_final_failure(code) && code != kNoRoom ? send_to_target(connection) : error;
    }

    // Of a file that cannot be renamed. The one beside stays when it may be the only whole one that the
    // server has in the end.
    DWORD send_instead(HINTERNET connection, Placing placing) {
        const DWORD error = send_to_target(connection);
        const bool moved_away = placing == Placing::kTargetIsGone;
        if (error == ERROR_SUCCESS || (!target_began_ && !moved_away))
            remove(connection, moved_away ? names().moved : names().sent);
        return error;
    }

    DWORD send_to_target(HINTERNET connection) {
        if (!still_wanted()) return ERROR_INTERNET_TIMEOUT;
        InternetHandle remote = open(connection, path());
        if (!remote) return client_error();
        target_began_ = true;
        return send(connection, std::move(remote), path());
    }

    DWORD send(HINTERNET connection, InternetHandle remote, const wchar_t* name) {
        moved();
        if (const DWORD error = send_bytes(remote.get()); error != ERROR_SUCCESS) return error;
        if (!target_began_) way_ = Way::kAll;
        remote.reset();
        if (Reply().is_failure()) return broken_off(ERROR_INTERNET_EXTENDED_ERROR);
        if (!still_answers(connection)) return ERROR_INTERNET_CONNECTION_ABORTED;
        moved();
        const std::optional<FileSize> arrived = remote_size(connection, name);
        if (arrived && *arrived != sent_) return broken_off(ERROR_INTERNET_CONNECTION_ABORTED);
        return ERROR_SUCCESS;
    }

    DWORD send_bytes(HINTERNET remote) {
        sent_ = 0;
        if (!keep([&] { return SetFilePointerEx(file_.get(), {}, nullptr, FILE_BEGIN) != FALSE; }))
            return client_error();
        char chunk[kChunk];
        for (;;) {
            DWORD size = 0;
            if (!keep([&] { return ReadFile(file_.get(), chunk, sizeof chunk, &size, nullptr) != FALSE; }))
                return client_error();
            if (size == 0) return ERROR_SUCCESS;
            for (DWORD done = 0; done < size;) {
                DWORD now = 0;
                if (InternetWriteFile(remote, chunk + done, size - done, &now) == FALSE)
                    return client_error();
                if (now == 0) return ERROR_INTERNET_CONNECTION_ABORTED;
                done += now;
                moved();
            }
            sent_ += size;
        }
    }

    // Of what the server has said that it is not whole.
    DWORD broken_off(DWORD error) {
        if (!target_began_) way_ = Way::kPart;
        return error;
    }

    void give_back() noexcept override { file_.reset(); }

    FileHandle file_;
    std::atomic<Way> way_{Way::kNotBegun};
    std::atomic<FileSize> sent_{0};
    bool target_began_ = false;
};

// Sees to what a conversation left that ended too early, in a new one.
class SettlingTask final : public PlacingTask {
public:
    SettlingTask(const wchar_t* url, NamesOnTheWay names, Way way, FileSize sent)
        : PlacingTask(url, std::move(names)), way_(way), sent_(sent) {}

private:
    // @return 0 when the file is in its place all the same
    DWORD talk(HINTERNET connection) override {
        const bool whole =
            way_ == Way::kPlacing || (way_ == Way::kAll && remote_size(connection, names().sent) == sent_);
        return whole && is_placed(connection) ? DWORD{ERROR_SUCCESS} : give_up(connection);
    }

    bool is_placed(HINTERNET connection) {
        const Placing placing = place(connection);
        if (placing != Placing::kRefused) return placing == Placing::kDone;
        if (way_ != Way::kPlacing) return false;
        // Perhaps it was renamed before the conversation ended, once or twice.
        return place_moved(connection) == Placing::kDone ||
               (!remote_size(connection, names().sent) && !remote_size(connection, names().moved) &&
                remote_size(connection, path()) == sent_);
    }

    DWORD give_up(HINTERNET connection) {
        remove(connection, names().sent);
        return ERROR_INTERNET_CONNECTION_ABORTED;
    }

    const Way way_;
    const FileSize sent_;
};

} // namespace

DWORD upload(const wchar_t* url, const wchar_t* local_path) {
    FileHandle file(CreateFileW(local_path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file) return last_error();
    UrlParts parts;
    if (!split_url(url, parts)) return ERROR_INTERNET_INVALID_URL;
    const NamesOnTheWay names = names_beside(parts.path);
    const auto task = make_ftp_task<UploadTask>(url, names, std::move(file));
    const DWORD error = run_ftp(task);
    const Way way = task->way();
    if (error == ERROR_SUCCESS || way == Way::kNotBegun) return error;
    const bool settled = run_ftp(make_ftp_task<SettlingTask>(url, names, way, task->sent())) == ERROR_SUCCESS;
    return settled ? DWORD{ERROR_SUCCESS} : error;
}

} // namespace qzr
