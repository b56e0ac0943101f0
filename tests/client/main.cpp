// A program as clients of the library write it, built in each language version they use. It returns the
// number of expectations that did not come true.
#include "qzcore.h"
#include "qzref.h"

#include "document.h"
#include "expect.h"

#include <cstdio>
#include <cstring>

namespace {

int failures = 0;

void use_strings() {
    CXString path("C:\\data");
    path.AddDirDelim();
    path = path + "file.txt";
    expect(path == "C:\\data\\file.txt", "a path is put together");
    expect(path.FileExt() == "txt", "its extension is found");
    CXStringW wide(path.GetData());
    wide.Upper();
    expect(wide == L"C:\\DATA\\FILE.TXT", "wide texts work alike");
    CXString shown;
    shown.Format("%d of %s", 3, "five");
    expect(shown == "3 of five", "texts are formatted");
}

void use_variants() {
    CQZVariant value("2.5");
    expect(value.ChangeType(QZVT_DOUBLE) == 1 && static_cast<double>(value) == 2.5, "text becomes a number");
    value = tagRECT{1, 2, 3, 4};
    const CQZVariant copy(value);
    expect(value == copy, "a copy is equal");
    bool same = value == static_cast<const tagQZVARIANT&>(copy);
    same = same && value == static_cast<const tagQZVARIANT*>(&copy);
    expect(same, "records compare as well");
    int field = 0;
    expect(CQZVariant(7).BindToValue(QZVT_INT, &field) == 1 && field == 7, "a value goes into a field");
    const QZBlob blob(16), blob_copy(blob);
    expect(blob == blob_copy, "blobs compare");
}

void use_documents() {
    const auto settings = CQZRef<IParam>::Adopt(new_MemParam());
    const CQZVariant width(800), title(L"title");
    settings->SetValue("window\\width", &width);
    settings->SetValue("window\\title", &title);
    const auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    expect(save_document(*stream, *settings), "a tree is saved");
    stream->Seek(0, 0);
    const auto loaded = CQZRef<IParam>::Adopt(load_document(*stream));
    CQZVariant found;
    expect(loaded->GetValue("window\\width", &found) == 1 && found == width, "and read back");
    CXString text;
    expect(Param_Param2String(loaded.Get(), text) == 1 && text.Find("iwidth") < 0 && text.Find("width") >= 0,
           "and shown as a text");
}

} // namespace

void expect(bool ok, const char* what) {
    if (ok) return;
    ++failures;
    std::printf("failed: %s\n", what);
}

int main() {
    use_strings();
    use_variants();
    use_documents();
    use_texts();
    use_values();
    use_trees();
    use_ranges();
    use_files();
    use_progress();
    if (failures == 0) std::puts("every expectation came true");
    return failures;
}
