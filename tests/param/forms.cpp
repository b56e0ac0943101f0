#include "forms.h"

#include "support/param_outline.h"

#include <gtest/gtest.h>

#include <charconv>

namespace forms {

namespace {

// Whatever the locale.
std::string printed(double number, int digits) {
    char text[64];
    const auto result = std::to_chars(text, text + sizeof text, number, std::chars_format::general, digits);
    return {text, result.ptr};
}

std::string list(std::initializer_list<double> numbers) {
    std::string text;
    for (const double number : numbers)
        text += (text.empty() ? "" : ",") + printed(number, 14);
    return text;
}

std::string list(const std::initializer_list<long>& numbers) {
    std::string text;
    for (const long number : numbers)
        text += (text.empty() ? "" : ",") + std::to_string(number);
    return text;
}

std::string hex(const tagQZBLOB& blob) {
    std::string text;
    for (unsigned i = 0; i < blob.cbSize; ++i)
        for (const int shift : {4, 0})
            text += "0123456789ABCDEF"[static_cast<const unsigned char*>(blob.pBlobData)[i] >> shift & 15];
    return text;
}

} // namespace

Tree tree_from(const std::string& text) {
    Tree tree = memory_tree();
    CXString form(text.c_str());
    EXPECT_EQ(Param_String2Param(form, tree.Get()), 1);
    return tree;
}

std::string text_of(IParam& tree) {
    CXString text("untouched");
    EXPECT_EQ(Param_Param2String(&tree, text), 1);
    return text.GetData();
}

Stream stream_of(std::string_view bytes) {
    Stream stream = Stream::Adopt(new_StreamOnMemory());
    stream->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
    stream->Seek(0, 0);
    return stream;
}

std::string content_of(IXStream& stream) {
    std::string bytes(stream.GetSize(), '\0');
    stream.Seek(0, 0);
    stream.Read(bytes.data(), static_cast<unsigned>(bytes.size()));
    return bytes;
}

std::string bytes_of(IParam& tree) {
    const Stream stream = stream_of({});
    EXPECT_EQ(SaveParamToXStream(stream.Get(), &tree), 1);
    return content_of(*stream);
}

Tree tree_of_bytes(std::string_view bytes) {
    Tree tree = memory_tree();
    EXPECT_EQ(LoadParamFromXStream(stream_of(bytes).Get(), tree.Get()), 1);
    return tree;
}

std::string describe(const tagQZVARIANT& v) {
    switch (v.vt) {
    case QZVT_EMPTY:
        return "empty";
    case QZVT_BOOL:
        return "bool " + std::to_string(v.boolVal);
    case QZVT_UCHAR:
        return "byte " + std::to_string(v.ucharVal);
    case QZVT_USHORT:
        return "word " + std::to_string(v.ushortVal);
    case QZVT_ULONG:
        return "ulong " + std::to_string(v.ulongVal);
    case QZVT_INT:
        return "int " + std::to_string(v.intVal);
    case QZVT_UINT:
        return "uint " + std::to_string(v.uintVal);
    case QZVT_LONG:
        return "long " + std::to_string(v.longVal);
    case QZVT_DOUBLE:
        return "double " + list({v.doubleVal});
    case QZVT_FLOAT:
        return "float " + printed(v.floatVal, 7);
    case QZVT_TEXT:
        return std::string("text '") + (v.pszVal != nullptr ? v.pszVal : "") + "'";
    case QZVT_SIZE:
        return "size " + list({v.sizeVal.cx, v.sizeVal.cy});
    case QZVT_RSIZE:
        return "rsize " + list({v.rsizeVal.cx, v.rsizeVal.cy});
    case QZVT_POINT:
        return "point " + list({v.pointVal.x, v.pointVal.y});
    case QZVT_RPOINT:
        return "rpoint " + list({v.rpointVal.x, v.rpointVal.y});
    case QZVT_RECT:
        return "rect " + list({v.rectVal.left, v.rectVal.top, v.rectVal.right, v.rectVal.bottom});
    case QZVT_RRECT:
        return "rrect " + list({v.rrectVal.left, v.rrectVal.top, v.rrectVal.right, v.rrectVal.bottom});
    case QZVT_BLOB:
        return "blob " + hex(v.blobVal);
    default:
        return "type " + std::to_string(v.vt);
    }
}

std::string value_in(IParam& tree, const char* name) {
    CQZVariant value;
    return tree.GetValue(name, &value) != 0 ? describe(value) : "none";
}

} // namespace forms
