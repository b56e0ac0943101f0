// An object of a plug-in travels through stored files, also through a program that does not know its class.
//
//   object_travel make FILE            stores a tree with a star of class PathShape
//   object_travel print FILE           loads the tree and prints the star's points
//   object_travel carry FILE NEW_FILE  loads and stores the tree without the plug-in
//
// `carry` registers nothing, so the library puts a stand-in in the star's place, which keeps its bytes.
#include "path_shape.h"
#include "qzcore.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace {

namespace fs = std::filesystem;

constexpr char kStar[] = "Shapes\\Star";

void register_plugin() {
    if (RegisterObject("PathShape", "path_shape.dll") == 0)
        throw std::runtime_error("path_shape.dll is not found");
}

CQZRef<IPathShape> make_star() {
    constexpr double kTurn = 6.283185307179586;
    auto star = qz::create<IPathShape>("PathShape");
    if (!star) throw std::runtime_error("path_shape.dll makes no PathShape");
    for (int i = 0; i < 10; ++i) {
        const double radius = i % 2 == 0 ? 50.0 : 20.0;
        star->AddPoint({radius * std::sin(i * kTurn / 10), -radius * std::cos(i * kTurn / 10)});
    }
    star->SetClosed(1);
    star->SetStroke(0xD4AF37, 1.5);
    return star;
}

CQZRef<IParam> load(const fs::path& path) {
    auto tree = qz::new_tree();
    if (!qz::read_bytes(*tree, qz::read_file(path))) throw std::runtime_error("the file is no tree");
    return tree;
}

/// The object in the star's place, whatever class it is of.
CQZRef<IPersistXStream> star_of(IParam& tree) {
    const auto star = qz::get<CQZRef<IPersistXStream>>(tree, kStar);
    if (!star) throw std::runtime_error("there is no star");
    return *star;
}

void make(const fs::path& path) {
    register_plugin();
    const auto tree = qz::new_tree();
    qz::set(*tree, "Title", "A star");
    qz::set(*tree, kStar, make_star());
    qz::replace_file(path, qz::bytes_of(*tree));
    std::printf("stored a star of class PathShape, %u bytes\n", star_of(*tree)->GetSizeMax());
}

void print(const fs::path& path) {
    register_plugin();
    const auto tree = load(path);
    const auto star = CQZRef<IPathShape>::Query(star_of(*tree).Get());
    if (!star) throw std::runtime_error("the star is not a path");
    std::printf("%s path, stroke %06X, width %g\n", star->IsClosed() != 0 ? "closed" : "open",
                star->GetStrokeColor(), star->GetStrokeWidth());
    for (unsigned i = 0; i < star->GetPointCount(); ++i) {
        const tagRPOINT point = star->GetPoint(i);
        std::printf("%8.2f %8.2f\n", point.x, point.y);
    }
}

void carry(const fs::path& from, const fs::path& to) {
    const auto tree = load(from);
    const auto star = star_of(*tree);
    if (CQZRef<IPathShape>::Query(star.Get())) throw std::runtime_error("the plug-in is there after all");
    qz::replace_file(to, qz::bytes_of(*tree));
    std::printf("carried an object of the unknown class %s, %u bytes\n", star->GetClassName(),
                star->GetSizeMax());
}

int run(int count, char** arguments) {
    const std::string_view command = count > 1 ? arguments[1] : "";
    if (command == "make" && count == 3) {
        make(arguments[2]);
    } else if (command == "print" && count == 3) {
        print(arguments[2]);
    } else if (command == "carry" && count == 4) {
        carry(arguments[2], arguments[3]);
    } else {
        std::fputs("usage: object_travel make FILE | print FILE | carry FILE NEW_FILE\n", stderr);
        return 2;
    }
    return 0;
}

} // namespace

int main(int count, char** arguments) {
    try {
        return run(count, arguments);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "object_travel: %s\n", e.what());
    } catch (const CXFileException& e) {
        std::fprintf(stderr, "object_travel: %s: error %u\n", qz::utf8(e.m_pszFileName).c_str(), e.GetCode());
    } catch (const CXException& e) {
        std::fprintf(stderr, "object_travel: error %u\n", e.GetCode());
    }
    return 1;
}
