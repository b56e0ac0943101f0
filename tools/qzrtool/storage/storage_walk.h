// A walk over everything in a compound file, made to survive damage.
#pragma once

#include "storage/compound_file.h"

namespace tool {

class StorageVisitor {
public:
    virtual void enter(const ElementNames&) {} ///< a storage below the one that the walk began with
    virtual void stream(const ElementNames& path, IXStream& stream) = 0;
    virtual void damaged(const ElementNames& path, const std::string& text) = 0;

protected:
    ~StorageVisitor() = default;
};

/// Visits streams, then storages, in the order of their names. What cannot be opened is told as damage; what
/// the visitor throws ends the walk, but a failure of the library's in it is damage of that element.
/// @param file_size bounds the number of elements: a damaged directory may lead in circles
void walk_storage(IXStorage& top, unsigned long long file_size, StorageVisitor& visitor);

/// @return the bytes of all streams that can be opened
unsigned long long bytes_in(IXStorage& top, unsigned long long file_size);

} // namespace tool
