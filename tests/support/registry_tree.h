// A key of the registry that a test has for itself.
#pragma once

#include "qzparam.h"
#include "qzref.h"

#include <string>

#include <windows.h>

// Made empty, and removed at the end.
class RegistryTree {
public:
    RegistryTree() : path("Software\\qzrcore test " + std::to_string(GetCurrentProcessId())) {
        RegDeleteTreeA(HKEY_CURRENT_USER, path.c_str());
        RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                        nullptr, &key, nullptr);
    }
    ~RegistryTree() {
        RegDeleteTreeA(key, nullptr);
        RegCloseKey(key);
        RegDeleteKeyA(HKEY_CURRENT_USER, path.c_str());
    }
    RegistryTree(const RegistryTree&) = delete;
    RegistryTree& operator=(const RegistryTree&) = delete;

    CQZRef<IParam> root() const {
        const std::wstring wide(path.begin(), path.end());
        return CQZRef<IParam>::Adopt(new_IParamCUReg(wide.c_str()));
    }

    const std::string path; // below HKEY_CURRENT_USER
    HKEY key = nullptr;
};
