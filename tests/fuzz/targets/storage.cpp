// Compound files that were cut or damaged. The look at their tables is taken in memory. Now and then a file
// is opened as well, by the platform too when it passed: listing, reading and changing it fails with an
// exception of the library or does something sensible, never anything else.
#include "fuzz/target.h"

#include "qzparam.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzvariant.h"
#include "stream/sector_tables.h"
#include "support/scratch_folder.h"

#include <functional>
#include <iterator>
#include <utility>

namespace {

using fuzz::tried;

using Storage = CQZRef<IXStorage>;
using Stream = CQZRef<IXStream>;
using Tree = CQZRef<IParam>;

void put(IXStorage& storage, const std::string& name, unsigned size) {
    const auto stream = Stream::Adopt(storage.CreateStream(name.c_str()));
    const std::string bytes(size, static_cast<char>('a' + size % 26));
    stream->Write(bytes.data(), size);
}

void set(IParam& tree, const std::string& name, const CQZVariant& value) {
    tree.SetValue(name.c_str(), &value);
}

// Streams in small and in large sectors, levels, a tree.
std::vector<std::string> sound_files() {
    const ScratchFolder folder;
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
        put(*inner, "large", 9000);
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
bool damage(std::string& file, Random& random) {
    constexpr std::size_t kSector = 512;
    const std::size_t sectors = file.size() / kSector;
    if (sectors < 2) return false;
    const std::size_t at = random.below(sectors) * kSector;
    switch (random.below(8)) {
    case 0:
        file.resize(random.below(2) == 0 ? random.below(file.size()) : at);
        return true;
    case 1:
        file[random.below(file.size())] ^= static_cast<char>(1 << random.below(8));
        return true;
    case 2:
        file[random.below(kSector)] = static_cast<char>(random.next()); // in the header
        return true;
    case 3:
        file.replace(at, kSector, file, random.below(sectors) * kSector, kSector);
        return true;
    default: {
        const unsigned numbers[] = {
            0,          1,          2,          static_cast<unsigned>(random.below(sectors + 2)),
            0x7FFFFFFF, 0x80000000, 0xFFFFFFFC, 0xFFFFFFFD,
            0xFFFFFFFE, 0xFFFFFFFF};
        const unsigned number = numbers[random.below(std::size(numbers))];
        file.replace(at + random.below(kSector / 4) * 4, 4, reinterpret_cast<const char*>(&number), 4);
    }
    }
    return true;
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
        const auto tree = Tree::Adopt(new_IXStorParam(storage.Get()));
        tried([&] {
            for (const std::string& name : names_of(storage->EnumStreams())) {
                tried([&] { read_stream(*storage, name); });
                CQZVariant value;
                tree->GetValue(name.c_str(), &value);
                if (change) tried([&] { set(*tree, name, CQZVariant("another")); });
            }
        });
        if (change) {
            tried([&] { storage->DestroyStream("s64"); });
            tried([&] { put(*storage, "new", level == 0 ? 100'000 : 5000); });
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

class InputBytes final : public qzr::TableBytes {
public:
    explicit InputBytes(const std::string& input) : input_(input) {}
    std::uint64_t size() override { return input_.size(); }
    std::size_t read(std::uint64_t position, unsigned char* buffer, std::size_t count) override {
        return position < input_.size() ? input_.copy(reinterpret_cast<char*>(buffer), count, position) : 0;
    }

private:
    const std::string& input_;
};

void run(const std::string& input) {
    constexpr std::size_t kOpenedOneIn = 10'000;
    InputBytes bytes(input);
    const qzr::TableFindings found = qzr::look_at_tables(bytes);
    for (const auto& odd : found.odd_marks)
        fuzz::require(odd.position + 4 <= input.size(), "an odd mark outside the file");
    const std::size_t hash = std::hash<std::string>()(input); // always the same for an input
    if (hash % kOpenedOneIn != 0) return;
    static const ScratchFolder folder;
    const std::wstring path = folder.file(L"damaged", input);
    const bool change = hash / kOpenedOneIn % 2 == 0;
    tried([&] { walk(Storage::Adopt(open_Storage(path.c_str(), change ? 0 : 1)), change); });
}

std::vector<std::string> pieces() {
    using namespace std::string_literals;
    return {"\xFE\xFF\xFF\xFF"s, "\xFF\xFF\xFF\xFF"s, "\xFD\xFF\xFF\xFF"s, "\xFC\xFF\xFF\xFF"s,
            "\0\0\0\0"s,         "\x01\0\0\0"s,       "\x02\0\0\0"s,       "\x09\0"s,
            "\x0C\0"s,           "\x06\0"s,           "\x1F\0"s,           "\x05"s};
}

} // namespace

const fuzz::Target fuzz::kStorage{.name = "storage",
                                  .run = run,
                                  .seeds = sound_files,
                                  .pieces = pieces,
                                  .longest = 1 << 17,
                                  .mutate = damage};
