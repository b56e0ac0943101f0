// Live INI files: what stands in the file afterwards, what is made of files that others wrote, and where the
// platform ends.
#include "forms.h"

#include "contracts/param_contract.h"
#include "support/file_failure.h"
#include "support/import_mock.h"
#include "support/scratch_folder.h"

#include "qzsupp.h"

#include <clocale>

namespace {

using namespace forms;

Tree open_ini(const std::wstring& path) { return Tree::Adopt(new_IParamIniFile(path.c_str())); }

struct IniBackend {
    static constexpr ParamDifferences differs{
        .drops_missing_node = false,
        .makes_missing_nodes = false,
        .deletes_by_path = true,
        .marks_nodes = true,
        .create_empties = false,
        .miss_leaves_out_alone = false,
        .holder_keeps_empty_node = false,
        .lost_types = 1u << QZVT_UCHAR | 1u << QZVT_OBJECT | 1u << QZVT_WTEXT,
    };
    CQZRef<IParam> root() const { return open_ini(folder.path(L"tree.ini")); }

    ScratchFolder folder;
};
INSTANTIATE_TYPED_TEST_SUITE_P(Ini, ParamContract, IniBackend);

class Ini : public testing::Test {
protected:
    // A file of its own for each: the platform may take one that was rewritten at once for the old one.
    Tree new_tree() {
        name_ = std::to_wstring(++files_) + L".ini";
        path_ = folder_.path(name_);
        return open_ini(path_);
    }
    Tree tree_on(std::string_view contents) {
        folder_.file(std::to_wstring(files_ + 1) + L".ini", contents);
        return new_tree();
    }

    // Through the platform, of the file opened last.
    std::string entry(const char* section, const char* key) const {
        char text[40000];
        GetPrivateProfileStringA(section, key, "", text, sizeof text, narrow(path_.c_str()).c_str());
        return text;
    }
    std::string contents() const { return folder_.contents(name_); }

    ScratchFolder folder_;
    std::wstring name_, path_;
    int files_ = 0;
};

// --- what is written ---------------------------------------------------------------------------------------

TEST_F(Ini, MarksEachNodeByAnEmptyValue) {
    const Tree root = new_tree();
    EXPECT_EQ(contents(), "[\\]\r\n@=e\r\n");
    const auto s = Tree::Adopt(root->CreateSubParam("s"));
    const auto t = Tree::Adopt(s->CreateSubParam("t"));
    set_int(*t, "v", 5);
    EXPECT_EQ(contents(), "[\\]\r\n@=e\r\n[\\s]\r\n@=e\r\n[\\s\\t]\r\n@=e\r\nv=i5\r\n");
    set_int(*root, nullptr, 7);
    set_int(*s, "@", 8);
    open_ini(path_);
    Tree::Adopt(root->CreateSubParam("s"));
    EXPECT_EQ(contents(), "[\\]\r\n@=i7\r\n[\\s]\r\n@=i8\r\n[\\s\\t]\r\n@=e\r\nv=i5\r\n");
    EXPECT_EQ(take_names(t->EnumValues()), (Names{"@", "v"}));
}

TEST_F(Ini, WritesALetterAndTheValue) {
    static unsigned char bytes[] = {0xAB, 0, 0x1F};
    const struct {
        CQZVariant value;
        const char* text;
        const char* read;
    } rows[] = {
        {CQZVariant(), "e", "empty"},
        {CQZVariant(static_cast<unsigned char>(171)), "b:L", "byte 0"},
        {CQZVariant(-5), "i-5", "int -5"},
        {CQZVariant("a \"q\" | text; = [x]"), "sa \"q\" | text; = [x]", "text 'a \"q\" | text; = [x]'"},
        {CQZVariant("  blanks  "), "s  blanks", "text '  blanks'"},
        {CQZVariant(tagQZBLOB{3, bytes}), "xAB001F", "blob AB001F"},
        {CQZVariant(L"wide"), "swide", "text 'wide'"},
    };
    const Tree root = new_tree();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        root->SetValue("v", &row.value);
        EXPECT_EQ(entry("\\", "V"), row.text);
        EXPECT_EQ(value_in(*root, "v"), row.read);
    }
    const CQZVariant object(root.Get());
    root->SetValue("v", &object); // is not stored, and replaces nothing
    EXPECT_EQ(entry("\\", "v"), "swide");
}

