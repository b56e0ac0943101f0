// Variants.
#include "bench/ledger.h"
#include "qzvariant.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <variant>
#include <vector>

namespace bench {
namespace {

using benchmark::DoNotOptimize;
using benchmark::State;

struct Point {
    double x, y;
    friend bool operator==(const Point& a, const Point& b) { return a.x == b.x && a.y == b.y; }
};
using Standard = std::variant<std::monostate, bool, int, double, std::string, Point, std::vector<char>>;

const char kText[] = "a text longer than small buffers";
std::array<char, 24> g_bytes = {1, 2, 3};

std::vector<CQZVariant> variant_mix() {
    tagQZBLOB blob{sizeof g_bytes, g_bytes.data()};
    return {CQZVariant(true, QZVT_BOOL), CQZVariant(42),  CQZVariant(2.5), CQZVariant(kText),
            CQZVariant(tagRPOINT{1, 2}), CQZVariant(blob)};
}

std::vector<Standard> standard_mix() {
    return {Standard(true),        Standard(42),
            Standard(2.5),         Standard(std::string(kText)),
            Standard(Point{1, 2}), Standard(std::vector<char>(g_bytes.begin(), g_bytes.end()))};
}

void mix_row(Ledger& ledger) {
    ledger.row({"variants", "set, copy, clear a mix", "std::variant", 1.35,
                [] {
                    const std::vector<CQZVariant> mix = variant_mix();
                    const CQZVariant copy(mix[3]);
                    return std::strcmp(copy.pszVal, kText) == 0 && mix[5].blobVal.cbSize == sizeof g_bytes;
                },
                [](State& state) {
                    const std::vector<CQZVariant> mix = variant_mix();
                    for (auto _ : state)
                        for (const CQZVariant& source : mix) {
                            CQZVariant set;
                            set = source;
                            CQZVariant copy(set);
                            DoNotOptimize(&copy);
                            copy.Clear();
                        }
                },
                [](State& state) {
                    const std::vector<Standard> mix = standard_mix();
                    for (auto _ : state)
                        for (const Standard& source : mix) {
                            Standard set;
                            set = source;
                            Standard copy(set);
                            DoNotOptimize(&copy);
                            copy = std::monostate();
                        }
                }});
}

void compare_row(Ledger& ledger) {
    ledger.row(
        {"variants", "compare equal pairs", "std::variant", 2.0,
         [] { return (variant_mix()[3] == variant_mix()[3]) != 0 && variant_mix()[1] == CQZVariant(42); },
         [](State& state) {
             const std::vector<CQZVariant> a = variant_mix();
             const std::vector<CQZVariant> b = variant_mix();
             for (auto _ : state)
                 for (std::size_t i = 0; i < a.size(); ++i)
                     DoNotOptimize(a[i] == b[i]);
         },
         [](State& state) {
             const std::vector<Standard> a = standard_mix();
             const std::vector<Standard> b = standard_mix();
             for (auto _ : state)
                 for (std::size_t i = 0; i < a.size(); ++i)
                     DoNotOptimize(a[i] == b[i]);
         }});
}

constexpr int kIntegers[] = {0, 7, -1234, 65536, 2147483647};
constexpr double kReals[] = {0.5, -3.25, 1234.5678, 0.001, 31415.926535};

void convert_row(Ledger& ledger) {
    ledger.row({"variants", "convert numbers and text both ways", "snprintf, strtol, strtod", 0.45,
                [] {
                    CQZVariant v(-1234);
                    if (v.ChangeType(QZVT_TEXT) == 0 || std::strcmp(v.pszVal, "-1234") != 0) return false;
                    if (v.ChangeType(QZVT_INT) == 0 || v.intVal != -1234) return false;
                    v = CQZVariant(1234.5678);
                    return v.ChangeType(QZVT_TEXT) != 0 && v.ChangeType(QZVT_DOUBLE) != 0 &&
                           std::fabs(v.doubleVal - 1234.57) < 1e-9;
                },
                [](State& state) {
                    for (auto _ : state) {
                        for (const int number : kIntegers) {
                            CQZVariant v(number);
                            v.ChangeType(QZVT_TEXT);
                            v.ChangeType(QZVT_INT);
                            DoNotOptimize(v.intVal);
                        }
                        for (const double number : kReals) {
                            CQZVariant v(number);
                            v.ChangeType(QZVT_TEXT);
                            v.ChangeType(QZVT_DOUBLE);
                            DoNotOptimize(v.doubleVal);
                        }
                    }
                },
                [](State& state) {
                    char text[64];
                    for (auto _ : state) {
                        for (const int number : kIntegers) {
                            std::snprintf(text, sizeof text, "%d", number);
                            DoNotOptimize(std::strtol(text, nullptr, 10));
                        }
                        for (const double number : kReals) {
                            std::snprintf(text, sizeof text, "%g", number);
                            DoNotOptimize(std::strtod(text, nullptr));
                        }
                    }
                }});
}

} // namespace

void variant_rows(Ledger& ledger) {
    mix_row(ledger);
    compare_row(ledger);
    convert_row(ledger);
}

} // namespace bench
