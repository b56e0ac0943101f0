// The module mfc140u.dll, hooked, with a dictionary for its texts; in a process of its own, since
// dictionaries stay and this one names a language.
#pragma once

#include "plugins/mfc140u/calls.h"

#include <string>

#include <windows.h>

class FruitModule {
public:
    enum class State { hooked, as_it_is };
    // The pairs of the dictionary, line by line; a context is written with the letters that end it.
    explicit FruitModule(const std::string& pairs, State state = State::hooked);
    ~FruitModule();
    FruitModule(const FruitModule&) = delete;
    FruitModule& operator=(const FruitModule&) = delete;

    HMODULE get() const { return handle_; }
    Calls calls() const;

    static constexpr unsigned kFunctions = 24;

private:
    HMODULE handle_;
};

// A pair whose source is a text in the context of one of the module's resources: kind 1 dialogs, 2 menus, 3
// strings.
std::string in_context(int kind, const std::string& id, const std::string& text,
                       const std::string& translation);
