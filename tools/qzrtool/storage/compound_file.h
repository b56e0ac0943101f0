// Compound files: opened for reading, or changed as a whole.
#pragma once

#include "qzstream.h"
#include "storage/element_names.h"
#include "system/files.h"
#include "system/progress.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

/// The root storage, for reading. Fails when the file is none of this kind.
/// @param progress asked after every transfer on anything inside; may be null
CQZRef<IXStorage> open_compound_file(const std::filesystem::path& file, const std::string& shown,
                                     Progress* progress);

std::vector<CXString> storage_names(IXStorage& storage); // sorted
std::vector<CXString> stream_names(IXStorage& storage);  // sorted

/// @return null when there is no such storage. Other failures are thrown.
CQZRef<IXStorage> open_storage(IXStorage& parent, const CXString& name);
CQZRef<IXStorage> find_storage(IXStorage& root, const ElementNames& path);

/// Opens a storage and creates what is missing on the way. Fails where a stream is in the way.
CQZRef<IXStorage> make_storage(IXStorage& root, const ElementNames& path);

/// A storage's elements, taken out.
void clear_storage(IXStorage& storage);

/// A changed copy of a compound file, or a new one. The file itself is replaced at once, in the end; until
/// then, and whatever fails, it stays as it is.
class CompoundFileEdit {
public:
    enum Start { from_contents, from_nothing };

    /// @param progress asked after every transfer; may be null
    CompoundFileEdit(const std::filesystem::path& file, const std::string& shown, Start start,
                     Progress* progress);

    /// Whoever holds storages and streams of it lets go of them before commit.
    IXStorage& root() { return *root_; }

    void commit();

private:
    void copy_contents(const std::filesystem::path& file, Progress* progress);

    std::string shown_;
    Replacement replacement_;
    CQZRef<IXStorage> base_, root_; // released first, so that the replacement can be moved or removed
};

} // namespace tool
