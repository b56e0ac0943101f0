// Compound files: streams and storages at random, committed or not.
#include "qzexception.h"
#include "qzfile.h"
#include "qzref.h"
#include "qzstream.h"
#include "soak/refusal.h"
#include "soak/work.h"

#include <algorithm>
#include <map>
#include <vector>

namespace {

using Storage = CQZRef<IXStorage>;
using Stream = CQZRef<IXStream>;

struct Model {
    std::map<std::string, std::string> streams;
    std::map<std::string, Model> storages;
};

class PatientSink final : public CQZUnknownImpl<QZRFC::IProgress> {
    int CheckCancel() override { return 0; }
};

std::string random_bytes(Random& random) {
    const std::size_t most[] = {1, 63, 64, 65, 512, 4095, 4096, 9000, 40000};
    std::string bytes(random.below(most[random.below(std::size(most))] + 1), '\0');
    for (char& c : bytes)
        c = static_cast<char>(random.next());
    return bytes;
}

void write_stream(Work& work, IXStorage& storage, Model& model) {
    const std::string name = "s" + std::to_string(work.random.below(8));
    const std::string bytes = random_bytes(work.random);
    const auto stream = Stream::Adopt(storage.CreateStream(name.c_str()));
    work.require(bool(stream), "a stream cannot be made");
    std::size_t at = 0;
    while (at < bytes.size()) { // in pieces
        const std::size_t piece = std::min(bytes.size() - at, 1 + work.random.below(5000));
        stream->Write(bytes.data() + at, static_cast<unsigned>(piece));
        at += piece;
    }
    model.streams[name] = bytes;
}

// Overwrites part of a stream that is there.
void change_stream(Work& work, IXStorage& storage, Model& model) {
    if (model.streams.empty()) return;
    auto& [name, bytes] = *model.streams.begin();
    const auto stream = Stream::Adopt(storage.OpenStream(name.c_str()));
    work.require(bool(stream), "a stream does not open");
    const std::size_t at = work.random.below(bytes.size() + 1);
    const std::string piece = random_bytes(work.random).substr(0, 700);
    stream->Seek(static_cast<int>(at), 0);
    stream->Write(piece.data(), static_cast<unsigned>(piece.size()));
    bytes.resize(std::max(bytes.size(), at + piece.size()));
    bytes.replace(at, piece.size(), piece);
}

void change(Work& work, IXStorage& storage, Model& model, int depth) {
    for (std::size_t steps = 3 + work.random.below(8); steps != 0; --steps) {
        switch (work.random.below(6)) {
        case 0:
            if (model.streams.empty()) break;
            storage.DestroyStream(model.streams.begin()->first.c_str());
            model.streams.erase(model.streams.begin());
            break;
        case 1:
            if (model.storages.empty()) break;
            storage.DestroyStorage(model.storages.begin()->first.c_str());
            model.storages.erase(model.storages.begin());
            break;
        case 2: {
            if (depth == 3) break;
            const std::string name = "t" + std::to_string(work.random.below(4));
            Model& below = model.storages[name];
            below = {};
            const auto child = Storage::Adopt(storage.CreateStorage(name.c_str()));
            change(work, *child, below, depth + 1);
            child->Commit();
            break;
        }
        case 3:
            change_stream(work, storage, model);
            break;
        default:
            write_stream(work, storage, model);
        }
    }
}

std::size_t count(CTEnum<const char*>* taken) {
    const auto names = CQZRef<CTEnum<const char*>>::Adopt(taken);
    std::size_t n = 0;
    for (const char* name = nullptr; names->Next(1, &name, nullptr) != 0;)
        ++n;
    return n;
}

void verify(Work& work, IXStorage& storage, const Model& model) {
    work.require(count(storage.EnumStreams()) == model.streams.size(), "another number of streams");
    work.require(count(storage.EnumStorages()) == model.storages.size(), "another number of storages");
    for (const auto& [name, bytes] : model.streams) {
        const auto stream = Stream::Adopt(storage.OpenStream(name.c_str()));
        work.require(bool(stream), "a stream is missing");
        std::string found(stream->GetSize(), '\0');
        stream->Read(found.data(), static_cast<unsigned>(found.size()));
        work.require(found == bytes, "a stream has other bytes");
    }
    for (const auto& [name, below] : model.storages)
        verify(work, *Storage::Adopt(storage.OpenStorage(name.c_str())), below);
}

// Reads with memory refused: whatever fails, nothing changes and nothing stays open.
void disturb(Work& work, IXStorage& storage, const Model& model) {
    if (work.refusals == 0) return;
    try {
        const Refusing refusing(work.refusal_random, work.refusals);
        verify(work, storage, model);
    } catch (const CXException&) {
    } catch (const std::runtime_error&) { // a stream that does not open is null
    }
}

void in_document(Work& work, const Storage& root, const Model& model) {
    const auto sink = CQZRef<PatientSink>::Adopt(new PatientSink);
    Storage document;
    work.require(new_CIXDocStorage(root.Get(), sink.Get(), document.Put(), 5) == 1 && document,
                 "no document");
    verify(work, *document, model);
}

} // namespace

void work_storage(Work& work) {
    const bool in_memory = work.random.one_in(4);
    const std::wstring path = work.path(L"storage");
    Model model;
    auto root = Storage::Adopt(
        new_Storage(in_memory ? nullptr : path.c_str(), work.random.one_in(2) ? QZSTORAGE_TRANSACTED : 0));
    change(work, *root, model, 0);
    disturb(work, *root, model);
    verify(work, *root, model);
    root->Commit();
    if (in_memory) return in_document(work, root, model);
    root.Reset();
    root = Storage::Adopt(open_Storage(path.c_str(), 0));
    verify(work, *root, model);
    change(work, *root, model, 0);
    disturb(work, *root, model);
    if (work.random.one_in(2)) root->Commit();
    root.Reset(); // commits what was not
    root = Storage::Adopt(open_Storage(path.c_str(), QZSTORAGE_READ_ONLY));
    disturb(work, *root, model);
    in_document(work, root, model);
    root.Reset();
    Fio_DeleteFile(path.c_str());
}
