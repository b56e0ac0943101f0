// Bytes written as hexadecimal text, for golden data and for messages.
#pragma once

#include <cctype>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

namespace test {

// "0a 00 ff" as three bytes. Blanks are free; 'text' in quotes stands for its characters.
inline std::string from_hex(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i < hex.size();) {
        if (hex[i] == ' ') {
            ++i;
        } else if (hex[i] == '\'') {
            const std::size_t end = hex.find('\'', i + 1);
            if (end == hex.npos) throw std::invalid_argument("quote without end");
            bytes += hex.substr(i + 1, end - i - 1);
            i = end + 1;
        } else {
            std::size_t used = 0;
            bytes += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), &used, 16));
            if (used != 2) throw std::invalid_argument("a byte has two digits: " + std::string(hex));
            i += 2;
        }
    }
    return bytes;
}

inline std::string to_hex(std::string_view bytes) {
    std::string hex;
    for (const char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02x ", static_cast<unsigned char>(byte));
        hex += digits;
    }
    if (!hex.empty()) hex.pop_back();
    return hex;
}

} // namespace test
