// Files: read through views, replaced safely, locked.
#include "guide.h"

#include "qzcore.h"

#include <cstdio>
#include <filesystem>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;

void save(const fs::path& path, bool fails) {
    qz::OutFile file(path); // a temporary file beside it
    file.write("new contents");
    if (fails) throw std::runtime_error("the power of an exception");
    file.commit(); // now, and as a whole, it takes the place of the old one
}

void read(const fs::path& path) {
    qz::File file(path);
    std::printf("%u bytes, the first is '%c'\n", file->GetSize(), file->ReadByte());
    try {
        file->Write("x", 1);
    } catch (const CXFileException& e) { // with the name, the code and the operation
        std::printf("%s: error %u, operation %u\n", fs::path(e.m_pszFileName).filename().string().c_str(),
                    e.GetCode(), e.m_nOperation);
    }
    file.close(); // tells what closing fails with; the destructor would not
}

} // namespace

void files(const Argument&) {
    const fs::path folder = fs::temp_directory_path() / "guide_folder" / "deep";
    const fs::path path = folder / "drawing.txt";
    Fio_CreateDirectory(folder.c_str()); // with all its parents
    qz::replace_file(path, "old contents");

    try {
        save(path, true);
    } catch (const std::runtime_error& e) {
        std::printf("%s: %s\n", e.what(), qz::read_file(path).c_str());
    }
    save(path, false);
    std::printf("committed: %s\n", qz::read_file(path).c_str());
    read(path);

    FioFileInfo info = {};
    Fio_GetFileInfo(path.c_str(), &info);
    std::printf("it has %u bytes, %s\n", info.size, info.year > 2000 ? "and a date" : "and no date");

    {
        const qz::PathLock lock(path, false); // nobody outside of the library writes to it now
        std::printf("locked %d times, ", Fio_LockCount(path.c_str(), false));
    }
    std::printf("then %d times\n", Fio_LockCount(path.c_str(), false));
    Fio_DeleteFile(path.c_str());
    std::printf("it is %s\n", Fio_IsFileExist(path.c_str()) != 0 ? "still there" : "gone");
    fs::remove_all(folder.parent_path());
}
