#include "qzcore.h"

#include <cstdio>

int main() {
    // A tree in memory; CQZRef holds the reference and gives it up.
    const auto settings = CQZRef<IParam>::Adopt(new_MemParam());
    const auto grid = CQZRef<IParam>::Adopt(settings->CreateSubParam("View\\Grid"));
    const CQZVariant spacing(12.5);
    const CQZVariant visible(1, QZVT_BOOL);
    grid->SetValue("Spacing", &spacing);
    grid->SetValue("Visible", &visible);

    // Its binary form, written to a stream and read into another tree.
    const auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    SaveParamToXStream(stream.Get(), settings.Get());
    const auto copy = CQZRef<IParam>::Adopt(new_MemParam());
    stream->Seek(0, 0);
    LoadParamFromXStream(stream.Get(), copy.Get());

    // A value by its path, converted to text.
    CQZVariant value;
    if (copy->GetValue("View\\Grid\\Spacing", &value) != 0 && value.ChangeType(QZVT_TEXT) != 0) {
        std::printf("%s read back from %u bytes\n", static_cast<char*>(value), stream->GetSize());
    }

    // The text form of the whole tree.
    CXString text;
    Param_Param2String(copy.Get(), text);
    std::printf("%s\n", text.GetData());
}
