// qzrtool storage put, rm, pack, extract.
#include "commands/commands.h"
#include "commands/storage_source.h"
#include "formats/resolve_address.h"
#include "qzbytes.h"
#include "system/encoding.h"
#include "system/files.h"

#include <algorithm>
#include <process.h>

namespace tool {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 31; // of an element, the platform's limit
constexpr unsigned long long kLargestStream = 0xFFFFFFFF;

std::string shown_path(const fs::path& path) { return printable(utf8(path.wstring())); }

CQZRef<IXStream> create_stream(IXStorage& storage, const ElementNames& path) {
    auto stream = CQZRef<IXStream>::Adopt(storage.CreateStream(path.back().GetData()));
    if (!stream) fail(element_text(path) + ": no stream of this name can be made");
    return stream;
}

void write_piece(IXStream& stream, std::string_view piece, Progress& progress) {
    stream.Write(piece.data(), static_cast<unsigned>(piece.size()));
    progress.advance(piece.size());
    progress.check();
}

// --- pack ------------------------------------------------------------------------------------------------

struct PackedEntry {
    fs::path file;
    ElementNames path;
    bool is_directory;
};

/// What a folder holds, each directory before what is in it. Fails before anything is written when a
/// compound file cannot hold it.
class Plan {
public:
    explicit Plan(const fs::path& folder) {
        add_entries(folder, {});
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            if (entries_[i].is_directory)
                add_entries(fs::path(entries_[i].file), ElementNames(entries_[i].path));
        }
    }

    const std::vector<PackedEntry>& entries() const { return entries_; }
    unsigned long long bytes() const { return bytes_; }

private:
    void add_entries(const fs::path& folder, const ElementNames& parent) {
        for (const auto& entry : fs::directory_iterator(folder)) {
            add(entry, parent);
        }
    }

    void add(const fs::directory_entry& entry, ElementNames path) {
        const std::string shown = shown_path(entry.path());
        const bool is_directory = entry.is_directory();
        if (entry.is_symlink() || (!is_directory && !entry.is_regular_file()))
            fail(shown + ": is neither a file nor a folder");
        path.push_back(element_name(entry.path().filename().wstring()));
        if (CXStringW(path.back().GetData()).GetLength() > kLongestName)
            fail(shown + ": compound files hold names of 31 characters at most");
        if (!is_directory) add_size(entry.file_size(), shown);
        entries_.push_back({entry.path(), std::move(path), is_directory});
    }

    void add_size(unsigned long long size, const std::string& shown) {
        if (size > kLargestStream) fail(shown + ": is larger than 4 GiB");
        bytes_ += size;
    }

    std::vector<PackedEntry> entries_;
    unsigned long long bytes_ = 0;
};

void pack_entry(IXStorage& root, const PackedEntry& entry, Progress& progress) {
    if (entry.is_directory) {
        make_storage(root, entry.path);
        return;
    }
    const auto storage = make_storage(root, {entry.path.begin(), entry.path.end() - 1});
    const auto stream = create_stream(*storage, entry.path);
    read_pieces(entry.file, shown_path(entry.file),
                [&](std::string_view piece) { write_piece(*stream, piece, progress); });
}

// --- extract ---------------------------------------------------------------------------------------------

/// A folder beside the one that is wanted, which gets its name once it is complete, or goes away.
class FolderInWaiting {
public:
    FolderInWaiting(const fs::path& target, std::string shown) : target_(target), shown_(std::move(shown)) {
        std::error_code error;
        if (fs::exists(target_, error) && !(fs::is_directory(target_, error) && fs::is_empty(target_, error)))
            fail(shown_ + ": is there already, and not empty");
        path_ = target_;
        path_ += L"." + std::to_wstring(_getpid()) + L".tmp";
        if (!fs::create_directory(path_, error))
            fail(shown_ + ": cannot be made: " + (error ? error.message() : "the name is taken"));
    }
    ~FolderInWaiting() {
        std::error_code ignored;
        if (!path_.empty()) fs::remove_all(path_, ignored);
    }
    FolderInWaiting(const FolderInWaiting&) = delete;
    FolderInWaiting& operator=(const FolderInWaiting&) = delete;

    const fs::path& path() const { return path_; }

    void take_place() {
        std::error_code error;
        fs::remove(target_, error); // an empty folder
        fs::rename(path_, target_, error);
        if (error) fail(shown_ + ": cannot be made: " + error.message());
        path_.clear();
    }

private:
    fs::path target_, path_;
    std::string shown_;
};

class Extractor final : public StorageVisitor {
public:
    Extractor(fs::path folder, std::string source, Progress& progress)
        : folder_(std::move(folder)), source_(std::move(source)), progress_(progress) {}

    void enter(const ElementNames& path) override {
        std::error_code error;
        if (!fs::create_directory(place_of(path), error)) fail_writing(path, error);
    }

    void stream(const ElementNames& path, IXStream& stream) override {
        const fs::path place = place_of(path);
        std::error_code error;
        if (fs::exists(place, error)) fail_writing(path, std::make_error_code(std::errc::file_exists));
        Replacement file(place, element_text(path));
        const unsigned size = stream.GetSize();
        const unsigned long long got = qz::read_pieces(stream, [&](std::string_view piece) {
            file.write(piece);
            progress_.advance(piece.size());
        });
        if (got != size) return damaged(path, "only " + std::to_string(got) + " bytes can be read");
        file.take_place();
    }

