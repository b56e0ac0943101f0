// An input in memory that a path can name, below 2 GiB, with nothing readable behind its end.
#pragma once

#include "fuzz/target.h"

#include <cstring>
#include <string>

#include <windows.h>

namespace fuzz {

class LowBytes {
public:
    // Room for so many bytes, a multiple of 4096.
    explicit LowBytes(std::size_t room) : room_(room) {
        constexpr std::size_t kFirst = 0x10000000, kLast = 0x60000000, kStep = 0x100000, kFence = 0x10000;
        for (std::size_t at = kFirst; at < kLast && memory_ == nullptr; at += kStep)
            memory_ = static_cast<char*>(
                VirtualAlloc(reinterpret_cast<void*>(at), room + kFence, MEM_RESERVE, PAGE_NOACCESS));
        require(memory_ != nullptr, "no memory below 2 GiB");
        VirtualAlloc(memory_, room, MEM_COMMIT, PAGE_READWRITE);
    }

    // @return its path
    std::wstring put(const std::string& bytes) {
        char* const place = memory_ + room_ - bytes.size();
        std::memcpy(place, bytes.data(), bytes.size());
        return L"fmem::" + std::to_wstring(reinterpret_cast<std::size_t>(place)) + L"," +
               std::to_wstring(bytes.size());
    }
    char* data() const { return memory_; }

private:
    const std::size_t room_;
    char* memory_ = nullptr;
};

} // namespace fuzz
