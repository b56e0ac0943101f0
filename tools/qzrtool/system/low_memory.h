// Blocks of memory that the library opens as files.
#pragma once

#include <string>
#include <string_view>

namespace tool {

/// A copy of some bytes below 2 GiB, where the names of memory files reach.
class LowMemory {
public:
    explicit LowMemory(std::string_view bytes);
    ~LowMemory();
    LowMemory(const LowMemory&) = delete;
    LowMemory& operator=(const LowMemory&) = delete;

    /// @return "fmem::ADDRESS,SIZE"
    std::wstring path() const;

private:
    void* block_ = nullptr;
    std::size_t size_;
};

} // namespace tool
