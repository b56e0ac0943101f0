// What the hooks add to loading strings and dialogs.
#include "bench/dictionary_files.h"
#include "bench/ledger.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace bench {

namespace {

// The resources in hooks.rc.
constexpr unsigned kFirstString = 1000;
constexpr unsigned kStrings = 1000;
constexpr unsigned kDialog = 40; // also the number of its controls
constexpr int kUnits = 128;

template <class Function>
Function* system_function(const char* module, Function*, const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(module), name)));
}

std::wstring load_string(decltype(::LoadStringW)* load, unsigned id) {
    wchar_t text[kUnits];
    return {text, static_cast<std::size_t>(load(GetModuleHandleW(nullptr), id, text, kUnits))};
}

std::string narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

// A template as it is, and what its controls say.
struct Dialog {
    HRSRC resource = FindResourceW(nullptr, MAKEINTRESOURCEW(kDialog), MAKEINTRESOURCEW(5));
    const void* bytes = nullptr;
    std::size_t size = SizeofResource(nullptr, resource);
    std::vector<std::wstring> texts;
};

// The functions as the system has them, and a dictionary for the program's resources.
struct Hooked {
    decltype(::LoadStringW)* load_string = system_function("user32", ::LoadStringW, "LoadStringW");
    decltype(::LoadResource)* load_resource = system_function("kernel32", ::LoadResource, "LoadResource");
    Dialog dialog;
    std::unique_ptr<DictionaryLibrary> library;
};

// From now on the program's own calls are hooked.
const Hooked& hooked() {
    static Hooked made;
    if (made.library) return made;
    std::vector<TextPair> pairs;
    for (unsigned i = 0; i < kStrings; ++i) {
        const std::string text = narrow(load_string(made.load_string, kFirstString + i));
        pairs.push_back({text, "fr " + text});
    }
    for (unsigned i = 0; i < kDialog; ++i) {
        const std::string text = "Setting number " + std::to_string(10 + i);
        pairs.push_back({text, "R\xE9glage " + text});
        made.dialog.texts.emplace_back(text.begin(), text.end());
    }
    made.dialog.bytes = LockResource(made.load_resource(nullptr, made.dialog.resource));
    made.library = std::make_unique<DictionaryLibrary>("hooks");
    made.library->add(write_dictionary("hooks", pairs).c_str());
    made.library->hook(GetModuleHandleW(nullptr));
    made.dialog.resource = FindResourceW(nullptr, MAKEINTRESOURCEW(kDialog), MAKEINTRESOURCEW(5));
    return made;
}

bool strings_are_translated() {
    const Hooked& both = hooked();
    for (unsigned id = kFirstString; id < kFirstString + kStrings; ++id)
        if (load_string(::LoadStringW, id) != L"fr " + load_string(both.load_string, id)) return false;
    return true;
}

void load_strings(State& state, decltype(::LoadStringW)* load) {
    HINSTANCE const program = GetModuleHandleW(nullptr);
    wchar_t text[kUnits];
    for (auto _ : state)
        for (unsigned id = kFirstString; id < kFirstString + kStrings; ++id)
            DoNotOptimize(load(program, id, text, kUnits));
}

bool contains(const std::string& bytes, const std::wstring& text) {
    const std::string wide(reinterpret_cast<const char*>(text.c_str()), (text.size() + 1) * sizeof(wchar_t));
    return bytes.find(wide) != bytes.npos;
}

bool dialog_is_translated() {
    const Hooked& both = hooked();
    const std::string original(static_cast<const char*>(both.dialog.bytes), both.dialog.size);
    const std::string copy(
        static_cast<const char*>(LockResource(LoadResource(nullptr, both.dialog.resource))),
        SizeofResource(nullptr, both.dialog.resource));
    for (const std::wstring& text : both.dialog.texts)
        if (!contains(original, text) || !contains(copy, L"R\xE9glage " + text)) return false;
    return true;
}

void rewrite_dialog(State& state) {
    const Hooked& both = hooked();
    for (auto _ : state)
        DoNotOptimize(LoadResource(nullptr, both.dialog.resource));
}

// The least that a program would have to do itself: load, copy, look its texts up.
void copy_dialog(State& state) {
    const Hooked& both = hooked();
    for (auto _ : state) {
        std::vector<char> copy(both.dialog.size);
        HGLOBAL const loaded = both.load_resource(nullptr, both.dialog.resource);
        std::memcpy(copy.data(), loaded, copy.size());
        DoNotOptimize(copy.data());
        for (const std::wstring& text : both.dialog.texts)
            DoNotOptimize(both.library->translate_in_context(text.c_str(), L"qzrbench.exe#1#40\x044D\x044D"));
    }
}

} // namespace

void hook_rows(Ledger& ledger) {
    // Beside the look-ups in and out of its context, a string's module is asked for its name, and the buffer
    // is filled to its end.
    ledger.row({"hooks", "load 1000 strings, hooked", "the unhooked LoadStringW", 4, strings_are_translated,
                [](State& state) {
                    hooked();
                    load_strings(state, ::LoadStringW);
                },
                [](State& state) { load_strings(state, hooked().load_string); }});
    ledger.row({"hooks", "rewrite a dialog template of 40 controls", "its bytes copied and 40 look-ups", 2,
                dialog_is_translated, rewrite_dialog, copy_dialog});
}

} // namespace bench
