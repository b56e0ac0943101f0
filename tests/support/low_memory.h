// Memory that a path can name: its address fits into 31 bits.
#pragma once

#include <cstring>
#include <string>
#include <string_view>

#include <windows.h>

class LowMemory {
public:
    explicit LowMemory(std::string_view contents) : size_(contents.size()) {
        constexpr std::size_t kStep = 0x100000;
        for (std::size_t at = 0x10000000; at < 0x70000000 && memory_ == nullptr; at += kStep)
            memory_ = VirtualAlloc(reinterpret_cast<void*>(at), size_ + 1, MEM_RESERVE | MEM_COMMIT,
                                   PAGE_READWRITE);
        if (memory_ != nullptr) std::memcpy(memory_, contents.data(), size_);
    }
    ~LowMemory() { VirtualFree(memory_, 0, MEM_RELEASE); }
    LowMemory(const LowMemory&) = delete;
    LowMemory& operator=(const LowMemory&) = delete;

    char* data() const { return static_cast<char*>(memory_); }
    std::wstring path() const {
        return L"fmem::" + std::to_wstring(reinterpret_cast<std::size_t>(memory_)) + L"," +
               std::to_wstring(size_);
    }

private:
    std::size_t size_;
    void* memory_ = nullptr;
};
