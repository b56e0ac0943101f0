// Loading dictionaries.
#include "core/windows_lean.h"
#include "qzexception.h"
#include "qzfileio.h"
#include "qzparam.h"
#include "qzref.h"
#include "qzstring.h"
#include "qzsupp.h"
#include "supp/dictionary_reader.h"
#include "supp/hook_install.h"
#include "supp/translation_context.h"

#include <cstdlib>
#include <cstring>

namespace qzr {

namespace {

constexpr wchar_t kUsualName[] = L"app.wld";
constexpr char kLanguageKey[] = "QZ_WLD_LANG_ID"; // of the pair that names the language

// An unknown language, or none, changes nothing. A known one may have no code page of its own: that is 0.
void use_code_page_of(LCID language) {
    if (language == 0 || IsValidLocale(language, LCID_SUPPORTED) == 0) return;
    DWORD code_page = 0;
    const int units =
        GetLocaleInfoW(language, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                       reinterpret_cast<wchar_t*>(&code_page), sizeof code_page / sizeof(wchar_t));
    if (units != 0) translation().code_page.store(code_page, std::memory_order_relaxed);
}

// The keys of a file are converted in the code page that was in effect before it.
void read_dictionary(const wchar_t* path) {
    const qz::File file(path);
    translation().any_file.store(true, std::memory_order_relaxed);
    DictionaryReader reader(*file);
    LCID language = 0;
    while (reader.next()) {
        if (std::strcmp(reader.source(), kLanguageKey) == 0)
            language = static_cast<LCID>(std::atoi(reader.translation()));
        reader.unescape();
        translation().dictionary.add(reader.source(), reader.translation());
    }
    use_code_page_of(language);
}

void read_companion(const wchar_t* dictionary_path) {
    CXStringW path(dictionary_path);
    path.ChangeFileExt(L"dlg");
    const auto tree = CQZRef<IParam>::Adopt(new_MemParam());
    if (!tree) throw CXMemException();
    if (Param_IniFile2Param(path.GetData(), tree.Get()) == 0) throw CXMemException();
    translation().dialogs.add(*tree);
}

bool load(const wchar_t* path) {
    if (path == nullptr) path = kUsualName;
    try {
        read_dictionary(path);
        read_companion(path);
        return true;
    } catch (const CXFileException&) {
        return false;
    }
}

} // namespace
} // namespace qzr

int Supp_Init(const wchar_t* path) {
    qzr::TranslationContext& context = qzr::translation();
    if (context.loaded || !qzr::load(path)) return 0;
    context.loaded = true;
    qzr::install_default_hooks();
    return 1;
}

int Supp_AddWld(const wchar_t* path) {
    if (!qzr::translation().loaded) return Supp_Init(path);
    return qzr::load(path) ? 1 : 0;
}
