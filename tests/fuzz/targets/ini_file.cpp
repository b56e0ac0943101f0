// A live tree over an INI file that others wrote, read by the platform. What is written reads the same and
// changes nothing else; what is deleted is gone, and sections of others stay.
#include "fuzz/target.h"

#include "qzexception.h"
#include "qzstring.h"
#include "qzvariant.h"
#include "support/scratch_folder.h"
#include "support/tree_names.h"

#include <cstring>

namespace {

using Tree = CQZRef<IParam>;
using namespace std::string_literals;

std::vector<std::string> seeds() {
    return {"[\\]\r\na=i1\r\nb=stext\r\n@=\r\n[\\s\\t]\r\nc=x00FF\r\nd=t1,2,3,4\r\n[plain]\r\ne=R1.5\r\n",
            "lost=i1\n[\\a\n[\\b] ;c\nv=\"s quoted \"\nV=i2\n[\\B]\nw\n=i5\n[]\nu=i1\n[\\a\\\\b]\nx=f1\n",
            "[\\]\n=hides\n@=i7\n[\\s]\n@=i8\n@\n",
            "\xFF\xFE[\0\\\0]\0\n\0a\0=\0i\0"
            "1\0"s,
            "\xEF\xBB\xBF[\\]\na=i1\n[\\\xE4]\n\xC4=s\xFF\n"};
}

std::vector<std::string> pieces() {
    return fuzz::parts("[~]~[\\~\\~[\\s]\n~[\\s\\t]\r\n~[plain]\n~=~v=i1\n~@~\n~\r~\0~;~\"~'~=x~=t~=b~=s~#~"
                       "\x1A~\xFF\xFE~ = s "s,
                       {"[\\" + std::string(300, 'x') + "]\n"});
}

bool is_mark(const std::string& line) { return line == "@" || line == "@=" || line == "@=e"; }

// The lines of all sections as the platform has them, or of those that are no nodes.
std::string lines_of(const std::string& path, bool of_nodes) {
    constexpr DWORD kRoom = 0x10000;
    std::string names(kRoom, '\0'), all;
    GetPrivateProfileSectionNamesA(names.data(), kRoom, path.c_str());
    for (const char* name = names.c_str(); *name != '\0'; name += std::strlen(name) + 1) {
        if (*name == '\\' && !of_nodes) continue;
        std::string lines(kRoom, '\0');
        GetPrivateProfileSectionA(name, lines.data(), kRoom, path.c_str());
        for (const char* line = lines.c_str(); *line != '\0'; line += std::strlen(line) + 1)
            if (!is_mark(line)) all.append(name).append("]").append(line).append("\n");
    }
    return all;
}

void set_and_read(IParam& node, const CQZVariant& value) {
    node.SetValue("fuzz", &value);
    CQZVariant again;
    fuzz::require(node.GetValue("fuzz", &again) == 1 && again == value, "changed by a round trip");
}

// A listed name may be one that narrow names do not reach.
void require_empty(IParam& node) {
    fuzz::require(children_of(node).empty(), "a child is left");
    for (const std::string& name : take_names(node.EnumValues())) {
        CQZVariant value;
        const bool left = node.GetValue(name.c_str(), &value) != 0 && (name != "@" || value.vt != QZVT_EMPTY);
        fuzz::require(!left, "a value is left");
    }
}

// Which it keeps for as long as a file looks the same.
void forget(const std::string& path) { WritePrivateProfileStringA(nullptr, nullptr, nullptr, path.c_str()); }

// Whatever writes first changes what the platform cannot keep: a section without a name is the end of the one
// before it.
void rewrite(const std::string& path) {
    forget(path);
    WritePrivateProfileStringA("none", "key", "text", path.c_str());
    WritePrivateProfileStringA("none", nullptr, nullptr, path.c_str());
    forget(path);
}

void run(const std::string& input) {
    static const ScratchFolder folder;
    static const std::wstring wide_path = folder.path(L"live.ini");
    static const std::string path(wide_path.begin(), wide_path.end());
    folder.file(L"live.ini", input);
    rewrite(path);
    const std::string before = lines_of(path, true);
    const auto root = Tree::Adopt(new_IParamIniFile(wide_path.c_str()));
    CXString text;
    fuzz::require(Param_Param2String(root.Get(), text) == 1, "not written");
    const auto child = Tree::Adopt(root->OpenSubParam("fuzz child", 1));
    set_and_read(*child, CQZVariant(-42));
    set_and_read(*child, CQZVariant("some text"));
    root->DeleteSubParam("fuzz child");
    fuzz::require(lines_of(path, true) == before, "something else has changed");

    Param_String2Param(text, Tree::Adopt(root->OpenSubParam("fuzz child", 1)).Get());
    const std::string others = lines_of(path, false);
    if (input.size() % 2 == 0) {
        root->DeleteAllSubParams();
        root->DeleteAllValues();
    } else {
        root->Clear();
    }
    require_empty(*root);
    fuzz::require(lines_of(path, false) == others, "something of others has changed");
}

} // namespace

const fuzz::Target fuzz::kIniFile{
    .name = "ini_file", .run = run, .seeds = seeds, .pieces = pieces, .longest = 1024};
