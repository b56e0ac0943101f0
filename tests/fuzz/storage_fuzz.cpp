// Compound files that were cut or damaged: opening, listing, reading and changing them fails with an
// exception of the library or does something sensible, never anything else. A round depends on its number
// alone; argument 1 is the number of rounds, argument 2 the first of them.
#include "mutation.h"

#include "qzexception.h"
#include "qzparam.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzvariant.h"
#include "support/scratch_folder.h"

#include <atomic>
#include <thread>

namespace {

using Storage = CQZRef<IXStorage>;
using Stream = CQZRef<IXStream>;
using Tree = CQZRef<IParam>;

std::atomic<unsigned> current_round;

void put(IXStorage& storage, const std::string& name, unsigned size) {
    const auto stream = Stream::Adopt(storage.CreateStream(name.c_str()));
    const std::string bytes(size, static_cast<char>('a' + size % 26));
    stream->Write(bytes.data(), size);
}

void set(IParam& tree, const std::string& name, const CQZVariant& value) {
    tree.SetValue(name.c_str(), &value);
}

// Streams in small and in large sectors, levels, a tree.
std::vector<std::string> sound_files(const ScratchFolder& folder) {
    const std::wstring path = folder.path(L"sound");
    {
        const auto root = Storage::Adopt(new_Storage(path.c_str(), 0));
        for (const unsigned size : {0, 1, 64, 100, 513})
            put(*root, "s" + std::to_string(size), size);
    }
    std::vector<std::string> files = {folder.contents(L"sound")};
    {
        const auto root = Storage::Adopt(new_Storage(path.c_str(), QZSTORAGE_TRANSACTED));
        auto inner = Storage::Adopt(root->CreateStorage("a"));
        put(*inner, "large", 30000);
        for (int level = 0; level < 4; ++level) {
            put(*inner, "edge", 4095 + level);
            inner = Storage::Adopt(inner->CreateStorage("b"));
        }
        const auto tree = Tree::Adopt(new_IXStorParam(root.Get()));
        const auto node = Tree::Adopt(tree->CreateSubParam("node"));
        set(*node, "int", CQZVariant(5));
        set(*node, "text", CQZVariant(std::string(300, 't').c_str()));
        set(*node, "wide", CQZVariant(L"wide"));
        for (int i = 0; i < 12; ++i)
            set(*node, "v" + std::to_string(i * i), CQZVariant(2.5 * i));
    }
    files.push_back(folder.contents(L"sound"));
    return files;
}

// Header, sector tables and directory are made of 32-bit numbers, most of them sector numbers.
void damage(std::string& file, fuzz::Random& random) {
    constexpr std::size_t kSector = 512;
    const std::size_t sectors = file.size() / kSector;
    if (sectors < 2) return;
    const std::size_t at = random.below(sectors) * kSector;
    switch (random.below(8)) {
    case 0:
        file.resize(random.below(2) == 0 ? random.below(file.size()) : at);
        return;
    case 1:
        file[random.below(file.size())] ^= static_cast<char>(1 << random.below(8));
        return;
    case 2:
        file[random.below(kSector)] = static_cast<char>(random.next()); // in the header
        return;
    case 3:
        file.replace(at, kSector, file, random.below(sectors) * kSector, kSector);
        return;
    default: {
        const unsigned numbers[] = {
            0,          1,          2,          static_cast<unsigned>(random.below(sectors + 2)),
            0x7FFFFFFF, 0x80000000, 0xFFFFFFFC, 0xFFFFFFFD,
            0xFFFFFFFE, 0xFFFFFFFF};
        const unsigned number = numbers[random.below(std::size(numbers))];
        file.replace(at + random.below(kSector / 4) * 4, 4, reinterpret_cast<const char*>(&number), 4);
    }
    }
}

std::vector<std::string> names_of(CTEnum<const char*>* taken) {
    constexpr std::size_t kMost = 200; // a damaged directory may list anything
    const auto names = CQZRef<CTEnum<const char*>>::Adopt(taken);
    std::vector<std::string> all;
    const char* name = nullptr;
    while (all.size() < kMost && names->Next(1, &name, nullptr) != 0)
        all.emplace_back(name);
    return all;
}

template <class Call>
void tried(Call call) {
    try {
        call();
    } catch (const CXException&) {
    }
}

void read_stream(IXStorage& storage, const std::string& name) {
    const auto stream = Stream::Adopt(storage.OpenStream(name.c_str()));
    if (!stream) return;
    constexpr unsigned kMost = 1 << 20;
    char buffer[4096];
    unsigned read = 0;
    do
        read = stream->Read(buffer, sizeof buffer);
    while (read != 0 && stream->GetPosition() < kMost);
    stream->Seek(-1, 2);
    stream->ReadByte();
}

void walk(const Storage& root, bool change) {
    std::vector<std::pair<Storage, int>> open = {{root, 0}};
    for (int storages = 0; !open.empty() && storages < 100; ++storages) {
        const auto [storage, level] = open.back();
        open.pop_back();
        tried([&] {
            const auto tree = Tree::Adopt(new_IXStorParam(storage.Get()));
            for (const std::string& name : names_of(storage->EnumStreams())) {
                tried([&] { read_stream(*storage, name); });
                CQZVariant value;
                tree->GetValue(name.c_str(), &value);
            }
        });
        if (change) {
            tried([&] { storage->DestroyStream("s64"); });
            tried([&] { put(*storage, "new", 5000); });
            tried([&] { storage->CreateStorage("new storage")->Release(); });
        }
        tried([&] {
            if (level > 50) return;
            for (const std::string& name : names_of(storage->EnumStorages()))
                tried([&] {
                    open.emplace_back(Storage::Adopt(storage->OpenStorage(name.c_str())), level + 1);
                });
        });
    }
}

void run(unsigned round, const std::vector<std::string>& sound, const ScratchFolder& folder) {
    fuzz::Random random(round);
    std::string file = sound[random.below(sound.size())];
    for (std::size_t steps = 1 + random.below(4); steps != 0; --steps)
        damage(file, random);
    const std::wstring path = folder.file(L"damaged", file);
    const bool change = random.below(2) == 0;
    tried([&] { walk(Storage::Adopt(open_Storage(path.c_str(), change ? 0 : 1)), change); });
}

// Ends the program when a round does not end.
void watch() {
    constexpr DWORD kPatience = 20000;
    for (unsigned seen = current_round; true; seen = current_round) {
        Sleep(kPatience);
        if (current_round != seen) continue;
        std::printf("round %u hangs\n", seen);
        std::fflush(stdout);
        TerminateProcess(GetCurrentProcess(), 1);
    }
}

} // namespace

int main(int argc, char** argv) {
    const unsigned rounds = argc > 1 ? static_cast<unsigned>(std::atoi(argv[1])) : 80;
    const unsigned first = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1;
    const ScratchFolder folder;
    const auto sound = sound_files(folder);
    std::thread(watch).detach();
    for (unsigned round = first; round < first + rounds; ++round) {
        current_round = round;
        run(round, sound, folder);
        if (round % 100 == 0) fuzz::check_heaps("round " + std::to_string(round));
    }
    fuzz::check_heaps("");
    std::printf("%u rounds\n", rounds);
    return 0;
}
