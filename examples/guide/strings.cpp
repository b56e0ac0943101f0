// Strings: narrow ones of characters, wide ones of 16-bit units; paths as texts.
#include "guide.h"

#include "qzcore.h"

#include <cstdio>

void strings(const Argument&) {
    CXString text("one, two, three");
    CXString shared(text); // shares the block until one of them changes
    shared.Upper();
    std::printf("%s | %s\n", text.GetData(), shared.GetData());

    const int at = text.Find("two");
    text.Replace(at, 3, "2").Insert(0, "> ");
    std::printf("found at %d, now \"%s\", %u characters\n", at, text.GetData(), text.GetLength());
    text.Format("%s has %d items", "the list", 3);
    std::printf("%s\n", text.GetData());

    // Paths: the file system is never asked.
    CXString path("C:\\Drawings\\2024\\plan.old");
    path.ChangeFileExt("dwx");
    std::printf("%s = %s + %s, a %s\n", path.GetData(), path.FilePath().GetData(), path.FileName().GetData(),
                path.FileExt().GetData());
    path.ReducePathString(20);
    std::printf("%s\n", path.GetData());

    // Out of and into the strings of the standard library.
    const CXStringW wide(L"na\x00EFve \x20AC");
    const std::string utf8 = qz::utf8(wide);
    std::printf("%u units are %u bytes of UTF-8\n", wide.GetLength(), static_cast<unsigned>(utf8.size()));
    std::printf("and back: %s\n", qz::string_of(qz::wide(utf8)) == wide ? "the same" : "changed");
    if (qz::view(shared).find("TWO") != std::string_view::npos) std::printf("seen in place\n");
}
