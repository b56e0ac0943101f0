// qzrtool file info, probe, lock-test.
#include "cli/json.h"
#include "commands/commands.h"
#include "qzfile.h"
#include "system/child_process.h"
#include "system/encoding.h"
#include "system/files.h"
#include "system/remote.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <share.h>

namespace tool {

namespace {

namespace fs = std::filesystem;

struct NamedFile {
    explicit NamedFile(const std::wstring& argument)
        : remote(is_remote(argument)),
          path(remote ? fs::path(argument) : fs::absolute(native_path(argument))),
          shown(without_passwords(printable(utf8(argument)))) {}

    void require() const {
        std::error_code ignored;
        if (remote) fail(shown + ": only local files can be locked and opened in place");
        if (!fs::exists(path, ignored)) fail(shown + ": there is no such file");
    }

    bool remote;
    fs::path path; // of a file on a server its address
    std::string shown;
};

const char* yes_or_no(bool yes) { return yes ? "yes" : "no"; }

// --- info ------------------------------------------------------------------------------------------------

struct Facts {
    bool is_directory;
    unsigned long long size;
    std::string written; // in UTC
    std::string owner;   // empty when it is not known
    bool writable;
};

std::string time_text(const FioFileInfo& info) {
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u", info.year, info.month, info.day,
                  info.hour, info.minute, info.second);
    return text;
}

Facts facts_of(const NamedFile& file) {
    Facts facts = {};
    FioFileInfo info = {};
    Fio_GetFileInfo(file.path.c_str(), &info);
    facts.written = time_text(info);
    std::error_code error;
    facts.is_directory = !file.remote && fs::is_directory(file.path, error);
    facts.size = info.size;
    // The library's own size has 32 bits.
    if (!file.remote && !facts.is_directory) {
        const auto size = fs::file_size(file.path, error);
        if (!error) facts.size = size;
    }
    CXStringW owner;
    if (Fio_GetSecurityInfo(file.path.c_str(), owner) != 0)
        facts.owner = utf8(std::wstring_view(owner.GetData()));
    facts.writable = facts.is_directory ? Fio_IsWritableDir(file.path.c_str()) != 0
                                        : Fio_IsWritableFile(file.path.c_str()) != 0;
    return facts;
}

void write_json(Output& out, const Facts& facts) {
    JsonWriter json(out);
    json.begin_object();
    json.key("kind");
    json.text(facts.is_directory ? "folder" : "file");
    json.key("size");
    json.raw(std::to_string(facts.size));
    json.key("written");
    json.text(facts.written);
    json.key("owner");
    facts.owner.empty() ? json.raw("null") : json.text(facts.owner);
    json.key("writable");
    json.raw(facts.writable ? "true" : "false");
    json.end_object();
    json.finish();
}

// --- probe -----------------------------------------------------------------------------------------------

bool opens(const fs::path& path, int access, int sharing) {
    int number = -1;
    _wsopen_s(&number, path.c_str(), access | _O_BINARY, sharing, 0);
    if (number >= 0) _close(number);
    return number >= 0;
}

/// Reading goes along with others' writing.
std::string probe(const fs::path& path) {
    return std::string("reading ") + yes_or_no(opens(path, _O_RDONLY, _SH_DENYNO)) + ", writing " +
           yes_or_no(opens(path, _O_RDWR, _SH_DENYNO));
}

// --- lock-test -------------------------------------------------------------------------------------------

struct LockStep {
    const char* text;
    int shared, exclusive; // locks that are taken (1) or given back (-1) before the test
};

constexpr LockStep kSteps[] = {
    {"no lock", 0, 0},
    {"one shared lock", 1, 0},
    {"two shared locks", 1, 0},
    {"one shared lock given back", -1, 0},
    {"an exclusive lock besides", 0, 1},
    {"the exclusive lock alone", -1, 0},
    {"all locks given back", 0, -1},
};

/// Takes and gives back locks, and gives all back in the end.
class Locks {
public:
    explicit Locks(const wchar_t* path) : path_(path) {}
    ~Locks() {
        change(false, -count(false));
        change(true, -count(true));
    }
    Locks(const Locks&) = delete;
    Locks& operator=(const Locks&) = delete;

    void change(bool exclusive, int by) {
        for (; by > 0; --by) {
            Fio_LockFile(path_, exclusive);
        }
        for (; by < 0; ++by) {
            Fio_UnlockFile(path_, exclusive);
        }
    }
    int count(bool exclusive) const { return Fio_LockCount(path_, exclusive); }

private:
    const wchar_t* path_;
};

std::string without_line_end(std::string text) {
    while (text.ends_with('\n') || text.ends_with('\r')) {
        text.pop_back();
    }
    return text;
}

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

} // namespace

ExitCode run_file_info(Invocation& invocation) {
    const NamedFile file(invocation.arguments[0]);
    if (!file.remote) file.require();
    const Facts facts = facts_of(file);
    if (invocation.options.json) {
        write_json(invocation.out, facts);
        return kOk;
    }
    const auto line = [&](const char* name, const std::string& value) {
        invocation.out.write(padded(name, 10) + value + "\n");
    };
    line("kind", facts.is_directory ? "folder" : "file");
    if (!facts.is_directory) line("size", std::to_string(facts.size));
    line("written", facts.written + " UTC");
    line("owner", facts.owner.empty() ? "not known" : facts.owner);
    line("writable", yes_or_no(facts.writable));
    return kOk;
}

ExitCode run_file_probe(Invocation& invocation) {
    const NamedFile file(invocation.arguments[0]);
    file.require();
    invocation.out.write(probe(file.path) + "\n");
    return kOk;
}

ExitCode run_file_lock_test(Invocation& invocation) {
    const NamedFile file(invocation.arguments[0]);
    file.require();
    Locks locks(file.path.c_str());
    invocation.out.write(padded("", 28) + "shared  exclusive  library writes  another process\n");
    bool taken = true;
    int shared = 0, exclusive = 0;
    for (const LockStep& step : kSteps) {
        locks.change(false, step.shared);
        locks.change(true, step.exclusive);
        shared += step.shared;
        exclusive += step.exclusive;
        taken = taken && locks.count(false) == shared && locks.count(true) == exclusive;
        const bool writable = Fio_IsWritableFile(file.path.c_str()) != 0;
        invocation.out.write(padded(step.text, 28) + padded(std::to_string(locks.count(false)), 8) +
                             padded(std::to_string(locks.count(true)), 11) + padded(yes_or_no(writable), 16) +
                             without_line_end(output_of_child({L"file", L"probe", file.path.wstring()})) +
                             "\n");
    }
    if (taken) return kOk;
    print_error(file.shown + ": not every lock could be taken; somebody else has the file open");
    return kNo;
}

} // namespace tool
