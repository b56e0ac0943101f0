// The fuzzers.
//
//     fuzz TARGET [--seconds N] [--seed N] [--distil FOLDER]      runs the target
//     fuzz TARGET FILE...                                         runs it on these inputs alone
//     fuzz                                                        names the targets
//
// Starts in the repository's root. Ends with 0, 1 after a fault, 3 after a crash or a hang.
#include "core/library.h"
#include "fuzz/engine.h"
#include "fuzz/guard.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <windows.h>

namespace {

using namespace fuzz;

const Target* const kTargets[] = {&kText,    &kTreeStream, &kObject,  &kVariant, &kDictionary,
                                  &kInclude, &kDialog,     &kImports, &kStorage, &kMemoryFile,
                                  &kUrl,     &kRegistry,   &kIniFile};

const Target* find_target(const char* name) {
    for (const Target* const target : kTargets)
        if (std::strcmp(target->name, name) == 0) return target;
    return nullptr;
}

int replay(const Target& target, char** files, int count) {
    const std::string folder = "build/fuzz-work/replayed";
    std::filesystem::create_directories(folder);
    start_guard({target.name, folder, kPatience, target.most_memory});
    for (int i = 0; i < count; ++i) {
        std::ifstream in(files[i], std::ios::binary);
        const std::string input{std::istreambuf_iterator<char>(in), {}};
        input_begins(input);
        target.run(input);
        check_heaps();
        input_ends();
        std::printf("%s: %u bytes, %u KiB of memory\n", files[i], static_cast<unsigned>(input.size()),
                    static_cast<unsigned>(memory_asked_for() / 1024));
    }
    return 0;
}

int run(int argc, char** argv) {
    const Target* const target = argc > 1 ? find_target(argv[1]) : nullptr;
    if (target == nullptr) {
        for (const Target* const each : kTargets)
            std::printf("%s\n", each->name);
        return argc > 1 ? 2 : 0;
    }
    if (argc > 2 && argv[2][0] != '-') return replay(*target, argv + 2, argc - 2);
    Run options;
    for (int i = 2; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        if (option == "--seconds") options.seconds = static_cast<unsigned>(std::atoi(argv[i + 1]));
        if (option == "--seed") options.seed = std::strtoull(argv[i + 1], nullptr, 10);
        if (option == "--distil") options.distil = argv[i + 1];
    }
    return run_target(*target, options);
}

} // namespace

int main(int argc, char** argv) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    if (!qzr::start_library()) return 2;
    const int result = run(argc, argv);
    std::fflush(stdout);
    qzr::stop_library();
    return result;
}
