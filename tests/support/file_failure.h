// What a call threw, as one text to compare and to print: "code 6, operation 12, C:\name".
#pragma once

#include "qzexception.h"

#include <string>

inline std::string narrow(const wchar_t* text) {
    std::string out;
    for (; *text != 0; ++text)
        out += *text < 0x80 ? static_cast<char>(*text) : '?';
    return out;
}

inline std::string failure(unsigned code, unsigned operation, const std::wstring& name) {
    return "code " + std::to_string(code) + ", operation " + std::to_string(operation) + ", " +
           narrow(name.c_str());
}

// "" when nothing is thrown; an exception that names no file is "code 9".
template <class Call>
std::string failure_of(Call call) {
    try {
        call();
    } catch (const CXFileException& e) {
        return failure(e.m_nCode, e.m_nOperation, e.m_pszFileName);
    } catch (const CXException& e) {
        return "code " + std::to_string(e.m_nCode);
    }
    return "";
}
