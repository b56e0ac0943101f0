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
    // A file as it is on the server.
    std::string fetched(const wchar_t* name) {
        EXPECT_NE(Fio_DownloadToFile(scripted(L"honest", name).c_str(), work.path(L"fetched").c_str()), 0);
        return work.contents(L"fetched");
    }
};

TEST_F(FtpMisbehaviour, Downloads) {
    const std::string whole = fetched(L"file.bin");
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

// The old file is whole as long as the new one is not, and nothing that was sent stays beside it.
TEST_F(FtpMisbehaviour, Uploads) {
    const std::string old(250000, 'o'), sent(300000, 'n');
    enum Kept { kOld, kNew, kAny };
    const struct {
        const wchar_t* words;
        Kept there;
        bool stalls = false;
        std::size_t beside = 0;
    } rows[] = {
        {L"honest", kNew},
        {L"nosize", kNew},
        {L"vague", kNew},
        {L"hidden", kNew},
        {L"fussy", kNew},
        {L"norename", kNew},
        {L"noover", kNew},
        {L"noover-keep", kNew, false, 1},
        {L"bound", kNew},
        {L"chatty", kNew},
        {L"lost", kNew},
        {L"silent", kNew, true},
        {L"lost-nosize", kOld},
        {L"short", kOld},
        {L"short-keep", kOld, false, 1},
        {L"broken", kOld},
        {L"hidden-broken", kOld},
        {L"cut", kOld},
        {L"stall", kOld, true},
        {L"full", kOld},
        {L"dumb", kOld, true},
        {L"tight", kOld},
        {L"nodata", kOld},
        {L"hangup", kOld},
        {L"fussy-broken", kAny}, // sent in place: damaged, and there
    };
    const std::wstring before = work.file(L"old.bin", old), local = work.file(L"new.bin", sent);
    const std::wstring target = scripted(L"honest", L"doc.bin");
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.words));
        ASSERT_NE(Fio_UrlPutFile(target.c_str(), before.c_str()), 0);
        const std::size_t names = fetched(L"names.txt").size();
        {
            const Patience patience(row.stalls);
            EXPECT_EQ(timed([&] {
                          return Fio_UrlPutFile(scripted(row.words, L"doc.bin").c_str(), local.c_str()) != 0;
                      }),
                      row.there == kNew);
        }
        const std::string there = fetched(L"doc.bin");
        EXPECT_TRUE(row.there == kAny || there == (row.there == kNew ? sent : old)) << there.size();
        EXPECT_EQ(fetched(L"names.txt").size() > names ? 1u : 0u, row.beside);
    }
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
        {L"nodata", QZERR_OTHER},
        {L"deaf", QZERR_OTHER},
        {L"list-broken", QZERR_OTHER},
        {L"list-cut", QZERR_OTHER},
        {L"list-stall", QZERR_OTHER, true},
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
        std::size_t left = 0;
    } rows[] = {{L"honest", 1},      {L"leaves", 1}, {L"knows", 0},  {L"full", 0},   {L"list-cut", 0},
                {L"list-broken", 0}, {L"hangup", 0}, {L"nodata", 0}, {L"keep", 1, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.words));
        const std::size_t names = fetched(L"names.txt").size();
        EXPECT_EQ(timed([&] { return Fio_IsWritableDir(scripted(row.words, L"").c_str()); }), row.writable);
        EXPECT_EQ(fetched(L"names.txt").size() > names ? 1u : 0u, row.left);
    }
}

} // namespace
