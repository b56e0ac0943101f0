// Names of storage elements: narrow in our interfaces, wide in the platform's. Both directions go through the
// system's ANSI code page and a buffer of fixed size.
#pragma once

namespace qzr {

constexpr int kMostElementName = 511; // characters before the terminator

class WideElementName {
public:
    explicit WideElementName(const char* name) noexcept; // null counts as empty
    const wchar_t* text() const noexcept { return text_; }

private:
    wchar_t text_[kMostElementName + 1];
};

class NarrowElementName {
public:
    explicit NarrowElementName(const wchar_t* name) noexcept; // the same
    const char* text() const noexcept { return text_; }

private:
    char text_[kMostElementName + 1];
};

} // namespace qzr
