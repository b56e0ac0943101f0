// Parameter trees: typed values by their paths, walking, the forms they are stored in.
#include "guide.h"

#include "qzcore.h"

#include <cstdio>
#include <filesystem>

namespace {

// Deeper nodes would be walked the same way. Trees of others may be nested deeper than the stack is: then
// keep a list of the nodes to come instead of calling yourself.
void print(IParam& tree) {
    for (const auto& [name, child] : qz::children(tree)) {
        std::printf("[%s]\n", name);
        for (const auto& [key, value] : qz::values(*child))
            std::printf("  %s = %s\n", key, qz::convert<std::string>(value).value_or("no text").c_str());
    }
}

} // namespace

void trees(const Argument&) {
    const auto settings = qz::new_tree();
    qz::set(*settings, "Window\\Width", 800);
    qz::set(*settings, "Window\\Title", "plan");
    qz::set(*settings, "Grid\\Spacing", 12.5);
    qz::set(*settings, "Grid\\Visible", true);
    print(*settings);

    // As the type asked for or not at all; with a value to fall back on; converted.
    std::printf("%d, %d, %s\n", qz::get(*settings, "window\\WIDTH", 640), // names know no case
                qz::get(*settings, "Window\\Height", 480),
                qz::get<int>(*settings, "Grid\\Spacing") ? "an int" : "12.5 is no int");
    std::printf("%d as an int by force\n", qz::get_converted<int>(*settings, "Grid\\Spacing").value_or(0));

    // One text, a few bytes, a file: the same tree.
    std::printf("%s\n", qz::text_of(*settings).c_str());
    const auto copy = qz::new_tree();
    const std::string bytes = qz::bytes_of(*settings);
    qz::read_bytes(*copy, bytes);
    std::printf("%u bytes; the copy is %s\n", static_cast<unsigned>(bytes.size()),
                Param_Cmp(settings.Get(), copy.Get()) != 0 ? "the same" : "different");

    const auto file = std::filesystem::temp_directory_path() / "guide_settings.ini";
    {
        const auto live =
            CQZRef<IParam>::Adopt(new_IParamIniFile(file.c_str())); // each call goes to the file
        Param_CopyTo(settings.Get(), live.Get());
        qz::erase_value(*live, "Grid\\Visible");
        qz::erase_node(*live, "Window");
    }
    copy->Clear();
    Param_IniFile2Param(file.c_str(), copy.Get());
    std::printf("left in the file: %s\n", qz::text_of(*qz::open(*copy, "Grid")).c_str());
    std::filesystem::remove(file);
}
