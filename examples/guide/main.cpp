// The examples of the manual.
//
//   guide EXAMPLE [ARGUMENT]
#include "guide.h"

#include "qzcore.h"

#include <cstdio>
#include <cstring>

namespace {

struct Example {
    const char* name;
    void (*show)(const Argument&);
};

constexpr Example kExamples[] = {
    {"objects", objects}, {"variants", variants},       {"strings", strings}, {"threads", threads},
    {"streams", streams}, {"storages", storages},       {"files", files},     {"trees", trees},
    {"remote", remote},   {"translation", translation},
};

// Everything that the library throws derives from CXException.
int run(const Example& example, const Argument& argument) {
    try {
        example.show(argument);
        return 0;
    } catch (const CXFileException& e) {
        std::printf("%s: error %u\n", qz::utf8(e.m_pszFileName).c_str(), e.GetCode());
    } catch (const CXException& e) {
        std::printf("error %u\n", e.GetCode());
    }
    return 1;
}

} // namespace

int main(int count, char** arguments) {
    for (const Example& example : kExamples) {
        if (count > 1 && std::strcmp(arguments[1], example.name) == 0)
            return run(example, count > 2 ? qz::wide(arguments[2]) : Argument());
    }
    std::fputs("usage: guide EXAMPLE [ARGUMENT]\n", stderr);
    return 2;
}