    void damaged(const ElementNames& path, const std::string& text) override {
        fail(source_ + ": nothing is extracted: " + element_text(path) + ": " + text);
    }

private:
    /// Each name becomes one harmless component, so the place is always inside the folder.
    fs::path place_of(const ElementNames& path) const {
        fs::path place = folder_;
        for (const CXString& name : path) {
            place /= file_name_of(name);
        }
        return place;
    }

    [[noreturn]] static void fail_writing(const ElementNames& path, const std::error_code& error) {
        fail(element_text(path) +
             ": cannot be written: " + (error ? error.message() : "two elements have this name"));
    }

    fs::path folder_;
    std::string source_;
    Progress& progress_;
};

fs::path existing_folder(const std::wstring& argument) {
    fs::path folder = fs::absolute(native_path(argument));
    std::error_code ignored;
    if (!fs::is_directory(folder, ignored)) fail(printable(utf8(argument)) + ": there is no such folder");
    return folder;
}

fs::path without_separator_at_end(fs::path path) { return path.has_filename() ? path : path.parent_path(); }

} // namespace

ExitCode run_storage_put(Invocation& invocation) {
    const Address target = compound_address(invocation.arguments[0]);
    const ElementPath path = element_path(target.inside);
    if (path.names.empty() || path.ends_in_separator)
        fail(target.shown + ": which stream? It is written behind the file, as in FILE!STORAGE/STREAM");
    const std::string shown = printable(utf8(invocation.arguments[1]));
    const fs::path source = fs::absolute(native_path(invocation.arguments[1]));

    fetch_if_there(target);
    const auto progress = make_progress(invocation.options.progress, "writing");
    CompoundFileEdit file(target.file, target.shown, CompoundFileEdit::from_contents, progress.Get());
    {
        const auto storage = make_storage(file.root(), {path.names.begin(), path.names.end() - 1});
        if (open_storage(*storage, path.names.back()))
            fail(target.shown + ": " + element_text(path.names) + " is a storage, not a stream");
        const auto stream = create_stream(*storage, path.names);
        std::error_code ignored;
        progress->begin(invocation.arguments[1] == L"-" ? 0 : fs::file_size(source, ignored));
        const auto write = [&](std::string_view piece) { write_piece(*stream, piece, *progress); };
        if (invocation.arguments[1] == L"-") {
            read_standard_pieces(write);
        } else {
            read_pieces(source, shown, write);
        }
    }
    file.commit();
    publish(target);
    return kOk;
}

ExitCode run_storage_rm(Invocation& invocation) {
    const Address target = compound_address(invocation.arguments[0]);
    const ElementPath path = element_path(target.inside);
    if (path.names.empty()) fail(target.shown + ": what is to be removed? It is written behind the file");
    const char* what = path.ends_in_separator ? "storage" : "stream";
    fetch(target);
    if (!fs::exists(target.file)) fail(target.shown + ": there is no such file");

    const auto progress = make_progress(invocation.options.progress, "writing");
    CompoundFileEdit file(target.file, target.shown, CompoundFileEdit::from_contents, progress.Get());
    {
        const auto storage = find_storage(file.root(), {path.names.begin(), path.names.end() - 1});
        const char* name = path.names.back().GetData();
        const bool is_stream = storage && CQZRef<IXStream>::Adopt(storage->OpenStream(name));
        const bool is_storage = storage && !is_stream && open_storage(*storage, path.names.back());
        if (path.ends_in_separator ? !is_storage : !is_stream) {
            print_error(target.shown + ": there is no " + what + " " + element_text(path.names) +
                        (is_storage ? ", but a storage, which is removed with a \"/\" behind its name" : ""));
            return kNo;
        }
        if (is_storage)
            bytes_in(*storage, fs::file_size(target.file)); // fails where removing would have no end
        is_stream ? storage->DestroyStream(name) : storage->DestroyStorage(name);
    }
    file.commit();
    publish(target);
    return kOk;
}

ExitCode run_storage_pack(Invocation& invocation) {
    const fs::path folder = existing_folder(invocation.arguments[0]);
    const Address target = compound_address(invocation.arguments[1]);
    if (!target.inside.empty()) fail(target.shown + ": a folder is packed into a file of its own");
    const Plan plan(folder);

    const auto progress = make_progress(invocation.options.progress, "packing");
    CompoundFileEdit file(target.file, target.shown, CompoundFileEdit::from_nothing, progress.Get());
    progress->begin(plan.bytes());
    for (const PackedEntry& entry : plan.entries()) {
        pack_entry(file.root(), entry, *progress);
    }
    file.commit();
    publish(target);
    return kOk;
}

ExitCode run_storage_extract(Invocation& invocation) {
    const auto progress = make_progress(invocation.options.progress, "extracting");
    const StorageSource source(invocation.arguments[0], progress.Get());
    const auto top = source.storage();
    if (!top) return source.not_found("storage");

    const fs::path target = without_separator_at_end(fs::absolute(native_path(invocation.arguments[1])));
    FolderInWaiting folder(target, printable(utf8(invocation.arguments[1])));
    progress->begin(bytes_in(*top, source.file_size()));
    Extractor extractor(folder.path(), source.shown(), *progress);
    walk_storage(*top, source.file_size(), extractor);
    folder.take_place();
    return kOk;
}

} // namespace tool
