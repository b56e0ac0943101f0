// What the tests of both string classes share: the two kinds, texts in either width, the process's code page.
#pragma once

#include "qzstring.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>

#include <windows.h>

struct NarrowKind {
    using String = CXString;
    using Unit = char;
    using OtherUnit = wchar_t;
    static constexpr int kUnit = 1;
    static constexpr int kCopyExtra = 1; // units behind a copied text: the terminator
};

struct WideKind {
    using String = CXStringW;
    using Unit = wchar_t;
    using OtherUnit = char;
    static constexpr int kUnit = 2;
    static constexpr int kCopyExtra = 2; // the terminator and a spare unit
};

struct KindNames {
    template <class Kind>
    static std::string GetName(int) {
        return Kind::kUnit == 1 ? "Narrow" : "Wide";
    }
};

using BothKinds = testing::Types<NarrowKind, WideKind>;

// ASCII text in the width of the kind.
template <class Kind>
std::basic_string<typename Kind::Unit> text(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

template <class Kind>
typename Kind::String string_of(std::string_view ascii) {
    return typename Kind::String(text<Kind>(ascii).c_str());
}

inline std::string narrow(const char* s) { return s; }
inline std::string narrow(const wchar_t* s) {
    std::string result;
    for (; *s != 0; ++s)
        result += *s < 0x80 ? static_cast<char>(*s) : '?';
    return result;
}

// The members that derived classes see, and the reference count in front of the text.
template <class Kind>
class Open : public Kind::String {
public:
    using Base = typename Kind::String;
    using Base::AllocBuffer;
    using Base::AssignCopy;
    using Base::Base;
    using Base::ConcatCopy;
    using Base::ConcatCopyTo;
    using Base::Init;
    using Base::ReallocBuffer;
    using Base::Release;

    Open() = default;
    explicit Open(std::string_view ascii) : Base(text<Kind>(ascii).c_str()) {}

    int count() const { return reinterpret_cast<const int*>(this->GetData())[-3]; }
};

// Rows of a table that hold in some code pages only. The tests run in a single-byte page and in 932.
enum class Page { kAny, kSingleByte, k932 };

inline bool applies(Page page) { return page == Page::kAny || (page == Page::k932) == (GetACP() == 932); }
