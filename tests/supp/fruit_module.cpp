#include "supp/fruit_module.h"

#include "supp/dictionary_files.h"

#include "qzsupp.h"

#include <stdexcept>

FruitModule::FruitModule(const std::string& pairs, State state) : handle_(LoadLibraryA("mfc140u.dll")) {
    if (handle_ == nullptr) throw std::runtime_error("the module does not load");
    if (state == State::hooked) _InitResTranslation(handle_);
    if (pairs.empty()) return;
    DictionaryFiles files;
    // The language comes first: the letters that end contexts are letters in its code page.
    if (files.add(pair_lines("QZ_WLD_LANG_ID", "1049")) != 1 || files.add(pairs) != 1)
        throw std::runtime_error("the dictionary does not load");
}

FruitModule::~FruitModule() { FreeLibrary(handle_); }

Calls FruitModule::calls() const {
    Calls calls;
    void* const read = reinterpret_cast<void*>(GetProcAddress(handle_, "read_calls"));
    reinterpret_cast<ReadCalls*>(read)(calls);
    return calls;
}

std::string in_context(int kind, const std::string& id, const std::string& text,
                       const std::string& translation) {
    return pair_lines("mfc140u.dll#" + std::to_string(kind) + "#" + id + "\xFD\xFD" + text, translation);
}
