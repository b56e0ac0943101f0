// Trees of all backends, and their stored forms.
#include "soak/refusal.h"
#include "soak/tree_run.h"

#include "qzexception.h"
#include "qzfile.h"
#include "qzstream.h"
#include "qzstring.h"

#include <windows.h>

namespace {

using Tree = CQZRef<IParam>;

constexpr unsigned bit(unsigned type) { return 1u << type; }

// Tries something with memory refused, and if that failed without. @return what it answers
template <class Call>
int with_refusals(Work& work, Call call) {
    try {
        const Refusing refusing(work.refusal_random, work.refusals);
        if (const int result = call(); result != 0 || !refusing.happened()) return result;
    } catch (const CXMemException&) {
    }
    return call();
}

void through_text(Work& work, const TreeRun& run, IParam& tree) {
    CXString text;
    work.require(with_refusals(work, [&] { return Param_Param2String(&tree, text); }) == 1, "no text");
    const Tree again = Tree::Adopt(new_MemParam());
    work.require(with_refusals(work, [&] { return Param_String2Param(text, again.Get()); }) == 1,
                 "the text is not read");
    run.verify(*again);
}

void through_stream(Work& work, const TreeRun& run, IParam& tree) {
    CQZRef<IXStream> stream;
    const Tree again = Tree::Adopt(new_MemParam());
    const auto save = [&] {
        stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
        return stream ? SaveParamToXStream(stream.Get(), &tree) : 0;
    };
    const auto load = [&] {
        stream->Seek(0, 0);
        return LoadParamFromXStream(stream.Get(), again.Get());
    };
    work.require(with_refusals(work, save) == 1, "the stream is not written");
    work.require(with_refusals(work, load) == 1, "the stream is not read");
    run.verify(*again);
}

// A failed save leaves the older file whole.
void through_file(Work& work, const TreeRun& run, IParam& tree, const TreeRun& older) {
    const std::wstring path = work.path(L"form.ini");
    bool saved = false;
    try {
        const Refusing refusing(work.refusal_random, work.refusals);
        saved = Param_Param2IniFile(&tree, path.c_str()) == 1;
    } catch (const CXMemException&) {
    }
    const Tree again = Tree::Adopt(new_MemParam());
    work.require(with_refusals(work, [&] { return Param_IniFile2Param(path.c_str(), again.Get()); }) == 1,
                 "the file is not read");
    (saved ? run : older).verify(*again);
}

} // namespace

void work_memory_tree(Work& work) {
    TreeRun run(work, {.steps = 400});
    const Tree root = Tree::Adopt(new_MemParam());
    run.change(*root);
    run.verify(*root);
    const Tree copy = Tree::Adopt(new_MemParam());
    with_refusals(work, [&] { return Param_CopyTo(root.Get(), copy.Get()), 1; });
    run.verify(*copy);
    run.verify(*root);
}

void work_forms(Work& work) {
    const TreeRules rules{.lost_types = bit(QZVT_UCHAR) | bit(QZVT_WTEXT), .steps = 80};
    TreeRun run(work, rules);
    const Tree root = Tree::Adopt(new_MemParam());
    run.change(*root);
    const TreeRun older = run;
    work.require(Param_Param2IniFile(root.Get(), work.path(L"form.ini").c_str()) == 1, "no file");
    run.change(*root);
    through_text(work, run, *root);
    through_stream(work, run, *root);
    through_file(work, run, *root, older);
    Fio_DeleteFile(work.path(L"form.ini").c_str());
}

void work_ini(Work& work) {
    static std::atomic<unsigned> files; // of one name the platform may remember an older file
    const std::wstring path = work.path(L"live" + std::to_wstring(++files) + L".ini");
    {
        TreeRun run(work, {.lost_types = bit(QZVT_UCHAR) | bit(QZVT_WTEXT),
                           .create = TreeRules::Create::keeps,
                           .lists_default = true,
                           .steps = 25});
        const Tree root = Tree::Adopt(new_IParamIniFile(path.c_str()));
        run.change(*root);
        run.verify(*root);
    }
    Fio_DeleteFile(path.c_str());
}

void work_registry(Work& work) {
    TreeRun run(work,
                {.lost_types = bit(QZVT_WTEXT), .create = TreeRules::Create::clears_values, .steps = 60});
    const std::wstring key(work.key.begin(), work.key.end());
    const Tree root = Tree::Adopt(new_IParamCUReg(key.c_str()));
    work.require(bool(root), "the key does not open");
    run.change(*root);
    run.verify(*root);
    root->DeleteAllValues();
    root->DeleteAllSubParams();
}

void work_storage_tree(Work& work) {
    const std::wstring path = work.path(L"tree");
    TreeRun run(work, {.deleted_child_stays = true, .steps = 40});
    {
        const auto storage = CQZRef<IXStorage>::Adopt(new_Storage(path.c_str(), QZSTORAGE_TRANSACTED));
        const Tree root = Tree::Adopt(new_IXStorParam(storage.Get()));
        run.change(*root);
        work.require(storage->Commit() == 0, "the storage is not committed");
    }
    for (const int mode : {0, 1}) {
        const auto storage = CQZRef<IXStorage>::Adopt(open_Storage(path.c_str(), mode));
        run.verify(*Tree::Adopt(new_IXStorParam(storage.Get())));
    }
    Fio_DeleteFile(path.c_str());
}
