#include "dictionary/wld_resources.h"

#include "dictionary/wld_text.h"
#include "system/encoding.h"
#include "system/failure.h"
#include "system/files.h"

#include <windows.h>

namespace tool {

namespace {

// A module that is open for its resources alone: none of its code runs.
class Module {
public:
    explicit Module(const std::filesystem::path& path)
        : handle_(LoadLibraryExW(path.c_str(), nullptr,
                                 LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE)) {}
    ~Module() {
        if (handle_ != nullptr) FreeLibrary(handle_);
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    HMODULE handle() const { return handle_; }

private:
    HMODULE handle_;
};

struct ResourceKind {
    const char* name;
    int number; // in contexts
    WORD type;  // of the platform
    bool (*read)(const std::string& bytes, std::vector<std::wstring>& texts);
};
const ResourceKind kKinds[] = {
    {"string table", 3, 6, texts_of_strings},
    {"menu", 2, 4, texts_of_menu},
    {"dialog", 1, 5, static_cast<bool (*)(const std::string&, std::vector<std::wstring>&)>(texts_of_dialog)},
};

std::wstring shown_id(const wchar_t* id) {
    return IS_INTRESOURCE(id) ? std::to_wstring(reinterpret_cast<ULONG_PTR>(id)) : std::wstring(id);
}

std::string bytes_of(HMODULE module, HRSRC found) {
    HGLOBAL const loaded = found != nullptr ? LoadResource(module, found) : nullptr;
    const void* const bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) return {};
    return {static_cast<const char*>(bytes), SizeofResource(module, found)};
}

// Walks the resources of one kind, in all languages.
struct Walk {
    const ResourceKind& kind;
    const std::wstring& file;
    const std::function<void(const std::string&)>& warn;
    std::vector<ResourceText>& texts;

    void read(HMODULE module, const wchar_t* id, WORD language) {
        const HRSRC found = FindResourceExW(module, MAKEINTRESOURCEW(kind.type), id, language);
        std::vector<std::wstring> here;
        const std::wstring name = shown_id(id);
        if (!kind.read(bytes_of(module, found), here))
            warn(std::string(kind.name) + " " + printable(utf8(name)) + " is damaged");
        std::wstring context = file + L"#" + std::to_wstring(kind.number) + L"#" + name;
        context += kContextEnd;
        for (std::wstring& text : here)
            texts.push_back({context, std::move(text)});
    }
};

BOOL CALLBACK on_language(HMODULE module, const wchar_t*, const wchar_t* id, WORD language, LONG_PTR walk) {
    reinterpret_cast<Walk*>(walk)->read(module, id, language);
    return TRUE;
}

BOOL CALLBACK on_name(HMODULE module, const wchar_t* type, wchar_t* id, LONG_PTR walk) {
    return EnumResourceLanguagesW(module, type, id, on_language, walk);
}

} // namespace

std::vector<ResourceText> texts_of_module(const std::wstring& argument,
                                          const std::function<void(const std::string&)>& warn) {
    const std::filesystem::path path = std::filesystem::absolute(native_path(argument));
    const Module module(path);
    if (module.handle() == nullptr) fail(printable(utf8(argument)) + ": is no module, or cannot be opened");
    std::vector<ResourceText> texts;
    const std::wstring file = path.filename().wstring();
    for (const ResourceKind& kind : kKinds) {
        Walk walk = {kind, file, warn, texts};
        EnumResourceNamesW(module.handle(), MAKEINTRESOURCEW(kind.type), on_name,
                           reinterpret_cast<LONG_PTR>(&walk));
    }
    return texts;
}

} // namespace tool
