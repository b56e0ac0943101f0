#include "support/storages.h"

#include "qzexception.h"
#include "support/param_outline.h"

#include <gtest/gtest.h>

#include <algorithm>

StorageRef memory_storage() { return StorageRef::Adopt(new_Storage(nullptr, 0)); }

void put_stream(IXStorage& storage, const char* name, const std::string& bytes) {
    const auto stream = StreamRef::Adopt(storage.CreateStream(name));
    ASSERT_TRUE(stream) << name;
    stream->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
}

std::string get_stream(IXStorage& storage, const char* name) {
    const auto stream = StreamRef::Adopt(storage.OpenStream(name));
    if (!stream) return "(none)";
    std::string bytes(stream->GetSize(), '\0');
    EXPECT_EQ(stream->Read(bytes.data(), static_cast<unsigned>(bytes.size())), bytes.size());
    return bytes;
}

std::string layout_of(IXStorage& storage) {
    std::vector<std::string> streams = take_names(storage.EnumStreams());
    std::vector<std::string> storages = take_names(storage.EnumStorages());
    std::sort(streams.begin(), streams.end());
    std::sort(storages.begin(), storages.end());
    std::string all;
    for (const std::string& name : streams)
        all += name + "=" + std::to_string(get_stream(storage, name.c_str()).size()) + " ";
    for (const std::string& name : storages)
        all += name + "{" + layout_of(*StorageRef::Adopt(storage.OpenStorage(name.c_str()))) + "} ";
    if (!all.empty()) all.pop_back();
    return all;
}

std::string shown_exception() {
    try {
        throw;
    } catch (const CXFileException& e) {
        std::string shown = std::to_string(e.GetCode()) + ", " + std::to_string(e.m_nOperation) + ", ";
        for (const wchar_t* p = e.m_pszFileName; *p != 0; ++p)
            shown += *p < 128 ? static_cast<char>(*p) : '?';
        return shown;
    } catch (const CXException& e) {
        return std::to_string(e.GetCode());
    }
}
