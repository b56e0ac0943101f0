// Strings.
#include "bench/ledger.h"
#include "qzstring.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <windows.h>

namespace bench {
namespace {

using benchmark::DoNotOptimize;
using benchmark::State;

const char kText40[] = "forty characters of quite ordinary text.";
const char kText48[] = "forty-eight characters of quite ordinary texts..";
const char kText60[] = "  sixty characters of text with some blanks at both ends   ";
const char kNeedle[] = "needle";
static_assert(sizeof kText40 == 41 && sizeof kText48 == 49 && sizeof kText60 == 60);

std::string haystack() {
    std::string text;
    while (text.size() < 1000)
        text += "the need of nettles ";
    text.resize(1000);
    return text.replace(990, 6, kNeedle);
}

void copy_rows(Ledger& ledger) {
    ledger.row({"strings", "copy, read, destroy a 40-character string", "std::string", 0.10,
                [] { return CXString(CXString(kText40)) == kText40; },
                [](State& state) {
                    const CXString text(kText40);
                    for (auto _ : state) {
                        const CXString copy(text);
                        DoNotOptimize(copy.GetData());
                    }
                },
                [](State& state) {
                    const std::string text(kText40);
                    for (auto _ : state) {
                        const std::string copy(text);
                        DoNotOptimize(copy.data());
                    }
                }});
}

CXString appended(int times) {
    CXString text;
    for (int i = 0; i < times; ++i)
        text.Insert(INT_MAX, "8 chars.");
    return text;
}

// What appending costs when the buffer is always exactly as long as the text and nobody keeps the length: the
// class promises both.
void append_exactly(int times) {
    auto* text = static_cast<char*>(std::calloc(1, 1));
    for (int i = 0; i < times; ++i) {
        const std::size_t length = std::strlen(text);
        text = static_cast<char*>(std::realloc(text, length + 9));
        std::memcpy(text + length, "8 chars.", 9);
    }
    DoNotOptimize(text);
    std::free(text);
}

// The same for one who keeps the length.
void append_exactly_with_length(int times) {
    char* text = nullptr;
    std::size_t length = 0;
    for (int i = 0; i < times; ++i) {
        text = static_cast<char*>(std::realloc(text, length + 9));
        std::memcpy(text + length, "8 chars.", 9);
        length += 8;
    }
    DoNotOptimize(text);
    std::free(text);
}

void append_rows(Ledger& ledger) {
    const auto check = [] { return appended(2000).GetSize() == 16000 && appended(64).GetSize() == 512; };
    const Body append_2000 = [](State& state) {
        for (auto _ : state)
            DoNotOptimize(appended(2000).GetData());
    };
    ledger.row({"strings", "append 8 characters 2000 times", "strlen, exact-size realloc", 1.3, check,
                append_2000, [](State& state) {
                    for (auto _ : state)
                        append_exactly(2000);
                }});
    // No target that the class could meet: it finds the end of the text anew each time, 16 MB in all.
    ledger.row({"strings", "append 8 characters 2000 times, beside a kept length",
                "exact-size realloc, length kept", 1.3, check, append_2000, [](State& state) {
                    for (auto _ : state)
                        append_exactly_with_length(2000);
                }});
    ledger.row({"strings", "append 8 characters 64 times", "std::string", 2.5, check,
                [](State& state) {
                    for (auto _ : state)
                        DoNotOptimize(appended(64).GetData());
                },
                [](State& state) {
                    for (auto _ : state) {
                        std::string text;
                        for (int i = 0; i < 64; ++i)
                            text += "8 chars.";
                        DoNotOptimize(text.data());
                    }
                }});
}

template <class String>
Body join(String a, String b) {
    return [a, b](State& state) {
        for (auto _ : state) {
            const String joined = a + b;
            DoNotOptimize(&joined);
        }
    };
}

void join_rows(Ledger& ledger) {
    const std::string half(kText48, 24);
    const CXString half_x(half.c_str());
    ledger.row({"strings", "join 24 + 24 characters", "std::string", 0.6,
                [=] { return half_x + half_x == (half + half).c_str(); }, join(half_x, half_x),
                join(half, half)});
}

void find_rows(Ledger& ledger) {
    const std::string text = haystack();
    const std::wstring wide(text.begin(), text.end());
    const CXString text_x(text.c_str());
    const CXStringW wide_x(wide.c_str());
    ledger.row({"strings", "find 6 characters at 990 of 1000, narrow", "std::string::find", 0.3,
                [=] { return text_x.Find(kNeedle) == 990 && text.find(kNeedle) == 990; },
                [=](State& state) {
                    for (auto _ : state)
                        DoNotOptimize(text_x.Find(kNeedle));
                },
                [=](State& state) {
                    for (auto _ : state)
                        DoNotOptimize(text.find(kNeedle));
                }});
    ledger.row({"strings", "find 6 characters at 990 of 1000, wide", "std::wstring::find", 0.6,
                [=] { return wide_x.Find(L"needle") == 990 && wide.find(L"needle") == 990; },
                [=](State& state) {
                    for (auto _ : state)
                        DoNotOptimize(wide_x.Find(L"needle"));
                },
                [=](State& state) {
                    for (auto _ : state)
                        DoNotOptimize(wide.find(L"needle"));
                }});
}

void format_rows(Ledger& ledger) {
    ledger.row({"strings", "format text, integer, real", "snprintf into a stack buffer", 1.3,
                [] {
                    CXString text;
                    text.Format("%s has %d of %g", "width", 12345, 0.75);
                    return text == "width has 12345 of 0.75";
                },
                [](State& state) {
                    CXString text;
                    for (auto _ : state) {
                        text.Format("%s has %d of %g", "width", 12345, 0.75);
                        DoNotOptimize(text.GetData());
                    }
                },
                [](State& state) {
                    char text[128];
                    for (auto _ : state) {
                        std::snprintf(text, sizeof text, "%s has %d of %g", "width", 12345, 0.75);
                        DoNotOptimize(&text[0]);
                    }
                }});
}

void code_page_rows(Ledger& ledger) {
    ledger.row({"strings", "48 characters narrow to wide to narrow", "the two platform calls", 1.0,
                [] { return CXString(CXStringW(kText48)) == kText48; },
                [](State& state) {
                    const CXString text(kText48);
                    for (auto _ : state) {
                        const CXStringW wide(text.GetData());
                        const CXString back(wide.GetData());
                        DoNotOptimize(back.GetData());
                    }
                },
                [](State& state) {
                    const std::string text(kText48);
                    wchar_t wide[64];
                    char back[64];
                    for (auto _ : state) {
                        MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide, 64);
                        WideCharToMultiByte(CP_ACP, 0, wide, -1, back, 64, nullptr, nullptr);
                        DoNotOptimize(&back[0]);
                    }
                }});
}

CXString edited(const CXString& source) {
    CXString text(source);
    text.Insert(10, "more ");
    text.Delete(20, 4);
    text.Replace(30, 4, "other");
    text.TrimLeft();
    text.TrimRight();
    text.Upper();
    return text;
}

std::string edited(const std::string& source) {
    std::string text(source);
    text.insert(10, "more ");
    text.erase(20, 4);
    text.replace(30, 4, "other");
    const auto blank = [](unsigned char c) { return std::isspace(c) != 0; };
    text.erase(text.begin(), std::find_if_not(text.begin(), text.end(), blank));
    text.erase(std::find_if_not(text.rbegin(), text.rend(), blank).base(), text.end());
    for (char& c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

void edit_rows(Ledger& ledger) {
    ledger.row({"strings", "copy, insert, delete, replace, trim, upper on 60 characters", "std::string", 0.6,
                [] { return edited(CXString(kText60)) == edited(std::string(kText60)).c_str(); },
                [](State& state) {
                    const CXString text(kText60);
                    for (auto _ : state)
                        DoNotOptimize(edited(text).GetData());
                },
                [](State& state) {
                    const std::string text(kText60);
                    for (auto _ : state)
                        DoNotOptimize(edited(text).data());
                }});
    ledger.row({"strings", "compare 40 characters without case", "_stricmp", 0.5,
                [] { return CXString(kText40).CompareI("FORTY CHARACTERS of quite ordinary TEXT.") == 0; },
                [](State& state) {
                    const CXString text(kText40);
                    const CXString upper("FORTY CHARACTERS of quite ordinary TEXT.");
                    for (auto _ : state)
                        DoNotOptimize(text.CompareI(upper));
                },
                [](State& state) {
                    const std::string text(kText40);
                    const std::string upper("FORTY CHARACTERS of quite ordinary TEXT.");
                    for (auto _ : state)
                        DoNotOptimize(_stricmp(text.c_str(), upper.c_str()));
                }});
}

} // namespace

void string_rows(Ledger& ledger) {
    copy_rows(ledger);
    append_rows(ledger);
    join_rows(ledger);
    find_rows(ledger);
    format_rows(ledger);
    code_page_rows(ledger);
    edit_rows(ledger);
}

} // namespace bench
