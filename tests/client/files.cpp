// Holders of files and locks.
#include "qzfileio.h"
#include "qzguard.h"

#include "expect.h"

#include <filesystem>
#include <thread>

namespace {

namespace fs = std::filesystem;

void replace_files(const fs::path& target) {
    qz::replace_file(target, "first");
    expect(qz::read_file(target) == "first", "a file is written and read as a whole");
    {
        qz::OutFile file(target);
        file.write("left");
    }
    expect(qz::read_file(target) == "first", "without commit nothing changes");
    try {
        qz::OutFile file(target);
        file.write("torn");
        throw 1;
    } catch (int) {
        expect(qz::read_file(target) == "first", "nor when an exception comes between");
    }
    qz::OutFile file(target, QZFILE_KEEP);
    file.write(" and second");
    file.commit();
    expect(!file && qz::read_file(target) == "first and second", "with commit all of it is there");
    qz::OutFile dropped(target);
    dropped.discard();
    expect(!dropped && qz::read_file(target) == "first and second", "or nothing of it");
    expect(std::distance(fs::directory_iterator(target.parent_path()), fs::directory_iterator()) == 1,
           "no temporary file stays");
}

void hold_files(const fs::path& path) {
    qz::File file(path, QZFILE_WRITE);
    file.write("bytes");
    qz::File other = std::move(file);
    expect(!file && other && other->GetSize() == 5, "a file has one holder");
    file = std::move(other);
    file.close();
    file.close();
    expect(!file && qz::read_file(path) == "bytes", "closed once, and again for nothing");
    qz::replace_file(path, "");
    expect(qz::read_file(path).empty(), "an empty file");
    unsigned code = 0;
    try {
        qz::read_file(path / L"none");
    } catch (const CXFileException& e) {
        code = e.GetCode();
    }
    expect(code == QZERR_BAD_PATH || code == QZERR_NOT_FOUND, "a missing one is told");
}

void lock_paths(const fs::path& path) {
    {
        const qz::PathLock lock(path, true);
        expect(lock && Fio_LockCount(path.c_str(), true) == 1, "a path is locked");
        const qz::PathLock missing(path / L"none", true);
        expect(!missing, "one that leads nowhere is not");
    }
    expect(Fio_LockCount(path.c_str(), true) == 0, "and let go");
}

int wait_all_elsewhere(int timeout) {
    int result = 0;
    std::thread([&] { result = qz::WaitAllGuard(timeout).result(); }).join();
    return result;
}

void lock_sections() {
    const auto section = CQZRef<ICritSect>::Adopt(CriticalSection_New());
    {
        const qz::CritSectGuard guard(*section);
        expect(wait_all_elsewhere(0) == QZWAIT_TIMEOUT, "the others wait");
    }
    expect(wait_all_elsewhere(20000) == QZWAIT_SIGNALLED, "until the end of the block");
    {
        const qz::WaitAllGuard all(20000);
        expect(all && wait_all_elsewhere(0) == QZWAIT_TIMEOUT, "the wait holds too");
    }
    expect(wait_all_elsewhere(20000) == QZWAIT_SIGNALLED, "and lets go");
}

} // namespace

void use_files() {
    const fs::path folder = fs::temp_directory_path() / ("qzr_client" + std::to_string(__cplusplus));
    fs::remove_all(folder);
    fs::create_directory(folder);
    replace_files(folder / L"target");
    hold_files(folder / L"held");
    lock_paths(folder / L"held");
    lock_sections();
    fs::remove_all(folder);
}
