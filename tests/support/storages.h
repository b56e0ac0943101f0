// Storages in tests: streams put in and read back in one call, trees of elements written down in one line.
#pragma once

#include "qzref.h"
#include "qzstream.h"

#include <string>

using StorageRef = CQZRef<IXStorage>;
using StreamRef = CQZRef<IXStream>;

// A new storage in memory.
StorageRef memory_storage();

// Creates a stream with contents.
void put_stream(IXStorage& storage, const char* name, const std::string& bytes);

// The bytes of a stream; "(none)" when it does not open.
std::string get_stream(IXStorage& storage, const char* name);

// "a=2 b=0 s{c=1 t{}}": streams with their sizes, then storages, sorted by name.
std::string layout_of(IXStorage& storage);

// What a call throws: "6, 0, name" for a CXFileException, "2" for other exceptions of the library, or
// "nothing". Characters of the name beyond ASCII are shown as "?".
template <class Call>
std::string thrown_by(Call call);

std::string shown_exception();

template <class Call>
std::string thrown_by(Call call) {
    try {
        call();
    } catch (...) {
        return shown_exception();
    }
    return "nothing";
}
