// Compound files: storages and streams in one file, and a tree over a storage.
#include "guide.h"

#include "qzcore.h"

#include <cstdio>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

void make(const fs::path& file) {
    const auto root = CQZRef<IXStorage>::Adopt(new_Storage(file.c_str(), QZSTORAGE_TRANSACTED));
    {
        const auto text = CQZRef<IXStream>::Adopt(root->CreateStream("Text"));
        qz::write(*text, "Streams hold bytes.");
        const auto storage = CQZRef<IXStorage>::Adopt(root->CreateStorage("Settings"));
        const auto settings = CQZRef<IParam>::Adopt(new_IXStorParam(storage.Get()));
        qz::set(*settings, "View\\Grid\\Spacing", 12.5);
        storage->Commit(); // a part of the document is committed to the whole ...
    }
    root->Commit(); // ... and the whole to the file
}

// A document: whatever is read or written inside asks the sink.
void read_cancelled(IXStorage& root) {
    CQZRef<IXStorage> document;
    new_CIXDocStorage(&root, qz::cancel_after(0).Get(), document.Put(), 0);
    try {
        for (const auto& [name, stream] : qz::streams(*document))
            qz::read_rest(*stream);
    } catch (const CXException& e) {
        std::printf("cancelled: error %u\n", e.GetCode());
    }
}

} // namespace

void storages(const Argument&) {
    const fs::path file = fs::temp_directory_path() / "guide_document.qzc";
    make(file);
    {
        const auto root = CQZRef<IXStorage>::Adopt(open_Storage(file.c_str(), 1)); // for reading
        for (const auto& [name, stream] : qz::streams(*root))
            std::printf("%s: %s\n", name, qz::read_rest(*stream).c_str());
        for (const auto& [name, storage] : qz::storages(*root)) {
            const auto tree = CQZRef<IParam>::Adopt(new_IXStorParam(storage.Get()));
            std::printf("%s: %s\n", name, qz::text_of(*tree).c_str());
        }
        read_cancelled(*root);
        try {
            root->OpenStorage("Missing");
        } catch (const CXFileException& e) {
            std::printf("no such storage: error %u\n", e.GetCode());
        }
    }
    fs::remove(file);
}
