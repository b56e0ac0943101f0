// Strings, and texts that a hooked module loads on every thread.
#include "qzexception.h"
#include "qzref.h"
#include "qzstring.h"
#include "qzsupp.h"
#include "soak/refusal.h"
#include "soak/work.h"

#include "plugins/mfc140u/calls.h"

#include <filesystem>
#include <fstream>

#include <windows.h>

namespace {

constexpr unsigned kAppleId = 1; // "Apple" in the module's resources

HMODULE module;
Calls calls;

void load(Work& work) {
    wchar_t text[16] = {};
    work.require(calls.LoadStringW(module, kAppleId, text, 16) == 5 && std::wcscmp(text, L"Apfel") == 0,
                 "a hooked module's text is not translated");
    work.require(LoadStringNotTransW(module, kAppleId, text, 16) == 5 && std::wcscmp(text, L"Apple") == 0,
                 "the text itself is lost");
    CXStringW string;
    work.require(string.Load(module, kAppleId) == 1 && string == L"Apfel", "a string loads another text");
}

void edit(Work& work) {
    std::string model;
    CXString text;
    for (int i = 0; i < 60; ++i) {
        const std::string piece(work.random.below(40), static_cast<char>('a' + i % 26));
        const std::size_t at = work.random.below(model.size() + 1);
        const CXString before = text; // shares the block
        try {
            const Refusing refusing(work.refusal_random, work.refusals);
            if (work.random.one_in(3)) {
                text.Delete(static_cast<int>(at), static_cast<int>(piece.size()));
                model.erase(at, piece.size());
            } else {
                text.Insert(static_cast<int>(at), piece.c_str());
                model.insert(at, piece);
            }
        } catch (const CXMemException&) {
            work.require(text == before || text.GetSize() == 0, "a refused change left half of itself");
            text = CXString(model.c_str());
        }
        work.require(model == text.GetData(), "another text");
    }
}

} // namespace

void work_texts(Work& work) {
    load(work);
    edit(work);
}

void load_dictionary(Shared&, const std::wstring& folder) {
    const auto path = [&](const wchar_t* extension) { return std::filesystem::path(folder) / extension; };
    std::ofstream(path(L"soak.wld"), std::ios::binary) << "\"Apple\"\r\n\"Apfel\"\r\n";
    std::ofstream(path(L"soak.dlg"), std::ios::binary)
        << "[\\Dialogs\\soak.exe#1#101\\Dialog Size]\r\n0=t0,0,10,10\r\n";
    const bool loaded = Supp_AddWld(path(L"soak.wld").c_str()) == 1;
    std::filesystem::remove(path(L"soak.wld"));
    std::filesystem::remove(path(L"soak.dlg"));
    if (!loaded) throw std::runtime_error("the dictionary does not load");
}

// The hooks go out and in again.
void hook_and_unhook(Shared&) {
    if (module == nullptr) {
        module = LoadLibraryA("mfc140u.dll");
        if (module == nullptr) throw std::runtime_error("the hooked module does not load");
        reinterpret_cast<ReadCalls*>(reinterpret_cast<void*>(GetProcAddress(module, "read_calls")))(calls);
    }
    _DeInitResTranslation(module);
    reinterpret_cast<ReadCalls*>(reinterpret_cast<void*>(GetProcAddress(module, "read_calls")))(calls);
    wchar_t text[16] = {};
    if (calls.LoadStringW(module, kAppleId, text, 16) != 5 || std::wcscmp(text, L"Apple") != 0)
        throw std::runtime_error("a text is translated without hooks");
    if (_InitResTranslation(module) != 1) throw std::runtime_error("the module is not hooked");
    reinterpret_cast<ReadCalls*>(reinterpret_cast<void*>(GetProcAddress(module, "read_calls")))(calls);
}
