// What the commands on compound files share.
#pragma once

#include "cli/diagnostics.h"
#include "formats/address.h"
#include "storage/storage_walk.h"

namespace tool {

/// FILE!PATH of a command, opened for reading.
class StorageSource {
public:
    StorageSource(const std::wstring& argument, Progress* progress);

    const std::string& shown() const { return address_.shown; }
    unsigned long long file_size() const;
    const ElementPath& path() const { return path_; }

    CQZRef<IXStorage> storage() const; ///< null when there is none
    CQZRef<IXStream> stream();         ///< null when there is none; used as long as this object lives

    ExitCode not_found(const char* what) const;

private:
    Address address_;
    ElementPath path_;
    CQZRef<IXStorage> root_, parent_; // the platform shuts the streams of a storage that goes
};

} // namespace tool
