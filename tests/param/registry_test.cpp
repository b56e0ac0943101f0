// Registry keys as trees: what stands in the registry afterwards, what is made of what others wrote there,
// and what happens when the system refuses.
#include "forms.h"

#include "contracts/param_contract.h"
#include "support/hex.h"
#include "support/import_mock.h"
#include "support/registry_tree.h"

#include <cstring>

namespace {

using namespace forms;

struct RegistryBackend : RegistryTree {
    static constexpr ParamDifferences differs{
        .ordered = false,
        .default_value_is_at = false,
        .value_paths = false,
        .drops_missing_node = false,
        .deletes_by_path = true,
        .clear_keeps_children = true,
        .miss_leaves_out_alone = false,
        .holder_keeps_empty_node = false,
        .lost_types = 1u << QZVT_OBJECT | 1u << QZVT_WTEXT,
    };
};
INSTANTIATE_TYPED_TEST_SUITE_P(Registry, ParamContract, RegistryBackend);

class Registry : public testing::Test {
protected:
    // "type: bytes" as the system has them; empty when there is no such value.
    std::string stored(const wchar_t* name) const {
        DWORD type = 0;
        DWORD size = 1000;
        std::string bytes(size, '\0');
        if (RegQueryValueExW(tree_.key, name, nullptr, &type, reinterpret_cast<BYTE*>(bytes.data()), &size))
            return {};
        bytes.resize(size);
        return std::to_string(type) + ": " + test::to_hex(bytes);
    }
    void store(const wchar_t* name, DWORD type, std::string_view bytes) const {
        RegSetValueExW(tree_.key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                       static_cast<DWORD>(bytes.size()));
    }