TEST_F(Ini, CreatesTheFoldersOnTheWayToTheFile) {
    const std::wstring path = folder_.path(L"a\\b\\c.ini");
    open_ini(path);
    EXPECT_EQ(folder_.contents(L"a\\b\\c.ini"), "[\\]\r\n@=e\r\n");
    folder_.file(L"file");
    EXPECT_EQ(failure_of([this] { open_ini(folder_.path(L"file\\x\\y.ini")); }).substr(0, 20),
              "code 7, operation 10");
}

// --- what others wrote -------------------------------------------------------------------------------------

TEST_F(Ini, ReadsWhatOthersWrote) {
    const Tree root = tree_on("outside=i1\r\n; comment\r\n[\\]\r\n; comment\r\n  A  =  i1  \r\nb=i0x10\r\n"
                              "c=\r\nd=q1\r\ne=i\r\nf\r\ng=\"i5\"\r\nh=I5\r\nj=i1;2\r\ni=sx\r\n;k=i1\n"
                              "l=i2\n[\\s]\nv=i3\r\n[\\]\r\nm=i4\r\n[\\T");
    const std::pair<const char*, const char*> rows[] = {
        {"a", "int 1"},      {"b", "int 16"},  {"c", "none"}, {"d", "none"},     {"e", "none"},
        {"f", "none"},       {"g", "int 5"},   {"h", "none"}, {"j", "int 1"},    {"k", "none"},
        {"i", "text 'x'"},   {"l", "int 2"},   {"m", "none"}, {"s\\v", "int 3"}, {"s\\", "empty"},
        {"outside", "none"}, {"x\\v", "none"},
    };
    for (const auto& [name, read] : rows)
        EXPECT_EQ(value_in(*root, name), read) << name;
    EXPECT_NE(contents().find("; comment\r\n[\\]\r\n; comment\r\n"), std::string::npos);
}

TEST_F(Ini, ClearsTheVariantWhenOnlyTheKeyIsMissing) {
    const Tree root = tree_on("[\\s]\r\nv=i1\r\n");
    CQZVariant kept(7), cleared(7), also(7);
    EXPECT_EQ(root->GetValue("none\\v", &kept), 0);
    EXPECT_EQ(root->GetValue("none", &cleared), 0);
    EXPECT_EQ(root->GetValue("s\\none", &also), 0);
    EXPECT_TRUE(kept == CQZVariant(7));
    EXPECT_EQ(cleared.vt, QZVT_EMPTY);
    EXPECT_EQ(also.vt, QZVT_EMPTY);
}

