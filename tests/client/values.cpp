// Typed values in variants: without loss, or not at all; and converted.
#include "qzvalue.h"

#include "expect.h"

#include <cmath>
#include <cstdio>

namespace {

template <class T>
struct Row {
    CQZVariant from;
    std::optional<T> expected;
};

template <class T>
void read(const char* type, std::initializer_list<Row<T>> rows) {
    int number = 0;
    for (const Row<T>& row : rows) {
        char what[80];
        std::snprintf(what, sizeof what, "%s, row %d: a variant of type %d", type, ++number, row.from.vt);
        expect(qz::from_variant<T>(row.from) == row.expected, what);
    }
}

CQZVariant blob_without_bytes(unsigned size) {
    CQZVariant v;
    v.vt = QZVT_BLOB;
    v.blobVal = {size, nullptr};
    return v;
}

constexpr auto none = std::nullopt;
const double kInfinity = std::numeric_limits<double>::infinity();

void read_numbers() {
    read<int>("int", {{5, 5},
                      {5l, 5},
                      {5ul, 5},
                      {-5l, -5},
                      {CQZVariant(static_cast<unsigned char>(200)), 200},
                      {2147483648u, none},
                      {2147483647u, 2147483647},
                      {-3.0, -3},
                      {2.5, none},
                      {2147483648.0, none},
                      {-2147483648.0, -2147483647 - 1},
                      {std::nan(""), none},
                      {kInfinity, none},
                      {1.5f, none},
                      {2.0f, 2},
                      {"5", none},
                      {CQZVariant(1, QZVT_BOOL), none},
                      {CQZVariant(), none}});
    read<unsigned char>("unsigned char", {{255, static_cast<unsigned char>(255)}, {256, none}, {-1, none}});
    read<unsigned short>("unsigned short", {{65535.0, static_cast<unsigned short>(65535)}, {65536u, none}});
    read<unsigned>("unsigned", {{4294967295ul, 4294967295u}, {-1, none}, {4294967295.0, 4294967295u}});
    read<long>("long", {{7, 7l}, {4294967295u, none}});
    read<unsigned long>("unsigned long", {{7, 7ul}, {-7, none}});
    read<double>("double", {{2.5, 2.5}, {2.5f, 2.5}, {-7, -7.0}, {4294967295u, 4294967295.0}, {"2.5", none}});
    read<float>("float", {{2.5, 2.5f},
                          {0.1, none},
                          {1e300, none},
                          {kInfinity, std::numeric_limits<float>::infinity()},
                          {16777216, 16777216.0f},
                          {16777217, none}});
    expect(std::isnan(qz::from_variant<float>(CQZVariant(std::nan(""))).value_or(0)),
           "no number is none as a float");
    read<bool>(
        "bool",
        {{CQZVariant(1, QZVT_BOOL), true}, {CQZVariant(0, QZVT_BOOL), false}, {1, none}, {"Yes", none}});
}

void read_others() {
    read<std::string>("std::string", {{"text", "text"},
                                      {L"text", "text"},
                                      {L"\x5D0", none},
                                      {static_cast<const char*>(nullptr), ""},
                                      {7, none},
                                      {CQZVariant(), none}});
    read<std::wstring>(
        "std::wstring",
        {{L"text", L"text"}, {"text", L"text"}, {static_cast<const wchar_t*>(nullptr), L""}, {2.5, none}});
    expect(qz::from_variant<CXString>(CQZVariant("a")).value() == "a" &&
               qz::from_variant<CXStringW>(CQZVariant("a")).value() == L"a",
           "texts as strings of the library");

    const unsigned char bytes[] = {1, 0, 3};
    read<qz::Bytes>("bytes", {{qz::to_variant(bytes, 3), qz::Bytes{1, 0, 3}},
                              {qz::to_variant(qz::Bytes()), qz::Bytes()},
                              {blob_without_bytes(2), qz::Bytes{0, 0}},
                              {"abc", none}});

    const CQZVariant rect = qz::to_variant(tagRECT{1, 2, 3, 4});
    expect(qz::from_variant<tagRECT>(rect).value().bottom == 4 && !qz::from_variant<tagRRECT>(rect),
           "a rectangle");
    expect(qz::from_variant<tagSIZE>(CQZVariant(tagSIZE{5, 6})).value().cy == 6, "a size");
    expect(qz::from_variant<tagRSIZE>(CQZVariant(tagRSIZE{5, .5})).value().cy == .5, "a real size");
    expect(qz::from_variant<tagPOINT>(CQZVariant(tagPOINT{5, 6})).value().y == 6, "a point");
    expect(qz::from_variant<tagRPOINT>(CQZVariant(tagRPOINT{5, .5})).value().y == .5, "a real point");
    expect(qz::from_variant<tagRRECT>(CQZVariant(tagRRECT{1, 2, 3, .5})).value().bottom == .5,
           "a real rectangle");
}

void write_values() {
    const unsigned char byte = 7;
    const struct {
        CQZVariant made;
        unsigned short code;
    } rows[] = {
        {qz::to_variant(true), QZVT_BOOL},
        {qz::to_variant(byte), QZVT_UCHAR},
        {qz::to_variant(7l), QZVT_LONG},
        {qz::to_variant(7u), QZVT_UINT},
        {qz::to_variant(7.0f), QZVT_FLOAT},
        {qz::to_variant("7"), QZVT_TEXT},
        {qz::to_variant(std::string_view("7")), QZVT_TEXT},
        {qz::to_variant(std::string("7")), QZVT_TEXT},
        {qz::to_variant(CXStringW(L"7")), QZVT_WTEXT},
        {qz::to_variant(std::wstring(L"7")), QZVT_WTEXT},
        {qz::to_variant(tagRPOINT{7, 7}), QZVT_RPOINT},
        {qz::to_variant(CQZVariant(7ul)), QZVT_ULONG},
        {qz::to_variant(CQZRef<IQZUnknown>()), QZVT_OBJECT},
    };
    for (const auto& row : rows)
        expect(row.made.vt == row.code, "a value gets its type");
}

void convert_values() {
    expect(qz::convert<int>(CQZVariant("12abc")) == 12 && !qz::convert<int>(CQZVariant("abc")),
           "text is scanned");
    expect(qz::convert<int>(CQZVariant(2.9)) == 2 &&
               qz::convert<unsigned char>(CQZVariant(300)) == static_cast<unsigned char>(44),
           "numbers are cut");
    expect(qz::convert<std::string>(qz::to_variant(true)) == "Yes", "booleans have texts");
    expect(!qz::convert<bool>(CQZVariant("Yes")), "that are not read back");
    expect(qz::convert<double>(CQZVariant()) == 0.0, "nothing is zero");
}

} // namespace

void use_values() {
    read_numbers();
    read_others();
    write_values();
    convert_values();
}