    RegistryTree tree_;
    CQZRef<IParam> root_ = tree_.root();
};

TEST_F(Registry, StoresValuesAsTextsOrAsTaggedBytes) {
    static unsigned char bytes[] = {0xAA, 0, 0xFF};
    const struct {
        CQZVariant value;
        const char* stored; // type 1 is REG_SZ, 3 is REG_BINARY
    } rows[] = {
        {CQZVariant(), "3: 00 00 00 00"},
        {CQZVariant(1, QZVT_BOOL), "3: 01 00 00 00 01 00 00 00"},
        {CQZVariant(static_cast<unsigned char>(0xAB)), "3: 02 00 00 00 ab"},
        {CQZVariant(static_cast<unsigned short>(0xABCD)), "3: 03 00 00 00 cd ab"},
        {CQZVariant(0x01020304ul), "3: 04 00 00 00 04 03 02 01"},
        {CQZVariant(-2), "3: 05 00 00 00 fe ff ff ff"},
        {CQZVariant(3u), "3: 06 00 00 00 03 00 00 00"},
        {CQZVariant(-3l), "3: 07 00 00 00 fd ff ff ff"},
        {CQZVariant(1.0), "3: 08 00 00 00 00 00 00 00 00 00 f0 3f"},
        {CQZVariant(-2.0f), "3: 09 00 00 00 00 00 00 c0"},
        {CQZVariant("ab"), "1: 61 00 62 00 00 00"},
        {CQZVariant(""), "1: 00 00"},
        {CQZVariant(static_cast<const char*>(nullptr)), "1: 00 00"},
        {CQZVariant(tagSIZE{1, -1}), "3: 0b 00 00 00 01 00 00 00 ff ff ff ff"},
        {CQZVariant(tagRSIZE{1, 2}), "3: 0c 00 00 00 00 00 00 00 00 00 f0 3f 00 00 00 00 00 00 00 40"},
        {CQZVariant(tagPOINT{2, 3}), "3: 0d 00 00 00 02 00 00 00 03 00 00 00"},
        {CQZVariant(tagRPOINT{1, 2}), "3: 0e 00 00 00 00 00 00 00 00 00 f0 3f 00 00 00 00 00 00 00 40"},
        {CQZVariant(tagRECT{1, 2, 3, 4}), "3: 0f 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00"},
        {CQZVariant(tagRRECT{1, 2, 1, 2}), "3: 10 00 00 00 00 00 00 00 00 00 f0 3f 00 00 00 00 00 00 00 40 "
                                           "00 00 00 00 00 00 f0 3f 00 00 00 00 00 00 00 40"},
        {CQZVariant(tagQZBLOB{3, bytes}), "3: 11 00 00 00 03 00 00 00 aa 00 ff"},
        {CQZVariant(tagQZBLOB{0, nullptr}), "3: 11 00 00 00 00 00 00 00"},
        {CQZVariant(tagQZBLOB{2, nullptr}), "3: 11 00 00 00 02 00 00 00 00 00"},
        {CQZVariant(L"wide"), "1: 77 00 69 00 64 00 65 00 00 00"},
        {CQZVariant(L"\x4E00"), "1: 00 4e 00 00"},
        {CQZVariant(root_.Get()), ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.stored);
        root_->DeleteValue("v");
        root_->SetValue("v", &row.value);
        EXPECT_EQ(stored(L"v"), row.stored);
    }
    tagQZVARIANT unknown{};
    unknown.vt = QZVT_COUNT;
    root_->SetValue("unknown", &unknown);
    EXPECT_EQ(stored(L"unknown"), "");
}

// The type (1 a text, 2 one with names of variables in it, 3 bytes, 4 and 11 numbers) and the bytes. A text
// may lack its end or have half a character more; one of a single character is read as none unless its end is
// there. The first four bytes are the tag; texts, objects and what is cut short are nothing.
TEST_F(Registry, ReadsWhatOthersStored) {
    const std::vector<std::string> rows[] = {
        {"1: 61 00 62 00 -> text 'ab'", "1: 61 00 62 00 00 00 63 00 00 00 -> text 'ab'",
         "1: 61 00 62 00 63 -> text 'ab'", "1: 61 00 -> text ''", "1: 61 00 00 00 -> text 'a'",
         "1: 00 00 -> text ''", "1:  -> text ''", "4: 05 00 00 00 -> none", "4: 00 00 00 00 -> empty",
         "11: 05 00 00 00 07 00 00 00 -> int 7", "2: 61 00 62 00 00 00 -> none", "3:  -> none",
         "3: 05 00 00 -> none", "3: 05 00 00 00 07 00 00 -> none",
         "3: 05 00 00 00 07 00 00 00 99 99 -> int 7", "3: 02 00 00 00 -> none",
         "3: 10 00 00 00 00 00 00 00 -> none", "3: 0a 00 00 00 61 62 00 -> none"},
        {"3: 12 00 00 00 00 00 00 00 00 00 00 00 -> none", "3: 13 00 00 00 61 00 00 00 -> none",
         "3: 14 00 00 00 61 00 00 00 -> none", "3: ff ff ff ff 61 00 00 00 -> none",
         "3: 05 00 01 00 07 00 00 00 -> none", "3: 11 00 00 00 02 00 00 -> none",
         "3: 11 00 00 00 03 00 00 00 aa bb -> none", "3: 11 00 00 00 ff ff ff ff aa bb -> none",
         "3: 11 00 00 00 01 00 00 00 aa bb -> blob AA", "3: 11 00 00 00 00 00 00 00 -> blob 0 null"},
    };
    for (const auto& list : rows) {
        for (const std::string& row : list) {
            const std::size_t colon = row.find(':'), arrow = row.find(" -> ");
            store(L"v", static_cast<DWORD>(std::stoi(row)),
                  test::from_hex(row.substr(colon + 1, arrow - colon - 1)));
            EXPECT_EQ(value_in(*root_, "v"), row.substr(arrow + 4)) << row;
        }
    }
    CQZVariant out("cleared");
    EXPECT_EQ(root_->GetValue("none", &out), 0);
    EXPECT_EQ(out.vt, QZVT_EMPTY);
}

TEST_F(Registry, GivesBackWhatIsLarge) {
    for (const unsigned size : {250u, 254u, 255u, 256u, 4096u, 1u << 20}) {
        SCOPED_TRACE(size);
        const CQZVariant text(std::string(size, 't').c_str());
        root_->SetValue("text", &text);
        std::string bytes(size, '\x5A');
        const CQZVariant blob(tagQZBLOB{size, bytes.data()});
        root_->SetValue("blob", &blob);
        CQZVariant read;
        ASSERT_EQ(root_->GetValue("text", &read), 1);
        EXPECT_TRUE(read == text);
        ASSERT_EQ(root_->GetValue("blob", &read), 1);
        EXPECT_TRUE(read == blob);
    }
}

TEST_F(Registry, TakesNamesAsTheyAre) {
    set_int(*root_, "a\\v", 1);
    set_int(*root_, "@", 2);
    set_int(*root_, nullptr, 3);
    EXPECT_EQ(stored(L"a\\v"), "3: 05 00 00 00 01 00 00 00");
    EXPECT_EQ(stored(L"@"), "3: 05 00 00 00 02 00 00 00");
    EXPECT_EQ(stored(L""), "3: 05 00 00 00 03 00 00 00");
    EXPECT_EQ(get_int(*root_, ""), 3);
    EXPECT_EQ(outline_of(*root_, false), "=3 @=2 a\\v=1");
    root_->DeleteValue("a\\v");
    root_->DeleteValue("");
    EXPECT_EQ(outline_of(*root_, false), "@=2");
    const CQZVariant wide(L"w");
    root_->SetValue(nullptr, &wide);
    EXPECT_EQ(stored(L""), "1: 77 00 00 00");
}

TEST_F(Registry, OpensSubKeysByPath) {
    EXPECT_TRUE(CQZRef<IParam>::Adopt(root_->OpenSubParam("a\\b\\c", 1)));
    set_int(*CQZRef<IParam>::Adopt(root_->OpenSubParam("a\\b", 0)), "v", 1);
    EXPECT_EQ(outline_of(*root_, false), "a{b{v=1 c{}}}");
    CQZRef<IParam>::Adopt(root_->CreateSubParam("a\\b"));
    EXPECT_EQ(outline_of(*root_, false), "a{b{c{}}}");
    root_->DeleteSubParam("a\\b");
    EXPECT_EQ(outline_of(*root_, false), "a{}");
    // What would be this key itself, or is no name, is no child.
    set_int(*root_, "v", 1);
    for (const char* const name : {static_cast<const char*>(nullptr), "", "\\", "\\a"}) {
        EXPECT_FALSE(CQZRef<IParam>::Adopt(root_->OpenSubParam(name, 1)));
        EXPECT_FALSE(CQZRef<IParam>::Adopt(root_->CreateSubParam(name)));
        root_->DeleteSubParam(name);
    }
    EXPECT_EQ(outline_of(*root_, false), "v=1 a{}");
}

TEST_F(Registry, EndsTheListAtANameOfMoreThan512Characters) {
    const std::wstring fits(512, L'b');
    const std::wstring longer(513, L'd');
    for (const std::wstring& name :
         {std::wstring(L"a"), fits, std::wstring(L"c"), longer, std::wstring(L"e")})
        store(name.c_str(), REG_BINARY, test::from_hex("00 00 00 00"));
    EXPECT_EQ(take_names(root_->EnumValues()), (Names{"a", std::string(512, 'b'), "c"}));
    EXPECT_EQ(value_in(*root_, std::string(513, 'd').c_str()), "empty"); // by its name it can be had
}

TEST_F(Registry, NestsDeeply) {
    CQZRef<IParam> node = root_;
    for (int level = 0; level < 400; ++level)
        node = CQZRef<IParam>::Adopt(node->CreateSubParam("d"));
    set_int(*node, "v", 1);
    root_->Clear();
    EXPECT_EQ(get_int(*node, "v"), kNoValue);
    root_->DeleteSubParam("d");
    EXPECT_EQ(outline_of(*root_, false), "");
}

// The current user's part of the registry, by the name that links need.
std::wstring current_user() {
    HKEY opened = nullptr;
    RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, &opened);
    using QueryKey = LONG(WINAPI*)(HKEY, int, void*, ULONG, ULONG*);
    const auto query = reinterpret_cast<QueryKey>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll"), "NtQueryKey")));
    struct {
        ULONG bytes;
        wchar_t text[500];
    } name{};
    ULONG size = 0;
    constexpr int kNameInformation = 3;
    query(opened, kNameInformation, &name, sizeof name, &size);
    RegCloseKey(opened);
    return std::wstring(name.text, name.bytes / sizeof(wchar_t) - std::wcslen(L"\\Software"));
}

