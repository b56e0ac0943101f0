// Translating texts.
#include "dictionary_files.h"

#include "qzsupp.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

#include <windows.h>

namespace {

// One dictionary for the tests of this file.
class TranslateText : public testing::Test {
protected:
    static void SetUpTestSuite() {
        DictionaryFiles files;
        ASSERT_EQ(files.add(pair_lines("Text", "Texte") + pair_lines("CtxText", "Texte choisi") +
                            pair_lines("CtxOnly", "Seul") + pair_lines("CtxHollow", "")),
                  1);
    }
};

TEST_F(TranslateText, AnswersTheTextItselfWhenItHasNoEntry) {
    const wchar_t* const text = L"nobody knows this";
    EXPECT_EQ(Supp_Translate(text), text);
    EXPECT_EQ(Supp_Translate(text, L"Ctx"), text);
    EXPECT_EQ(Supp_Translate(static_cast<const wchar_t*>(nullptr)), nullptr);
    EXPECT_EQ(Supp_Translate(L""), nullptr);
    EXPECT_EQ(Supp_Translate(nullptr, L"Ctx"), nullptr);
    EXPECT_EQ(Supp_Translate(L"", L"CtxText"), nullptr);
    EXPECT_EQ(Supp_Translate(static_cast<const char*>(nullptr)), nullptr);
    EXPECT_EQ(Supp_Translate(""), nullptr);
}

TEST_F(TranslateText, PrefersTheContext) {
    const struct {
        const wchar_t* text;
        const wchar_t* context;
        const wchar_t* expected;
    } rows[] = {
        {L"Text", L"Ctx", L"Texte choisi"}, {L"Text", L"Other", L"Texte"},     {L"Text", L"", L"Texte"},
        {L"Text", nullptr, L"Texte"},       {L"Only", L"Ctx", L"Seul"},        {L"Only", L"C", L"Only"},
        {L"xText", L"Ct", L"Texte choisi"}, {L"Hollow", L"Ctx", L"CtxHollow"}, // its own source, context and
                                                                               // all
    };
    for (const auto& row : rows)
        EXPECT_STREQ(Supp_Translate(row.text, row.context), row.expected) << row.text << ", " << row.context;
}

TEST_F(TranslateText, KeepsNarrowTextsForGood) {
    EXPECT_STREQ(Supp_Translate("Text"), L"Texte");
    const wchar_t* const fresh = Supp_Translate("narrow only");
    EXPECT_STREQ(fresh, L"narrow only");
    DictionaryFiles files;
    std::string many = pair_lines("narrow only", "too late");
    for (int i = 0; i < 2000; ++i)
        many += pair_lines("many " + std::to_string(i), "x");
    ASSERT_EQ(files.add(many), 1);
    EXPECT_EQ(Supp_Translate("narrow only"), fresh);
    EXPECT_EQ(Supp_Translate(L"narrow only"), fresh);
}

TEST_F(TranslateText, MayBeAskedByAllThreadsAtOnce) {
    constexpr int kTexts = 300;
    std::string lines;
    std::vector<std::wstring> keys;
    for (int i = 0; i < kTexts; ++i) {
        lines += pair_lines("shared " + std::to_string(i), "commun " + std::to_string(i));
        keys.push_back(L"shared " + std::to_wstring(i));
    }
    DictionaryFiles files;
    ASSERT_EQ(files.add(lines), 1);
    std::array<std::vector<const wchar_t*>, 4> found;
    std::vector<std::thread> threads;
    for (auto& mine : found)
        threads.emplace_back([&] {
            for (const std::wstring& key : keys)
                mine.push_back(Supp_Translate(key.c_str()));
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& other : found)
        EXPECT_EQ(other, found[0]) << "every thread has the same pointers";
    EXPECT_STREQ(found[0][7], L"commun 7");
}

TEST(TranslationSwitch, KeepsWhatItIsGiven) {
    EXPECT_EQ(Supp_IsTranslationEnable(), 1);
    for (const int value : {0, -5, 1}) {
        Supp_SetTranslationEnable(value);
        EXPECT_EQ(Supp_IsTranslationEnable(), value);
    }
}

TEST(DialogFont, HasAHandleOnDoubleByteSystemsOnly) {
    HFONT const font = Supp_GetFont();
    EXPECT_EQ(font, GetSystemMetrics(SM_DBCSENABLED) != 0 ? GetStockObject(DEFAULT_GUI_FONT) : nullptr);
    EXPECT_EQ(Supp_GetFont(), font);
    Supp_SetDialogFont(nullptr);
    Supp_SetDialogPos(nullptr, nullptr, 0);
}

} // namespace
