// Narrow and wide text: from numbers, and from each other.
#include "qzstring.h"
#include "variant/convert_matrix.h"
#include "variant/number_print.h"
#include "variant/text.h"

namespace qzr {

namespace {

using V = tagQZVARIANT;

void store_text(V& out, const char* text, std::size_t length) { out.pszVal = mem_dup(text, length + 1); }
void store_text(V& out, const wchar_t* text, std::size_t length) {
    out.pwszVal = reinterpret_cast<wchar_t*>(mem_dup(text, (length + 1) * sizeof(wchar_t)));
}

template <class Char>
bool empty_text(V& out, const V&) {
    constexpr Char kNothing[1] = {};
    store_text(out, kNothing, 0);
    return true;
}

template <class Char>
bool yes_or_no(V& out, const V& src) {
    constexpr Char kYes[] = {'Y', 'e', 's', 0};
    constexpr Char kNo[] = {'N', 'o', 0};
    if (src.boolVal != 0) {
        store_text(out, kYes, 3);
    } else {
        store_text(out, kNo, 2);
    }
    return true;
}

template <class Char, auto From>
bool signed_text(V& out, const V& src) {
    Char text[kNumberRoom];
    store_text(out, text, print_int(text, src.*From));
    return true;
}

template <class Char, auto From>
bool unsigned_text(V& out, const V& src) {
    Char text[kNumberRoom];
    store_text(out, text, print_unsigned(text, src.*From));
    return true;
}

template <class Char, auto From>
bool real_text(V& out, const V& src) {
    Char text[kNumberRoom];
    store_text(out, text, print_real(text, src.*From));
    return true;
}

bool wide_to_narrow(V& out, const V& src) {
    const CXString narrow(src.pwszVal);
    out.pszVal = duplicate_text(narrow.GetData());
    return true;
}

bool narrow_to_wide(V& out, const V& src) {
    const CXStringW wide(src.pszVal);
    out.pwszVal = duplicate_text(wide.GetData());
    return true;
}

template <class Char>
constexpr ConvertRow text_row(Convert from_narrow, Convert from_wide) {
    ConvertRow row{};
    row[QZVT_EMPTY] = empty_text<Char>;
    row[QZVT_BOOL] = yes_or_no<Char>;
    row[QZVT_UCHAR] = unsigned_text<Char, &V::ucharVal>;
    row[QZVT_USHORT] = unsigned_text<Char, &V::ushortVal>;
    row[QZVT_ULONG] = unsigned_text<Char, &V::ulongVal>;
    row[QZVT_INT] = signed_text<Char, &V::intVal>;
    row[QZVT_UINT] = unsigned_text<Char, &V::uintVal>;
    row[QZVT_LONG] = signed_text<Char, &V::longVal>;
    row[QZVT_DOUBLE] = real_text<Char, &V::doubleVal>;
    row[QZVT_FLOAT] = real_text<Char, &V::floatVal>;
    row[QZVT_TEXT] = from_narrow;
    row[QZVT_WTEXT] = from_wide;
    return row;
}

} // namespace

constexpr ConvertRow kToText = text_row<char>(copy_value, wide_to_narrow);
constexpr ConvertRow kToWideText = text_row<wchar_t>(narrow_to_wide, copy_value);

} // namespace qzr