TEST_F(Ini, ListsChildrenByTheNamesOfSections) {
    const struct {
        const char* sections;
        const char* node; // null for the root
        Names children;
    } rows[] = {
        {"[\\]", nullptr, {}},
        {"[\\a] [\\b]", nullptr, {"a", "b"}},
        {"[\\a\\b] [\\A] [\\a\\c]", nullptr, {"a"}},
        {"[\\b\\c\\d]", nullptr, {"b"}},
        {"[Other] [Other\\x] [other] [\\a]", nullptr, {"Other", "a"}},
        {"[\\\\x] [\\a\\\\y]", nullptr, {"a"}}, // empty components
        {"[\\a] [\\a\\b] [\\ab\\c] [\\A\\D\\e] [\\a\\B] [a\\f] [\\a\\]", "a", {"b", "D"}},
        {"[\\a]", "a", {}},
        {"[\\s\\t] [\\s\\t\\u] [\\s]", "s\\t", {"u"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.sections);
        std::string text;
        for (const char c : std::string(row.sections))
            text += c == ' ' ? "\r\nv=i1\r\n" : std::string(1, c);
        const Tree root = tree_on(text + "\r\nv=i1\r\n");
        const Tree node = row.node != nullptr ? Tree::Adopt(root->OpenSubParam(row.node, 0)) : root;
        ASSERT_TRUE(node);
        EXPECT_EQ(take_names(node->EnumSubParams()), row.children);
    }
}

// Second bytes of characters are neither separators nor letters.
TEST_F(Ini, FollowsTheCodePage) {
    const struct {
        unsigned code_page;
        std::string one, other; // and a last letter
    } rows[] = {
        {1252, "\xC4", "\xD6"}, {1251, "\xC6", "\xE6"}, {932, "\x83\x5C\x83\x41", "\x83\x5C\x83\x61"}};
    for (const auto& row : rows) {
        if (row.code_page != GetACP()) continue;
        const std::string one = row.one + "a", other = row.other + "a";
        const Tree root = new_tree();
        const CQZVariant text(one.c_str());
        for (const std::string& name : {one, one + "\\b", other, other + "\\c"})
            Tree::Adopt(root->CreateSubParam(name.c_str()))->SetValue(other.c_str(), &text);
        EXPECT_EQ(take_names(root->EnumSubParams()), (Names{one, other}));
        const auto node = Tree::Adopt(root->OpenSubParam((row.one + "A").c_str(), 0));
        ASSERT_TRUE(node);
        EXPECT_EQ(take_names(node->EnumSubParams()), Names{"b"});
        EXPECT_EQ(value_in(*root, (other + "\\c\\" + other).c_str()), "text '" + one + "'");
        node->Clear();
        EXPECT_EQ(take_names(root->EnumSubParams()), Names{other});
    }
}

// --- nodes and paths ---------------------------------------------------------------------------------------

TEST_F(Ini, TakesAPathAsTheNameOfOneSection) {
    const Tree root = new_tree();
    set_int(*root, "a\\b\\v", 1);
    EXPECT_EQ(contents(), "[\\]\r\n@=e\r\n[\\a\\b]\r\n@=e\r\nv=i1\r\n");
    EXPECT_EQ(outline_of(*root), "a!"); // listed, but no section of its own
    EXPECT_EQ(get_int(*root, "a\\b\\v"), 1);
    EXPECT_TRUE(Tree::Adopt(root->OpenSubParam("a\\b", 0)));
    root->DeleteSubParam("a"); // does not open
    EXPECT_EQ(get_int(*root, "a\\b\\v"), 1);
    Tree::Adopt(root->OpenSubParam("a", 1));
    EXPECT_EQ(outline_of(*root), "a{b{v=1}}");
    set_int(*root, "\\w", 2); // the child without a name is the root itself
    EXPECT_EQ(outline_of(*root), "w=2 a{b{v=1}}");
    root->DeleteSubParam("");
    root->DeleteSubParam(nullptr);
    EXPECT_EQ(outline_of(*root), "w=2 a{b{v=1}}");
}

TEST_F(Ini, DeletesSectionsWithWhatIsBelowThem) {
    const std::string all =
        "[Other]\r\nx=1\r\n[\\]\r\n@=e\r\n[\\a]\r\n@=e\r\n[\\ab]\r\n@=e\r\n[\\A\\b]\r\n@=e\r\n"
        "[\\a\\b\\c]\r\n@=e\r\n[\\a\\x\\y]\r\n@=e\r\n[\\d]\r\n@=e\r\nv=i1\r\n";
    const std::string a_gone = "[Other]\r\nx=1\r\n[\\]\r\n@=e\r\n[\\ab]\r\n@=e\r\n[\\d]\r\n@=e\r\nv=i1\r\n";
    tree_on(all)->DeleteSubParam("a");
    EXPECT_EQ(contents(), a_gone);
    Tree::Adopt(tree_on(all)->OpenSubParam("a", 0))->Clear();
    EXPECT_EQ(contents(), a_gone);
    tree_on(all)->DeleteAllSubParams();
    EXPECT_EQ(contents(), "[Other]\r\nx=1\r\n[\\]\r\n@=e\r\n");
    tree_on(all)->Clear(); // sections of others stay
    EXPECT_EQ(contents(), "[Other]\r\nx=1\r\n");
    tree_on("[\\]\r\n@=i5\r\na=i1\r\n; comment\r\nb=i2\r\n[\\s]\r\n@=e\r\n")->DeleteAllValues();
    EXPECT_EQ(contents(), "[\\]\r\n; comment\r\n@=e\r\n[\\s]\r\n@=e\r\n"); // with its mark
    tree_on("[\\]\r\nb=i1\r\nB=i2\r\nb\r\nc\r\nc=i3\r\n@\r\n@=i4\r\n=i5\r\n")
        ->DeleteAllValues(); // of each key
    EXPECT_EQ(contents(), "[\\]\r\n=i5\r\n@=e\r\n");
}

TEST_F(Ini, ChildrenKeepTheirParents) {
    Tree root = new_tree();
    const auto child = Tree::Adopt(root->CreateSubParam("c"));
    EXPECT_EQ(root->AddRef(), 3u);
    EXPECT_EQ(root->Release(), 2u);
    root.Reset();
    EXPECT_TRUE(Tree::Adopt(child->CreateSubParam("d")));
    EXPECT_EQ(CQZRef<IParam>::Query(child.Get()).Get(), child.Get());
    EXPECT_TRUE(CQZRef<IRegisterIface>::Query(child.Get()));
}

DWORD WINAPI nothing_there(const char*, const char*, const char*, char*, DWORD, const char*) { return 0; }
BOOL WINAPI write_nothing(const char*, const char*, const char*, const char*) { return FALSE; }

using IniScale = Ini;

// The last of many nodes takes the others along.
TEST_F(IniScale, ReleasesLongChainsOfParents) {
    const ImportMock reads("qzrcore.dll", "GetPrivateProfileStringA",
                           reinterpret_cast<void*>(&nothing_there));
    const ImportMock writes("qzrcore.dll", "WritePrivateProfileStringA",
                            reinterpret_cast<void*>(&write_nothing));
    Tree node = open_ini(L"nowhere.ini");
    for (int i = 0; i < 12000; ++i)
        node = Tree::Adopt(node->CreateSubParam(i == 0 ? "d" : ""));
    node.Reset();
}

// --- where the platform ends -------------------------------------------------------------------------------

TEST_F(Ini, TakesNamesAsThePlatformDoes) {
    const struct {
        const char* name;
        const char* line;
        const char* read; // by that name
    } rows[] = {
        {"plain", "plain=i5", "int 5"},  {"in [brackets]", "in [brackets]=i5", "int 5"},
        {" blank", "blank=i5", "int 5"}, {"#", "#=i5", "int 5"},
        {"a=b", "a=b=i5", "none"},       // is the key a
        {"x\r\ny", "x\r\ny=i5", "none"}, // is two lines
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Tree root = new_tree();
        set_int(*root, row.name, 5);
        EXPECT_EQ(contents(), std::string("[\\]\r\n@=e\r\n") + row.line + "\r\n");
        EXPECT_EQ(value_in(*root, row.name), row.read);
        EXPECT_EQ(take_names(Tree::Adopt(root->OpenSubParam("none", 1))->EnumValues()), Names{"@"});
    }
    const Tree root = new_tree();
    const CQZVariant lines("one\r\ntwo=i2");
    root->SetValue("v", &lines);
    EXPECT_EQ(value_in(*root, "v"), "text 'one'");
    EXPECT_EQ(value_in(*root, "two"), "int 2");
}

TEST_F(Ini, DropsWhatIsTooLongForThePlatform) {
    const Tree root = new_tree();
    const CQZVariant most(std::string(32765, 'x').c_str());
    const CQZVariant over(std::string(32766, 'y').c_str()); // with its letter
    const CQZVariant far_over(std::string(200000, 'z').c_str());
    CQZVariant read;
    root->SetValue("v", &most);
    ASSERT_EQ(root->GetValue("v", &read), 1);
    EXPECT_TRUE(read == most);
    const std::string before = contents();
    root->SetValue("v", &over);
    root->SetValue("v", &far_over);
    root->SetValue("w", &over);
    set_int(*root, std::string(40000, 'n').c_str(), 1);
    root->DeleteValue(std::string(70000, 'n').c_str());
    EXPECT_EQ(value_in(*root, std::string(40000, 'n').c_str()), "none");
    const auto deep = Tree::Adopt(root->CreateSubParam(std::string(32766, 's').c_str()));
    set_int(*deep, "v", 1);
    deep->Clear();
    EXPECT_EQ(outline_of(*deep), "");
    EXPECT_EQ(contents(), before);
}

TEST_F(Ini, ReadsTextsWholeThatNeedMoreRoomThanMost) {
    const Tree root = new_tree();
    for (int size = 4091; size <= 4096; ++size) {
        SCOPED_TRACE(size);
        const CQZVariant written((std::string(size - 1, 'x') + 'y').c_str());
        CQZVariant read;
        root->SetValue("v", &written);
        ASSERT_EQ(root->GetValue("v", &read), 1);
        EXPECT_TRUE(read == written);
    }
}

TEST_F(IniScale, CutsListsAt64000Bytes) {
    const std::string tail(1595, 'x');
    std::string text = "[\\]\r\n";
    for (int i = 0; i < 60; ++i)
        text += "k" + std::to_string(100 + i) + tail + "=i1\r\n";
    text += "@=i9\r\n";
    for (int i = 0; i < 60; ++i)
        text += "[\\" + std::to_string(100 + i) + tail + "]\r\n@=e\r\n";
    const Tree root = tree_on(text);
    EXPECT_EQ(get_int(*root, nullptr), 9); // the mark is there, although the list ends before it
    const Names values = take_names(root->EnumValues());
    ASSERT_EQ(values.size(), 40u); // of 1600 bytes each
    EXPECT_EQ(values[38], "k138" + tail);
    EXPECT_EQ(values[39].substr(0, 1000), ("k139" + tail).substr(0, 1000));
    EXPECT_EQ(take_names(root->EnumSubParams()).size(), 40u);
    const std::string last = "159" + tail; // is not listed
    root->DeleteSubParam(last.c_str());
    EXPECT_FALSE(Tree::Adopt(root->OpenSubParam(last.c_str(), 0)));
    root->DeleteAllValues();
    EXPECT_EQ(take_names(root->EnumValues()), Names{"@"});
    root->DeleteAllSubParams();
    EXPECT_EQ(contents(), "[\\]\r\n@=e\r\n");
    tree_on(text)->Clear();
    EXPECT_EQ(contents(), "");
}

// A text without a key does not go.
TEST_F(IniScale, DeletesTheValuesBehindALineThatStays) {
    std::string text = "[\\]\r\n=stays\r\n";
    for (int i = 0; i < 50; ++i)
        text += "k" + std::to_string(i) + "=s" + std::string(1600, 'x') + "\r\n";
    tree_on(text)->DeleteAllValues();
    EXPECT_EQ(contents(), "[\\]\r\n=stays\r\n@=e\r\n");
}

DWORD WINAPI too_much(const char*, const char*, const char*, char* buffer, DWORD size, const char*) {
    for (DWORD i = 0; i < size; ++i)
        buffer[i] = 'i';
    return 0x7FFFFFFF;
}

TEST_F(Ini, BelievesNoCountOfThePlatform) {
    const Tree root = tree_on("[\\]\r\n@=e\r\nv=i1\r\n");
    const ImportMock mock("qzrcore.dll", "GetPrivateProfileStringA", reinterpret_cast<void*>(&too_much));
    EXPECT_EQ(value_in(*root, "v"), "none");
    EXPECT_EQ(take_names(root->EnumValues()), Names{std::string(63999, 'i')});
}

int refusals = 0;
DWORD WINAPI refused_at_first(const char* section, const char* key, const char* otherwise, char* buffer,
                              DWORD size, const char* file) {
    if (refusals == 0) return GetPrivateProfileStringA(section, key, otherwise, buffer, size, file);
    --refusals;
    SetLastError(ERROR_SHARING_VIOLATION);
    return 0;
}

// Another program has the file to itself for a moment.
TEST_F(Ini, MarksNothingThatItCouldNotRead) {
    const std::string before = "[\\]\r\n@=i7\r\n[\\s]\r\n@=i8\r\n";
    const Tree root = tree_on(before);
    const ImportMock mock("qzrcore.dll", "GetPrivateProfileStringA",
                          reinterpret_cast<void*>(&refused_at_first));
    refusals = 1;
    open_ini(path_);
    refusals = 2; // of opening, and of creating what did not open
    EXPECT_TRUE(Tree::Adopt(root->OpenSubParam("s", 1)));
    EXPECT_EQ(refusals, 0);
    EXPECT_EQ(contents(), before);
    const std::string hidden = "[\\]\r\n=hides\r\n@=i7\r\n"; // from the list of keys
    EXPECT_EQ(get_int(*tree_on(hidden), nullptr), 7);
    EXPECT_EQ(contents(), hidden);
}

std::vector<std::wstring> names_asked_for;
BOOL WINAPI make_no_directory(const wchar_t* name, SECURITY_ATTRIBUTES*) {
    names_asked_for.emplace_back(name);
    return TRUE;
}
HANDLE WINAPI open_no_file(const wchar_t* name, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
    names_asked_for.emplace_back(name);
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
}

// A dictionary names a code page for texts. Names of files are in the system's.
TEST_F(Ini, FindsItsFilesWhateverDictionaryIsLoaded) {
    int dictionaries = 0;
    for (const char* const language : {"1033", "1049"}) { // one of them has another page than the system
        const std::wstring name = L"d" + std::to_wstring(++dictionaries);
        folder_.file(name + L".dlg");
        const std::string lines = std::string("\"QZ_WLD_LANG_ID\"\n\"") + language + "\"\n";
        ASSERT_EQ(Supp_AddWld(folder_.file(name + L".wld", lines).c_str()), 1);
        wchar_t letter[2] = {};
        MultiByteToWideChar(CP_ACP, 0, "\xDC", 1, letter, 1);
        const auto asked_for = [&](const wchar_t* last) {
            const std::wstring end = letter + std::wstring(last);
            return std::any_of(
                names_asked_for.begin(), names_asked_for.end(), [&](const std::wstring& asked) {
                    return asked.size() > end.size() && asked.substr(asked.size() - end.size()) == end;
                });
        };
        names_asked_for.clear();
        const ImportMock folders("qzrcore.dll", "CreateDirectoryW",
                                 reinterpret_cast<void*>(&make_no_directory));
        const ImportMock files("qzrcore.dll", "CreateFileW", reinterpret_cast<void*>(&open_no_file));
        open_ini(folder_.path(std::wstring(letter) + L"b\\x.ini"));
        EXPECT_TRUE(asked_for(L"b")) << language;
        tree_from("#include .\\\xDC.ini");
        EXPECT_TRUE(asked_for(L".ini")) << language;
    }
}

// With the next best letter the name would be that of another file.
TEST_F(Ini, TakesNoOtherFileForItsOwn) {
    folder_.file(L"a.ini", "x=1\r\n");
    const Tree root = open_ini(folder_.path(L"\x0101.ini"));
    set_int(*root, "v", 1);
    root->Clear();
    EXPECT_EQ(folder_.contents(L"a.ini"), "x=1\r\n");
}

TEST_F(Ini, GoesOnWhenNothingCanBeWritten) {
    const std::string before = "[\\]\r\n@=e\r\nv=i1\r\n[\\s]\r\nw=i2\r\n";
    const Tree root = tree_on(before);
    const ImportMock mock("qzrcore.dll", "WritePrivateProfileStringA",
                          reinterpret_cast<void*>(&write_nothing));
    set_int(*root, "v", 5);
    root->DeleteValue("v");
    root->DeleteAllValues();
    EXPECT_TRUE(Tree::Adopt(root->CreateSubParam("new")));
    root->DeleteSubParam("s");
    root->Clear();
    EXPECT_EQ(outline_of(*root), "v=1 s{w=2}");
    EXPECT_EQ(contents(), before);
}

} // namespace
