#include "trees/edit.h"

#include "qzstream.h"
#include "system/failure.h"

namespace tool {

bool apply(IParam& root, const Edit& edit) {
    std::vector<CXString> sections = edit.path.sections;
    if (edit.action == Edit::set_value) {
        make_section(root, sections)->SetValue(edit.path.value.GetData(), &edit.value);
        return true;
    }
    if (!find_section(root, sections)) return false;
    if (edit.action == Edit::remove_value) {
        const auto section = find_section(root, sections);
        if (!find_value(*section, edit.path.value)) return false;
        section->DeleteValue(edit.path.value.GetData());
        return true;
    }
    if (sections.empty()) fail("the root cannot be removed");
    const CXString name = sections.back();
    sections.pop_back();
    const auto parent = find_section(root, sections);
    // Over a storage the tree's own operation leaves the section there, empty.
    if (const auto storage = CQZRef<IXStorage>::Query(parent.Get())) {
        storage->DestroyStorage(name.GetData());
    } else {
        parent->DeleteSubParam(name.GetData());
    }
    return true;
}

} // namespace tool
