// Writes and lists compound files through the library, for tests that compare them with what other software
// makes of them. In the names of packed files "%" and two hexadecimal digits stand for a byte.
//
//     compound_file pack MODE FILE FOLDER      a new file with the folder's files as streams; new_Storage's
//     mode compound_file update FILE FOLDER NAME... the same into a file that exists, once the named elements
//     of its
//                                              root are gone
//     compound_file list FILE                  "d PATH" and "f PATH SIZE CRC32" for every element, in UTF-8
#include "qzexception.h"
#include "qzref.h"
#include "qzstream.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

namespace {

namespace fs = std::filesystem;
using Storage = CQZRef<IXStorage>;
using Stream = CQZRef<IXStream>;

std::string converted(const std::wstring& text, unsigned code_page) {
    char bytes[1024];
    const int n = WideCharToMultiByte(code_page, 0, text.c_str(), static_cast<int>(text.size()), bytes,
                                      sizeof bytes, nullptr, nullptr);
    return {bytes, static_cast<std::size_t>(n)};
}

std::string utf8(const char* narrow) {
    wchar_t wide[1024] = L"";
    MultiByteToWideChar(CP_ACP, 0, narrow, -1, wide, 1024);
    return converted(wide, CP_UTF8);
}

std::string element_name(const fs::path& file) {
    const std::string escaped = converted(file.filename().wstring(), CP_ACP);
    std::string name;
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        const bool byte = escaped[i] == '%' && i + 2 < escaped.size();
        name += byte ? static_cast<char>(std::stoi(escaped.substr(i + 1, 2), nullptr, 16)) : escaped[i];
        i += byte ? 2 : 0;
    }
    return name;
}

unsigned crc32(unsigned crc, const char* bytes, std::size_t count) {
    crc = ~crc;
    for (std::size_t i = 0; i < count; ++i) {
        crc ^= static_cast<unsigned char>(bytes[i]);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xEDB88320U & (0U - (crc & 1)));
    }
    return ~crc;
}

void pack(const Storage& into, const fs::path& folder) {
    std::vector<std::pair<Storage, fs::path>> open = {{into, folder}};
    while (!open.empty()) {
        const auto [storage, path] = open.back();
        open.pop_back();
        for (const auto& entry : fs::directory_iterator(path)) {
            const std::string name = element_name(entry.path());
            if (entry.is_directory()) {
                open.emplace_back(Storage::Adopt(storage->CreateStorage(name.c_str())), entry.path());
                continue;
            }
            const auto stream = Stream::Adopt(storage->CreateStream(name.c_str()));
            std::ifstream in(entry.path(), std::ios::binary);
            char buffer[10000];
            while (in.read(buffer, sizeof buffer), in.gcount() != 0)
                stream->Write(buffer, static_cast<unsigned>(in.gcount()));
        }
    }
}

void list(const Storage& root) {
    std::vector<std::pair<Storage, std::string>> open = {{root, ""}};
    while (!open.empty()) {
        const auto [storage, path] = open.back();
        open.pop_back();
        const char* name = nullptr;
        const auto streams = CQZRef<CTEnum<const char*>>::Adopt(storage->EnumStreams());
        while (streams->Next(1, &name, nullptr) != 0) {
            const auto stream = Stream::Adopt(storage->OpenStream(name));
            std::vector<char> bytes(stream->GetSize());
            const unsigned read = stream->Read(bytes.data(), static_cast<unsigned>(bytes.size()));
            std::printf("f %s%s %u %08x\n", path.c_str(), utf8(name).c_str(), read,
                        crc32(0, bytes.data(), read));
        }
        const auto storages = CQZRef<CTEnum<const char*>>::Adopt(storage->EnumStorages());
        while (storages->Next(1, &name, nullptr) != 0) {
            const std::string child = path + utf8(name);
            std::printf("d %s\n", child.c_str());
            open.emplace_back(Storage::Adopt(storage->OpenStorage(name)), child + "/");
        }
    }
}

} // namespace

int main() {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    const std::wstring command = count > 2 ? arguments[1] : L"";
    try {
        if (command == L"pack" && count == 5) {
            const int mode = static_cast<int>(std::wcstol(arguments[2], nullptr, 10));
            pack(Storage::Adopt(new_Storage(arguments[3], mode)), arguments[4]);
        } else if (command == L"update" && count >= 4) {
            const auto root = Storage::Adopt(open_Storage(arguments[2], 0));
            for (int i = 4; i < count; ++i)
                root->DestroyStream(converted(arguments[i], CP_ACP).c_str());
            pack(root, arguments[3]);
        } else if (command == L"list" && count == 3) {
            list(Storage::Adopt(open_Storage(arguments[2], 1)));
        } else {
            std::fprintf(stderr, "compound_file pack|update|list ...\n");
            return 2;
        }
    } catch (const CXException& e) {
        std::fprintf(stderr, "failure %u\n", e.GetCode());
        return 1;
    }
    return 0;
}
