#include "storage/storage_walk.h"

#include "system/error_text.h"
#include "system/failure.h"

#include <new>

namespace tool {

namespace {

constexpr unsigned long long kEntrySize = 128; // of an element in the directory of a compound file

struct Level {
    CQZRef<IXStorage> storage;
    std::vector<CXString> children;
    std::size_t next = 0;
};

class Walk {
public:
    Walk(unsigned long long file_size, StorageVisitor& visitor)
        : most_elements_(file_size / kEntrySize + 1), visitor_(visitor) {}

    void run(IXStorage& top) {
        enter(CQZRef<IXStorage>::Share(&top));
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.children.size()) {
                levels_.pop_back();
                if (!path_.empty()) path_.pop_back();
                continue;
            }
            path_.push_back(level.children[level.next++]);
            const std::size_t depth = levels_.size();
            count_element();
            guarded([&] { open(*level.storage); });
            if (levels_.size() == depth) path_.pop_back();
        }
    }

private:
    void open(IXStorage& parent) {
        auto storage = open_storage(parent, path_.back());
        if (!storage) return visitor_.damaged(path_, "the storage cannot be found by its name");
        visitor_.enter(path_);
        enter(std::move(storage));
    }

    void enter(CQZRef<IXStorage> storage) {
        for (const CXString& name : stream_names(*storage)) {
            path_.push_back(name);
            count_element();
            guarded([&] { visit_stream(*storage); });
            path_.pop_back();
        }
        auto children = storage_names(*storage);
        levels_.push_back({std::move(storage), std::move(children), 0});
    }

    void visit_stream(IXStorage& parent) {
        const auto stream = CQZRef<IXStream>::Adopt(parent.OpenStream(path_.back().GetData()));
        if (!stream) return visitor_.damaged(path_, "the stream cannot be opened");
        visitor_.stream(path_, *stream);
    }

    void guarded(const std::function<void()>& work) {
        const std::size_t depth = path_.size();
        try {
            work();
        } catch (const CXException& e) {
            if (e.GetCode() == QZERR_CANCELLED || e.GetCode() == QZERR_MEMORY) throw;
            path_.resize(depth);
            visitor_.damaged(path_, error_text(e));
        }
    }

    void count_element() {
        if (++elements_ > most_elements_) fail("the file's directory leads in circles");
    }

    const unsigned long long most_elements_;
    unsigned long long elements_ = 0;
    StorageVisitor& visitor_;
    std::vector<Level> levels_;
    ElementNames path_;
};

class Adder final : public StorageVisitor {
public:
    void stream(const ElementNames&, IXStream& stream) override { total += stream.GetSize(); }
    void damaged(const ElementNames&, const std::string&) override {}

    unsigned long long total = 0;
};

} // namespace

void walk_storage(IXStorage& top, unsigned long long file_size, StorageVisitor& visitor) {
    Walk(file_size, visitor).run(top);
}

unsigned long long bytes_in(IXStorage& top, unsigned long long file_size) {
    Adder adder;
    walk_storage(top, file_size, adder);
    return adder.total;
}

} // namespace tool
