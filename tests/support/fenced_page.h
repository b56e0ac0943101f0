// A readable page between two that are not: any access outside it ends the test.
#pragma once

#include <cstddef>
#include <cstring>

#include <windows.h>

class FencedPage {
public:
    static constexpr std::size_t kSize = 4096;

    FencedPage() : all_(static_cast<char*>(VirtualAlloc(nullptr, 3 * kSize, MEM_RESERVE, PAGE_NOACCESS))) {
        VirtualAlloc(begin(), kSize, MEM_COMMIT, PAGE_READWRITE);
    }
    ~FencedPage() { VirtualFree(all_, 0, MEM_RELEASE); }
    FencedPage(const FencedPage&) = delete;
    FencedPage& operator=(const FencedPage&) = delete;

    char* begin() const { return all_ + kSize; }
    char* end() const { return begin() + kSize; }

    // A copy whose last byte is that of the page.
    template <class Unit>
    const Unit* at_end(const Unit* text, std::size_t units) const {
        auto* const place = reinterpret_cast<Unit*>(end()) - units;
        std::memcpy(place, text, units * sizeof(Unit));
        return place;
    }

private:
    char* all_;
};
