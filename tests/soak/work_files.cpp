// Files: in place, replaced safely, in memory; and the registry of locked paths.
#include "qzexception.h"
#include "qzfile.h"
#include "qzref.h"
#include "soak/refusal.h"
#include "soak/work.h"
#include "support/low_memory.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <filesystem>

namespace {

using File = CQZRef<IXFile>;
using OutFile = CQZRef<IXOutFile>;

std::string random_bytes(Random& random, std::size_t most) {
    std::string bytes(random.below(most + 1), '\0');
    for (char& c : bytes)
        c = random.one_in(30) ? '\n' : static_cast<char>('a' + random.below(26));
    return bytes;
}

void store(const std::wstring& path, const std::string& bytes) {
    std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
}

void read_in_pieces(Work& work, const std::wstring& path, const std::string& expected) {
    const auto file = File::Adopt(Fio_Open(path.c_str(), QZFILE_READ));
    work.require(file->GetSize() == expected.size(), "a file has another size");
    std::string found(expected.size() + 1, '\0');
    unsigned at = 0;
    while (at < expected.size()) {
        const unsigned piece = 1 + static_cast<unsigned>(work.random.below(9000));
        const unsigned read =
            file->Read(&found[at], std::min(piece, static_cast<unsigned>(found.size()) - at));
        work.require(read != 0, "a file ends early");
        at += read;
    }
    found.pop_back();
    work.require(found == expected, "a file has other bytes");
}

void read_lines(Work& work, IXFile& file, const std::string& expected) {
    constexpr int kMost = 100;
    std::string all;
    char line[kMost + 2];
    for (unsigned before = 0; file.GetPosition() < expected.size();) {
        const auto n = static_cast<unsigned>(file.ReadLine(line, kMost));
        const unsigned moved = file.GetPosition() - before;
        before = file.GetPosition();
        all.append(line, n);
        if (moved == n + 1) all += '\n';
        work.require(moved == n || moved == n + 1, "a line moved elsewhere");
    }
    work.require(all == expected, "other lines");
}

void read_memory(Work& work, const std::string& bytes) {
    const LowMemory block(bytes);
    work.require(block.data() != nullptr, "no memory below 2 GiB");
    read_in_pieces(work, block.path(), bytes);
    read_lines(work, *File::Adopt(Fio_Open(block.path().c_str(), 0)), bytes);
}

} // namespace

void work_files(Work& work) {
    const std::wstring path = work.path(L"file.bin");
    std::string model;
    for (std::size_t rounds = 1 + work.random.below(4); rounds != 0; --rounds) {
        const bool keep = work.random.one_in(2) && Fio_IsFileExist(path.c_str()) != 0;
        if (!keep) model.clear();
        auto file = File::Adopt(Fio_Open(path.c_str(), QZFILE_WRITE | (keep ? QZFILE_KEEP : 0)));
        for (std::size_t writes = work.random.below(12); writes != 0; --writes) {
            const std::string piece = random_bytes(work.random, work.random.one_in(10) ? 200000 : 300);
            const std::size_t at = work.random.below(model.size() + 100); // perhaps behind the end
            file->Seek(static_cast<unsigned>(at), 0);
            file->Write(piece.data(), static_cast<unsigned>(piece.size()));
            if (piece.empty()) continue;
            model.resize(std::max(model.size(), at + piece.size()));
            model.replace(at, piece.size(), piece);
        }
        file->Flush();
        file.Detach()->Release();
        read_in_pieces(work, path, model);
    }
    read_memory(work, random_bytes(work.random, 5000));
    const std::wstring other = work.path(L"copy.bin"), third = work.path(L"moved.bin");
    Fio_CopyFile(path.c_str(), other.c_str(), 1);
    Fio_RenameFile(other.c_str(), third.c_str());
    work.require(Fio_IsFileExist(other.c_str()) == 0, "a renamed file is still there");
    read_in_pieces(work, third, model);
    Fio_DeleteFile(third.c_str());
    Fio_DeleteFile(path.c_str());
    const std::wstring directory = work.path(L"a\\b\\c");
    Fio_CreateDirectory(directory.c_str());
    for (const wchar_t* name : {L"a\\b\\c", L"a\\b", L"a"})
        Fio_DeleteDirectory(work.path(name).c_str());
}

// Whatever fails on the way, the target is the old file or the new one, whole.
void work_output(Work& work) {
    const std::wstring path = work.path(L"target.txt");
    std::string model = random_bytes(work.random, 3000);
    store(path, model);
    for (int rounds = 0; rounds < 4; ++rounds) {
        const bool keep = work.random.one_in(3), commit = !work.random.one_in(3);
        const std::string bytes = random_bytes(work.random, work.random.one_in(8) ? 300000 : 2000);
        const std::string written = (keep ? model : "") + bytes;
        bool committed = false;
        try {
            const Refusing refusing(work.refusal_random, work.refusals);
            const auto file = OutFile::Adopt(Fio_OpenOut(path.c_str(), keep ? QZFILE_KEEP : 0));
            if (file) {
                std::size_t half = bytes.size() / 2;
                file->Write(bytes.data(), static_cast<unsigned>(half));
                file->Write(bytes.data() + half, static_cast<unsigned>(bytes.size() - half));
                if (commit) file->Commit();
                committed = commit;
            }
        } catch (const CXMemException&) {
        }
        work.require(Fio_LockCount(path.c_str(), false) == 0, "a lock was left");
        const std::string found = ScratchFolder::contents_of(path);
        if (committed || found != model) model = written;
        work.require(found == model, "the target is neither the old nor the new file");
        const auto files = std::filesystem::directory_iterator(work.folder);
        work.require(std::distance(begin(files), end(files)) == 1, "a temporary file was left");
    }
    Fio_DeleteFile(path.c_str());
}

// Paths are locked by one thread at a time; files are opened meanwhile.
void work_locks(Work& work) {
    const std::wstring path = work.path(L"locked.txt");
    store(path, "x");
    int shared = 0, exclusive = 0;
    for (std::size_t steps = 20; steps != 0; --steps) {
        const std::lock_guard guard(work.shared.one_thread);
        switch (work.random.below(5)) {
        case 0:
        case 1:
            Fio_LockFile(path.c_str(), false);
            shared = std::max(shared + 1, Fio_LockCount(path.c_str(), false));
            break;
        case 2:
            Fio_UnlockFile(path.c_str(), false);
            shared = std::max(shared - 1, 0);
            break;
        case 3:
            if (shared + exclusive != 0) break; // of a path that is open already it might be refused
            Fio_LockFile(path.c_str(), true);
            exclusive = 1;
            break;
        default:
            Fio_UnlockFile(path.c_str(), true);
            exclusive = 0;
        }
        work.require(Fio_LockCount(path.c_str(), false) == shared, "another number of shared locks");
        work.require(Fio_LockCount(path.c_str(), true) == exclusive, "another number of exclusive locks");
        bool refused = false;
        try {
            File::Adopt(Fio_Open(path.c_str(), 0));
        } catch (const CXFileException&) {
            refused = true;
        }
        work.require(refused == (exclusive != 0), "an exclusive lock alone refuses the file");
    }
    const std::lock_guard guard(work.shared.one_thread);
    while (Fio_LockCount(path.c_str(), false) != 0)
        Fio_UnlockFile(path.c_str(), false);
    Fio_UnlockFile(path.c_str(), true);
    Fio_DeleteFile(path.c_str());
}