// A link to a key above would lead round and round, and one to elsewhere out of the tree.
TEST_F(Registry, TakesALinkForItself) {
    run_steps(*root_, "create a; put a\\v; create b; put b\\w");
    const std::wstring target =
        current_user() + L"\\" + std::wstring(tree_.path.begin(), tree_.path.end()) + L"\\a";
    for (const char* const name : {"b\\link", "link"}) {
        HKEY link = nullptr;
        ASSERT_EQ(RegCreateKeyExA(tree_.key, name, 0, nullptr, REG_OPTION_CREATE_LINK, KEY_ALL_ACCESS,
                                  nullptr, &link, nullptr),
                  ERROR_SUCCESS);
        RegSetValueExW(link, L"SymbolicLinkValue", 0, REG_LINK, reinterpret_cast<const BYTE*>(target.c_str()),
                       static_cast<DWORD>(target.size() * sizeof(wchar_t)));
        RegCloseKey(link);
    }
    EXPECT_EQ(outline_of(*root_, false), "a{v=2} b{w=4 link{v=2}} link{v=2}");
    root_->Clear();
    set_int(*CQZRef<IParam>::Adopt(root_->OpenSubParam("a", 0)), "v", 7);
    CQZRef<IParam>::Adopt(root_->CreateSubParam("b"));
    EXPECT_TRUE(CQZRef<IParam>::Adopt(root_->CreateSubParam("b\\link")));
    EXPECT_EQ(outline_of(*root_, false), "a{v=7} b{link{v=7}} link{v=7}");
    root_->DeleteSubParam("link");
    EXPECT_EQ(outline_of(*root_, false), "a{v=7} b{link{v=7}}");
    root_->DeleteSubParam("b");
    EXPECT_EQ(outline_of(*root_, false), "a{v=7}");
}

