#include "commands/storage_source.h"

#include "formats/resolve_address.h"

namespace tool {

StorageSource::StorageSource(const std::wstring& argument, Progress* progress)
    : address_(compound_address(argument)), path_(element_path(address_.inside)) {
    fetch(address_);
    root_ = open_compound_file(address_.file, address_.shown, progress);
}

unsigned long long StorageSource::file_size() const {
    std::error_code ignored;
    return std::filesystem::file_size(address_.file, ignored);
}

CQZRef<IXStorage> StorageSource::storage() const { return find_storage(*root_, path_.names); }

CQZRef<IXStream> StorageSource::stream() {
    if (path_.names.empty() || path_.ends_in_separator)
        fail(address_.shown + ": which stream? It is written behind the file, as in FILE!STORAGE/STREAM");
    ElementNames parent = path_.names;
    parent.pop_back();
    parent_ = find_storage(*root_, parent);
    if (!parent_) return {};
    return CQZRef<IXStream>::Adopt(parent_->OpenStream(path_.names.back().GetData()));
}

ExitCode StorageSource::not_found(const char* what) const {
    print_error(address_.shown + ": there is no " + what + " " + element_text(path_.names));
    return kNo;
}

} // namespace tool
