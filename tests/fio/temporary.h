// What a temporary file of an output file holds, told by the record at its end.
#pragma once

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// "unfinished", or "whole: " and the document.
inline std::string told_by_end(const std::string& bytes) {
    constexpr std::size_t kRecord = 32;
    if (bytes.empty()) return "unfinished";
    std::uint64_t numbers[2] = {};
    if (bytes.size() >= kRecord) std::memcpy(numbers, bytes.data() + bytes.size() - 16, sizeof numbers);
    const bool record = bytes.size() >= kRecord && numbers[0] == bytes.size() &&
                        bytes.compare(bytes.size() - kRecord, 16, "QZR-UNFINISHED-1") == 0;
    if (!record) return "whole: " + bytes;
    return numbers[1] == ~std::uint64_t{0} ? "unfinished" : "whole: " + bytes.substr(0, numbers[1]);
}

inline std::string file_bytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// The temporary files in a folder, as above. A copy that grows has another name.
inline std::vector<std::string> temporaries(const std::filesystem::path& folder) {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().filename().wstring().starts_with(L"QZP") && entry.path().extension() == L".tmp")
            found.push_back(told_by_end(file_bytes(entry.path())));
    return found;
}
