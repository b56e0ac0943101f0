// Enumerators as ranges.
#include "qzcreate.h"
#include "qzheap.h"
#include "qzrange.h"
#include "qztree.h"

#include "expect.h"

#include <string>
#include <vector>
#if __cplusplus >= 202002L
#include <ranges>
static_assert(std::ranges::input_range<qz::Names> && std::ranges::input_range<qz::Values>);
#endif

namespace {

std::string joined(qz::Names names) {
    std::string text;
    for (const char* name : names)
        text += std::string(name) + " ";
    return text;
}

void walk_trees() {
    const auto tree = qz::new_tree();
    expect(joined(qz::child_names(*tree)).empty() && joined(qz::value_names(*tree)).empty(),
           "nothing is a range");
    qz::read_text(*tree, "[\\]|x=i1|y=stwo|[\\b]|z=i3|[\\a]|z=i4|");
    expect(joined(qz::child_names(*tree)) == "b a " && joined(qz::value_names(*tree)) == "x y ",
           "names in order");

    int sum = 0;
    std::string order;
    for (const auto& [name, child] : qz::children(*tree)) {
        order += name;
        sum = sum * 10 + qz::get(*child, "z", 0);
    }
    expect(order == "ba" && sum == 34, "children are opened");
    std::vector<std::string> texts;
    for (const auto& [name, value] : qz::values(*tree))
        texts.push_back(name + ("=" + qz::convert<std::string>(value).value()));
    expect(texts == std::vector<std::string>{"x=1", "y=two"}, "values are read");

    auto names = qz::child_names(*tree);
    const std::vector<CXString> once(names.begin(), names.end());
    expect(joined(std::move(names)) == "b a " && once.size() == 2, "a range starts over");
    auto gone = qz::children(*tree);
    expect(gone.begin() != gone.end(), "they open");
    tree->Clear();
    expect(gone.begin() == gone.end(), "what does not open is left out");
}

/// References that are held of an object.
unsigned references(IQZUnknown& object) {
    object.AddRef();
    return object.Release();
}

void walk_services() {
    const auto container = qz::new_service_container();
    const auto tree = qz::new_tree();
    const auto heap = CQZRef<IHeap>::Adopt(new_MemoryHeap(0));
    container->AddService("tree", tree.Get());
    container->AddService("heap", heap.Get());
    int trees = 0, all = 0;
    for (const CQZRef<IParam>& service : qz::services<IParam>(*container))
        trees += service == tree ? 1 : 100;
    for (const auto& [name, service] : qz::named_services(*container))
        all += std::string_view(name) == (service.Get() == tree.Get() ? "tree" : "heap") ? 1 : 100;
    expect(trees == 1 && all == 2, "services come by interface and by name");
    expect(references(*tree) == 2 && references(*container) == 1, "and are let go");
    expect(!qz::create<IParam>("no such class") && !qz::create<IParam>("CLSID_OFSERVICECONTAINER"),
           "what cannot be made is nothing");
}

void walk_storages() {
    const auto root = CQZRef<IXStorage>::Adopt(new_Storage(nullptr, 0));
    CQZRef<IXStorage>::Adopt(root->CreateStorage("folder"));
    for (const char* name : {"one", "two"}) {
        const auto stream = CQZRef<IXStream>::Adopt(root->CreateStream(name));
        stream->WriteString(name);
    }
    std::size_t bytes = 0, storages = 0;
    for (const auto& [name, stream] : qz::streams(*root))
        bytes += stream->GetSize() + std::string_view(name).size();
    for (const auto& [name, storage] : qz::storages(*root))
        storages += storage && std::string_view(name) == "folder" ? 1 : 100;
    expect(bytes == 14 && storages == 1, "the elements of a storage are opened");
    expect(joined(qz::storage_names(*root)) == "folder " && joined(qz::stream_names(*root)).size() == 8,
           "and named");

    const auto held = CQZRef<IXStream>::Adopt(root->OpenStream("one"));
    unsigned code = 0;
    try {
        for (const auto& element : qz::streams(*root))
            bytes += element.item->GetSize();
    } catch (const CXException& e) {
        code = e.GetCode();
    }
    expect(code == QZERR_OTHER, "a stream that does not open is not passed over");
}

} // namespace

void use_ranges() {
    walk_trees();
    walk_services();
    walk_storages();
}
