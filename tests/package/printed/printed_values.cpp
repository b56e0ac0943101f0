// Values for gdb to look at. The debugger stops at looked_at, where everything is in place.
#include "qzcore.h"

#include <cstdio>

namespace {

struct Values {
    CXString text{"a \"quoted\" text"};
    CXString shared{text};
    CXString empty;
    CXStringW wide{L"wide \x0416\x20AC"};
    CXString* nothing = nullptr;

    CQZVariant none;
    CQZVariant yes{1, QZVT_BOOL};
    CQZVariant uchar{static_cast<unsigned char>(200)};
    CQZVariant ushort{static_cast<unsigned short>(65535)};
    CQZVariant ulong{4000000000UL};
    CQZVariant integer{-5};
    CQZVariant uint{4000000001U};
    CQZVariant long_integer{-6L};
    CQZVariant real{12.5};
    CQZVariant single{0.25F};
    CQZVariant narrow{"narrow"};
    CQZVariant null_text{static_cast<const char*>(nullptr)};
    CQZVariant size{tagSIZE{3, 4}};
    CQZVariant rsize{tagRSIZE{3.5, 4.5}};
    CQZVariant point{tagPOINT{-1, 2}};
    CQZVariant rpoint{tagRPOINT{-1.5, 2.5}};
    CQZVariant rect{tagRECT{1, 2, 3, 4}};
    CQZVariant rrect{tagRRECT{1.5, 2.5, 3.5, 4.5}};
    CQZVariant wide_text{L"wide \x0416"};
    CQZVariant blob;
    CQZVariant object;
    tagQZVARIANT invalid{};

    QZBlob short_blob{3UL};
    tagQZBLOB absent{7, nullptr};
    tagQZBLOB unreadable{7, reinterpret_cast<void*>(8)};

    CQZRef<IXStream> stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    CQZRef<IXStream> no_stream;
    CQZRef<IParam> tree = CQZRef<IParam>::Adopt(new_MemParam());
    CQZRef<IParam> empty_tree = CQZRef<IParam>::Adopt(new_MemParam());
    CQZRef<IParam> odd_tree = CQZRef<IParam>::Adopt(new_MemParam());
    CQZRef<IParam> large_tree = CQZRef<IParam>::Adopt(new_MemParam());
    CQZRef<IParam> file = CQZRef<IParam>::Adopt(new_IParamIniFile(L".\\printed.ini"));
    IParam* node = tree.Get();
};

void fill(Values& v) {
    unsigned char bytes[20];
    for (unsigned char i = 0; i < sizeof bytes; ++i)
        bytes[i] = i;
    v.blob = tagQZBLOB{sizeof bytes, bytes};
    v.object = static_cast<IQZUnknown*>(v.stream.Get());
    v.invalid.vt = 77;

    v.tree->SetValue("Spacing", &v.real);
    v.tree->SetValue("Title of it", &v.narrow);
    const auto grid = CQZRef<IParam>::Adopt(v.tree->CreateSubParam("View\\Grid"));
    grid->SetValue("Visible", &v.yes);
    CQZRef<IParam>::Adopt(v.tree->CreateSubParam("Print"));
    // Of two names with one hash: the name stays listed when its value is deleted by the other spelling.
    v.odd_tree->SetValue("boskui", &v.yes);
    v.odd_tree->DeleteValue("ckygvi");
    v.odd_tree->SetValue("gone", &v.yes);
    v.odd_tree->DeleteValue("gone");
    v.odd_tree->SetValue("rrect", &v.rrect);
    const CQZVariant long_text("a text of more than sixteen bytes");
    v.odd_tree->SetValue("long", &long_text);
    v.odd_tree->SetValue("blob", &v.blob);
    v.odd_tree->SetValue("object", &v.object);
    v.odd_tree->SetValue("wide", &v.wide_text);

    for (int i = 0; i < 515; ++i) {
        const CQZVariant value(i);
        CXString name;
        name.Format("n%d", i);
        v.large_tree->SetValue(name.GetData(), &value);
    }
}

__attribute__((noinline)) void looked_at(const Values& v) { std::printf("%u bytes\n", v.text.GetSize()); }

} // namespace

int main() {
    Values v;
    fill(v);
    looked_at(v);
}
