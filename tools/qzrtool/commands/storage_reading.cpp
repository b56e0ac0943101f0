// qzrtool storage ls, cat, check.
#include "cli/json.h"
#include "commands/commands.h"
#include "commands/storage_source.h"
#include "qzbytes.h"

namespace tool {

namespace {

namespace fs = std::filesystem;

std::string right_aligned(const std::string& text, std::size_t width) {
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

std::string count_of(unsigned long long count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

class Lister final : public StorageVisitor {
public:
    explicit Lister(Invocation& invocation) : invocation_(invocation), json_(invocation.out) {
        if (invocation_.options.json) json_.begin_array();
    }

    void enter(const ElementNames& path) override { tell(path, "storage", ""); }
    void stream(const ElementNames& path, IXStream& stream) override {
        tell(path, "stream", std::to_string(stream.GetSize()));
    }
    void damaged(const ElementNames& path, const std::string& text) override {
        invocation_.diagnostics.warn(element_text(path), text);
    }

    void finish() {
        if (!invocation_.options.json) return;
        json_.end_array();
        json_.finish();
    }

private:
    void tell(const ElementNames& path, const char* kind, const std::string& size) {
        const std::string text = element_text(path);
        if (!invocation_.options.json) {
            return invocation_.out.write(right_aligned(size, 10) + "  " + text +
                                         (size.empty() ? "/\n" : "\n"));
        }
        json_.begin_object();
        json_.key("path");
        json_.text(text);
        json_.key("kind");
        json_.text(kind);
        if (!size.empty()) {
            json_.key("size");
            json_.raw(size);
        }
        json_.end_object();
    }

    Invocation& invocation_;
    JsonWriter json_;
};

class Checker final : public StorageVisitor {
public:
    Checker(Output& out, Progress& progress) : out_(out), progress_(progress) {}

    void enter(const ElementNames&) override { ++storages_; }

    void stream(const ElementNames& path, IXStream& stream) override {
        ++streams_;
        const unsigned size = stream.GetSize();
        const unsigned long long got =
            qz::read_pieces(stream, [&](std::string_view piece) { progress_.advance(piece.size()); });
        bytes_ += got;
        if (got != size) {
            damaged(path,
                    "only " + std::to_string(got) + " of " + std::to_string(size) + " bytes can be read");
        }
    }

    void damaged(const ElementNames& path, const std::string& text) override {
        ++damages_;
        out_.write(element_text(path) + ": " + text + "\n");
    }

    ExitCode finish() {
        out_.write(count_of(storages_, "storage") + ", " + count_of(streams_, "stream") + ", " +
                   count_of(bytes_, "byte") + ": " +
                   (damages_ == 0 ? "no damage" : count_of(damages_, "damaged element")) + "\n");
        return damages_ == 0 ? kOk : kNo;
    }

private:
    Output& out_;
    Progress& progress_;
    unsigned long long storages_ = 0, streams_ = 0, bytes_ = 0, damages_ = 0;
};

} // namespace

ExitCode run_storage_ls(Invocation& invocation) {
    const StorageSource source(invocation.arguments[0], nullptr);
    const auto top = source.storage();
    if (!top) return source.not_found("storage");
    Lister lister(invocation);
    walk_storage(*top, source.file_size(), lister);
    lister.finish();
    return kOk;
}

ExitCode run_storage_cat(Invocation& invocation) {
    const auto progress = make_progress(invocation.options.progress, "reading");
    StorageSource source(invocation.arguments[0], progress.Get());
    const auto stream = source.stream();
    if (!stream) return source.not_found("stream");
    const unsigned size = stream->GetSize();
    progress->begin(size);
    const unsigned long long got = qz::read_pieces(*stream, [&](std::string_view piece) {
        progress->advance(piece.size());
        invocation.out.write(piece);
    });
    if (got != size) fail(source.shown() + ": only " + std::to_string(got) + " bytes can be read");
    return kOk;
}

ExitCode run_storage_check(Invocation& invocation) {
    const auto progress = make_progress(invocation.options.progress, "checking");
    const StorageSource source(invocation.arguments[0], progress.Get());
    const auto top = source.storage();
    if (!top) return source.not_found("storage");
    progress->begin(bytes_in(*top, source.file_size()));
    Checker checker(invocation.out, *progress);
    walk_storage(*top, source.file_size(), checker);
    return checker.finish();
}

} // namespace tool
