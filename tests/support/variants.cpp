#include "support/variants.h"

#include <charconv>
#include <cstdio>
#include <initializer_list>
#include <iterator>

std::vector<CQZVariant> one_of_each(CountingObject& object) {
    static unsigned char bytes[] = {1, 2, 0xFF};
    const CQZVariant samples[] = {
        CQZVariant(),
        CQZVariant(1, QZVT_BOOL),
        CQZVariant(static_cast<unsigned char>(200)),
        CQZVariant(static_cast<unsigned short>(60000)),
        CQZVariant(4000000000ul),
        CQZVariant(-70000),
        CQZVariant(3000000000u),
        CQZVariant(-5l),
        CQZVariant(-2.5),
        CQZVariant(3.75f),
        CQZVariant("7"),
        CQZVariant(tagSIZE{3, -4}),
        CQZVariant(tagRSIZE{2.5, -2.5}),
        CQZVariant(tagPOINT{-7, 8}),
        CQZVariant(tagRPOINT{1.4, -1.6}),
        CQZVariant(tagRECT{0, 0, 11, 10}),
        CQZVariant(tagRRECT{0, 0, 9.6, 9.4}),
        CQZVariant(tagQZBLOB{sizeof bytes, bytes}),
        CQZVariant(&object),
        CQZVariant(L"42"),
    };
    return std::vector<CQZVariant>(std::begin(samples), std::end(samples));
}

namespace {

template <class... Arguments>
std::string print(const char* format, Arguments... arguments) {
    char text[160];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

// With a point in every locale.
std::string show_reals(std::initializer_list<double> reals) {
    std::string text;
    for (const double real : reals) {
        char digits[40];
        const auto end =
            std::to_chars(digits, digits + sizeof digits, real, std::chars_format::general, 14).ptr;
        text.append(text.empty() ? 0 : 1, ',').append(digits, end);
    }
    return text;
}

// Of a large one the start and the size.
std::string show_blob(const tagQZBLOB& blob) {
    constexpr unsigned kMost = 32;
    if (blob.pBlobData == nullptr) return print("%u null", blob.cbSize);
    std::string text;
    for (unsigned i = 0; i < blob.cbSize && i < kMost; ++i)
        text += print("%02X", static_cast<const unsigned char*>(blob.pBlobData)[i]);
    return blob.cbSize <= kMost ? text : text + print("... of %u", blob.cbSize);
}

std::string show_wide(const wchar_t* text) {
    std::string shown;
    for (; *text != 0; ++text)
        shown += *text < 0x80 ? print("%c", static_cast<char>(*text)) : print("<%04x>", *text);
    return "'" + shown + "'";
}

const char* const kNames[QZVT_COUNT] = {"empty",  "bool",   "byte",  "word", "ulong",  "int",   "uint",
                                        "long",   "double", "float", "text", "size",   "rsize", "point",
                                        "rpoint", "rect",   "rrect", "blob", "object", "wide"};

} // namespace

std::string show(const tagQZVARIANT& v) {
    switch (v.vt) {
    case QZVT_EMPTY:
        return "";
    case QZVT_BOOL:
        return print("%d", v.boolVal);
    case QZVT_UCHAR:
        return print("%u", v.ucharVal);
    case QZVT_USHORT:
        return print("%u", v.ushortVal);
    case QZVT_ULONG:
        return print("%lu", v.ulongVal);
    case QZVT_INT:
        return print("%d", v.intVal);
    case QZVT_UINT:
        return print("%u", v.uintVal);
    case QZVT_LONG:
        return print("%ld", v.longVal);
    case QZVT_DOUBLE:
        return show_reals({v.doubleVal});
    case QZVT_FLOAT:
        return show_reals({static_cast<double>(v.floatVal)});
    case QZVT_TEXT:
        return v.pszVal != nullptr ? "'" + std::string(v.pszVal) + "'" : "null";
    case QZVT_SIZE:
        return print("%ld,%ld", v.sizeVal.cx, v.sizeVal.cy);
    case QZVT_RSIZE:
        return show_reals({v.rsizeVal.cx, v.rsizeVal.cy});
    case QZVT_POINT:
        return print("%ld,%ld", v.pointVal.x, v.pointVal.y);
    case QZVT_RPOINT:
        return show_reals({v.rpointVal.x, v.rpointVal.y});
    case QZVT_RECT: {
        const tagRECT& r = v.rectVal;
        return print("%ld,%ld,%ld,%ld", r.left, r.top, r.right, r.bottom);
    }
    case QZVT_RRECT: {
        const tagRRECT& r = v.rrectVal;
        return show_reals({r.left, r.top, r.right, r.bottom});
    }
    case QZVT_BLOB:
        return show_blob(v.blobVal);
    case QZVT_OBJECT:
        return v.pUnkVal != nullptr ? "object" : "null";
    case QZVT_WTEXT:
        return v.pwszVal != nullptr ? show_wide(v.pwszVal) : "null";
    default:
        return print("code %u", v.vt);
    }
}

std::string describe(const tagQZVARIANT& v) {
    if (v.vt == QZVT_EMPTY || v.vt >= QZVT_COUNT) return v.vt == QZVT_EMPTY ? kNames[0] : show(v);
    return std::string(kNames[v.vt]) + " " + show(v);
}
