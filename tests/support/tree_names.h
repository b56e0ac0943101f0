// What a node of a parameter tree lists.
#pragma once

#include "qzparam.h"
#include "qzref.h"

#include <string>
#include <vector>

// All names that an enumerator gives; releases it.
inline std::vector<std::string> take_names(CTEnum<const char*>* names) {
    const auto held = CQZRef<CTEnum<const char*>>::Adopt(names);
    std::vector<std::string> all;
    for (const char* name; held && held->Next(1, &name, nullptr) != 0;)
        all.push_back(name);
    return all;
}

// The children that open.
inline std::vector<CQZRef<IParam>> children_of(IParam& node) {
    std::vector<CQZRef<IParam>> all;
    for (const std::string& name : take_names(node.EnumSubParams()))
        if (IParam* const child = node.OpenSubParam(name.c_str(), 0))
            all.push_back(CQZRef<IParam>::Adopt(child));
    return all;
}
