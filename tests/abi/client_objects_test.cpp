// Objects of the client in the library's hands.
#include "abi/client_objects.h"
#include "qzcore.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(ClientObject, AStreamOfTheClientServesTheLibrary) {
    const auto stream = CQZRef<ClientStream>::Adopt(new ClientStream);
    const auto tree = CQZRef<IParam>::Adopt(new_MemParam());
    const CQZVariant five(5), six(6);
    tree->SetValue("value", &five);
    tree->SetValue("child\\value", &six);
    EXPECT_EQ(SaveParamToXStream(stream.Get(), tree.Get()), 1);
    static const unsigned char golden[] = "child\0"
                                          "\0"
                                          "value\0\x05\0\x06\0\0\0"
                                          "\0"
                                          "\0"
                                          "value\0\x05\0\x05\0\0\0";
    ASSERT_EQ(stream->bytes.size(), sizeof golden);
    EXPECT_EQ(std::memcmp(stream->bytes.data(), golden, sizeof golden), 0);

    stream->position = 0;
    const auto back = CQZRef<IParam>::Adopt(new_MemParam());
    EXPECT_EQ(LoadParamFromXStream(stream.Get(), back.Get()), 1);
    EXPECT_EQ(Param_Cmp(tree.Get(), back.Get()), 1);
    EXPECT_EQ(Param_Cmp(back.Get(), tree.Get()), 1);

    stream->refuse_writing = true; // its exception is understood
    EXPECT_EQ(SaveParamToXStream(stream.Get(), tree.Get()), 0);
    EXPECT_THROW(WriteObjectToXStream(stream.Get(), nullptr), CXFileException);
}

} // namespace
