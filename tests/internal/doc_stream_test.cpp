// The objects that a document's stream keeps: readers of stored objects reach them through the library's
// classes.
#include "stream/doc_stream.h"

#include <gtest/gtest.h>

namespace {

class Watched final : public CQZUnknownImpl<IQZUnknown> {
public:
    explicit Watched(int& living) : living_(living) { ++living_; }
    ~Watched() override { --living_; }

private:
    int& living_;
};

TEST(DocStream, KeepsObjectsAsLongAsItLives) {
    int living = 0;
    const auto made = [&living] { return CQZRef<IQZUnknown>::Adopt(new Watched(living)); };
    CQZRef<IXStream> stream;
    new_CIXDocStream(nullptr, CQZRef<IXStream>::Adopt(new_StreamOnMemory()).Get(), stream.Put(), 0);
    auto keeper = CQZRef<qzr::IObjectKeeper>::Query(stream.Get());
    ASSERT_TRUE(keeper);
    auto& doc = static_cast<qzr::CIXDocStream&>(*keeper);

    const auto first = made();
    doc.keep_object("first", first);
    for (int i = 0; i < 1000; ++i)
        doc.keep_object(("object " + std::to_string(i * i)).c_str(), made());
    EXPECT_EQ(doc.kept_object("first"), first.Get());
    EXPECT_EQ(doc.kept_object("none"), nullptr);
    const int before = living;
    doc.keep_object("first", made()); // takes the old one's place
    EXPECT_NE(doc.kept_object("first"), first.Get());
    EXPECT_EQ(living, before + 1);
    keeper.Reset();
    stream.Reset();
    EXPECT_EQ(living, 1) << "the one that is held here";
}

} // namespace
