#include "fio/lock_registry.h"

#include "qzexception.h"
#include "qzfile.h"
#include "string/ascii_case.h"

#include <cwchar>
#include <mutex>

namespace qzr {

namespace {

// A path as the registry knows it.
class FoldedPath {
public:
    explicit FoldedPath(const wchar_t* path) noexcept {
        if (path == nullptr) return;
        const std::size_t length = wcsnlen(path, kPathUnits);
        if (length == kPathUnits) return;
        std::wmemcpy(text_, path, length);
        valid_ = ascii_upper(text_, text_ + length) == text_ + length || upper_by_system(path, length);
        length_ = length;
    }

    bool valid() const noexcept { return valid_; }
    std::wstring_view text() const noexcept { return {text_, length_}; }

private:
    // Of which most paths have no need.
    bool upper_by_system(const wchar_t* path, std::size_t length) noexcept {
        const int units = static_cast<int>(length);
        return LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, path, units, text_, units, nullptr,
                             nullptr, 0) == units;
    }

    wchar_t text_[kPathUnits]; // filled up to length_
    std::size_t length_ = 0;
    bool valid_ = false;
};

// While it is open others can read the file, and nobody can open it for writing.
FileHandle open_lock_file(const wchar_t* path) noexcept {
    return FileHandle(CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE | FILE_FLAG_RANDOM_ACCESS,
                                  nullptr));
}

} // namespace

LockRegistry::Records::iterator LockRegistry::find(const wchar_t* path) {
    if (records_.empty()) return records_.end();
    const FoldedPath folded(path);
    return folded.valid() ? records_.find(folded.text()) : records_.end();
}

bool LockRegistry::count_one_more(std::wstring_view folded, bool exclusive) {
    const auto found = records_.find(folded);
    if (found == records_.end()) return false;
    ++found->second.count(exclusive);
    return true;
}

// Whether the file exists is asked without holding the others up: a server may have to answer.
void LockRegistry::lock(const wchar_t* path, bool exclusive, Target target) {
    const FoldedPath folded(path);
    if (!folded.valid()) return;
    {
        const std::lock_guard guard(lock_);
        if (enabled_ == 0 && is_memory_path(path)) return;
        if (count_one_more(folded.text(), exclusive)) return;
    }
    const bool must_open = exclusive || target == Target::kExists || Fio_IsFileExist(path) != 0;
    const std::lock_guard guard(lock_);
    if (count_one_more(folded.text(), exclusive)) return;
    Record record;
    ++record.count(exclusive);
    if (must_open) {
        record.file = open_lock_file(path);
        if (!record.file) return;
    }
    records_.emplace(folded.text(), std::move(record));
}

void LockRegistry::unlock(const wchar_t* path, bool exclusive) {
    const std::lock_guard guard(lock_);
    const auto found = find(path);
    if (found == records_.end()) return;
    Record& record = found->second;
    unsigned& count = record.count(exclusive);
    if (count != 0) --count;
    if (record.exclusive == 0 && record.shared == 0) records_.erase(found);
}

unsigned LockRegistry::count(const wchar_t* path, bool exclusive) {
    const std::lock_guard guard(lock_);
    const auto found = find(path);
    return found != records_.end() ? found->second.count(exclusive) : 0;
}

void LockRegistry::let_go(const wchar_t* path) {
    const std::lock_guard guard(lock_);
    const auto found = find(path);
    if (found == records_.end()) return;
    if (found->second.exclusive != 0) throw CXFileException(QZERR_SEEK, QZOP_OPEN, path);
    found->second.file.reset();
}

LockRegistry::Record* LockRegistry::without_file(const wchar_t* path) {
    const auto found = find(path);
    return found != records_.end() && !found->second.file ? &found->second : nullptr;
}

// A record that still has its file keeps it: two of the library's readers of one path end one after the
// other, and each gives the handle back.
void LockRegistry::take_back(const wchar_t* path) {
    {
        const std::lock_guard guard(lock_);
        if (without_file(path) == nullptr) return;
    }
    if (Fio_IsFileExist(path) == 0) return;
    const std::lock_guard guard(lock_);
    if (Record* const record = without_file(path)) record->file = open_lock_file(path);
}

int LockRegistry::set_enabled(int on) {
    const std::lock_guard guard(lock_);
    return std::exchange(enabled_, on);
}

} // namespace qzr
