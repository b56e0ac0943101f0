// Servers that do not do what they should. Each attempt ends in the answer that its caller expects, in
// bounded time, with nothing left behind.
#include "ftp_fixture.h"
#include "qzref.h"
#include "support/import_mock.h"

#include <optional>

namespace {

// Makes the library's patience 50 times shorter.
class Patience {
public:
    explicit Patience(bool shorter) {
        if (!shorter) return;
        mock_.emplace("qzrcore.dll", "WaitForSingleObject", reinterpret_cast<void*>(&wait));
        original = mock_->original<decltype(WaitForSingleObject)>();
    }

private:
    static inline decltype(WaitForSingleObject)* original = nullptr;
    static DWORD WINAPI wait(HANDLE handle, DWORD timeout) { return original(handle, timeout / 50); }

    std::optional<ImportMock> mock_;
};

class FtpMisbehaviour : public FtpTest {
protected:
    static constexpr ULONGLONG kBound = 60000; // milliseconds, of which the platform may use many

    // Runs an attempt with the clock in sight.
    template <class Attempt>
    auto timed(Attempt attempt) {
        const ULONGLONG begin = GetTickCount64();
        const auto answer = attempt();
        EXPECT_LT(GetTickCount64() - begin, kBound);
        return answer;
    }
    std::string honest_copy() {
        EXPECT_NE(Fio_DownloadToFile(scripted(L"honest", L"file.bin").c_str(), work.path(L"honest").c_str()),
                  0);
        return work.contents(L"honest");
    }
};

TEST_F(FtpMisbehaviour, Downloads) {
    const std::string whole = honest_copy();
    ASSERT_EQ(whole.size(), 100000u);
    const struct {
        const wchar_t* words;
        bool arrives;
        bool stalls = false;
    } rows[] = {
        {L"honest", true},       {L"nosize", true},         {L"wide", true},
        {L"short", false}, // the size told before gives it away
        {L"broken", false},      {L"broken-nosize", false}, {L"broken-wordy-nosize", false},
        {L"nodata", false},      {L"deaf", false},          {L"hangup", false},
        {L"stall", false, true}, {L"mute", false, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.words));
        const Patience patience(row.stalls);
        const std::wstring address = scripted(row.words, L"file.bin");
        const std::wstring local = work.file(L"in.bin", "before");
        EXPECT_EQ(timed([&] { return Fio_DownloadToFile(address.c_str(), local.c_str()) != 0; }),
                  row.arrives);
        EXPECT_TRUE(work.contents(L"in.bin") == (row.arrives ? whole : "before"));
        EXPECT_EQ(work.count(), 2u);
        if (row.arrives) continue;
        EXPECT_EQ(timed([&] { return failure_of([&] { Fio_Open(address.c_str(), 0); }); }),
                  failure(QZERR_OTHER, QZOP_OPEN, address));
        EXPECT_EQ(temp.count(), 0u);
        EXPECT_EQ(Fio_DownloadToCacheFile(address.c_str()), nullptr);
    }
}

// What breaks off leaves no part of the file on the server.
TEST_F(FtpMisbehaviour, Uploads) {
    const std::wstring local = work.file(L"a.bin", std::string(3 << 20, 'a'));
    const struct {
        const wchar_t* words;
        bool arrives;
        bool stalls = false;
    } rows[] = {
        {L"honest", true},  {L"nosize", true},         {L"short", false},       {L"short-keep", false},
        {L"broken", false}, {L"broken-nosize", false}, {L"full", false},        {L"nodata", false},
        {L"deaf", false},   {L"hangup", false},        {L"stall", false, true}, {L"vague", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.words));
        const Patience patience(row.stalls);
        const std::wstring name = std::wstring(row.words) + L".bin";
        EXPECT_EQ(
            timed([&] { return Fio_UrlPutFile(scripted(row.words, name).c_str(), local.c_str()) != 0; }),
            row.arrives);
        const bool there = row.arrives || std::wstring(row.words).find(L"keep") != std::wstring::npos;
        EXPECT_EQ(Fio_IsFileExist(scripted(L"honest", name).c_str()), there ? 1 : 0);
    }
}

// The object cannot tell: what was written is lost, and nothing is left on either side.
TEST_F(FtpMisbehaviour, CommitIsSilentWhenSendingFails) {
    auto file = CQZRef<IXOutFile>::Adopt(Fio_OpenOut(scripted(L"broken", L"lost.bin").c_str(), QZFILE_WRITE));
    file->Write("text", 4);
    EXPECT_EQ(failure_of([&] { file->Commit(); }), "");
    EXPECT_EQ(temp.count(), 0u);
    EXPECT_EQ(Fio_IsFileExist(scripted(L"honest", L"lost.bin").c_str()), 0);
}

TEST_F(FtpMisbehaviour, Listings) {
    const struct {
        const wchar_t* words;
        unsigned code; // 0: the file is found
        bool stalls = false;
    } rows[] = {
        {L"honest", 0},
        {L"dos", 0},
        {L"wide", 0},
        {L"garbage", QZERR_NOT_FOUND},
        {L"nodata", QZERR_NOT_FOUND}, // a server that does not list has nothing to show
        {L"deaf", QZERR_NOT_FOUND},
        {L"mute", QZERR_OTHER, true},
        {L"endless", QZERR_OTHER, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.words));
        const Patience patience(row.stalls);
        const std::wstring address = scripted(row.words, L"file.bin");
        FioFileInfo info = {};
        EXPECT_EQ(timed([&] { return failure_of([&] { Fio_GetFileInfo(address.c_str(), &info); }); }),
                  row.code != 0 ? failure(row.code, QZOP_FILE_INFO, address) : "");
        if (row.code != 0) continue;
        EXPECT_EQ(info.size, 100000u);
        EXPECT_EQ(info.year * 10000 + info.month * 100 + info.day, 20240229u);
    }
}

// A server that knows each name that is asked for is not asked for ever, also when the clock stands still.
TEST_F(FtpMisbehaviour, ProbingEnds) {
    const ImportMock clock("qzrcore.dll", "GetTickCount",
                           reinterpret_cast<void*>(+[]() -> DWORD { return 5; }));
    const struct {
        const wchar_t* words;
        int writable;
    } rows[] = {{L"honest", 1}, {L"keep", 1}, {L"knows", 0}, {L"full", 0}, {L"hangup", 0}, {L"nodata", 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.words));
        EXPECT_EQ(timed([&] { return Fio_IsWritableDir(scripted(row.words, L"").c_str()); }), row.writable);
    }
}

} // namespace
