#include "dictionary_files.h"

#include "qzsupp.h"

int DictionaryFiles::add(const std::string& content) {
    const std::wstring name = L"added" + std::to_wstring(++added_);
    file(name + L".dlg", "");
    return Supp_AddWld(file(name + L".wld", content).c_str());
}

std::string pair_lines(const std::string& source, const std::string& translation) {
    return "\"" + source + "\"\r\n\"" + translation + "\"\r\n";
}
