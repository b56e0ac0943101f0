#include "forms.h"

#include "support/param_outline.h"
#include "support/variants.h"

#include <gtest/gtest.h>

namespace forms {

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

std::string value_in(IParam& tree, const char* name) {
    CQZVariant value;
    return tree.GetValue(name, &value) != 0 ? describe(value) : "none";
}

} // namespace forms