TEST_F(Registry, OpensOnlyKeysThatExist) {
    EXPECT_FALSE(CQZRef<IParam>::Adopt(new_IParamCUReg(L"Software\\qzrcore has no such key")));
    EXPECT_FALSE(CQZRef<IParam>::Adopt(new_IParamLMReg(L"Software\\qzrcore has no such key")));
    EXPECT_TRUE(CQZRef<IParam>::Adopt(new_IParamLMReg(L"Software")));
}

// --- what the system refuses ------------------------------------------------------------------------------

LSTATUS refuse() { return ERROR_ACCESS_DENIED; }

LSTATUS always_more(HKEY, const char*, DWORD*, DWORD*, BYTE*, DWORD* size) {
    *size += 1;
    return ERROR_MORE_DATA;
}

std::string without(const char* function, LSTATUS (*replacement)(), IParam& root) {
    const ImportMock mock("qzrcore.dll", function, reinterpret_cast<void*>(replacement));
    const CQZVariant one(1), wide(L"w");
    CQZVariant out(5);
    std::string done;
    root.SetValue("new", &one);
    root.SetValue("new wide", &wide);
    if (root.GetValue("v", &out) == 0 && out.vt == QZVT_EMPTY) done += "no value, ";
    if (!CQZRef<IParam>::Adopt(root.OpenSubParam("a", 0))) done += "not opened, ";
    if (!CQZRef<IParam>::Adopt(root.CreateSubParam("n"))) done += "not created, ";
    if (take_names(root.EnumValues()).empty()) done += "no values, ";
    if (take_names(root.EnumSubParams()).empty()) done += "no children, ";
    root.DeleteValue("w");
    root.DeleteSubParam("b");
    return done;
}

TEST_F(Registry, GoesOnWhenTheSystemRefuses) {
    const struct {
        const char* function;
        const char* done;
        const char* left; // of what was there before, and what else was stored
    } rows[] = {
        {"RegSetValueExA", "", "new wide v=1 a{} n{}"},
        {"RegSetValueExW", "", "new=1 v=1 a{} n{}"},
        {"RegQueryValueExA", "no value, ", "new=1 new wide v=1 a{} n{}"},
        {"RegOpenKeyExA", "not opened, ", "new=1 new wide v=1 a{} b{w=3} n{}"},
        {"RegCreateKeyExA", "not created, ", "new=1 new wide v=1 a{}"},
        {"RegEnumValueA", "no values, ", "new=1 new wide v=1 a{} n{}"},
        {"RegEnumKeyExA", "no children, ", "new=1 new wide v=1 a{} n{}"},
        {"RegDeleteValueA", "", "new=1 new wide v=1 w=2 a{} n{}"},
        {"RegDeleteKeyA", "", "new=1 new wide v=1 a{} b{} n{}"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.function);
        RegDeleteTreeA(tree_.key, nullptr);
        run_steps(*root_, "set v; set w; create b; create a");
        set_int(*CQZRef<IParam>::Adopt(root_->OpenSubParam("b", 0)), "w", 3);
        EXPECT_EQ(without(row.function, refuse, *root_), row.done);
        EXPECT_EQ(outline_of(*root_, false), row.left);
    }
    set_int(*root_, "v", 1);
    const ImportMock mock("qzrcore.dll", "RegQueryValueExA", reinterpret_cast<void*>(&always_more));
    EXPECT_EQ(value_in(*root_, "v"), "none"); // which always grows
}

} // namespace
