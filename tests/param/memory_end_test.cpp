// Memory that ends anywhere: an operation is done as a whole, or tells, or answers that it did nothing.
#include "forms.h"

#include "support/import_mock.h"
#include "support/param_outline.h"
#include "support/scratch_folder.h"
#include "support/storages.h"

#include "qzexception.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include <windows.h>

namespace {

using namespace forms;

int requests_left = 0; // of the library, and of the runtime on this thread
DWORD thread_with_limit = 0;

bool refused() { return GetCurrentThreadId() == thread_with_limit && requests_left-- <= 0; }

void* WINAPI alloc_or_refuse(HANDLE heap, DWORD flags, SIZE_T size) {
    return refused() ? nullptr : HeapAlloc(heap, flags, size);
}
void* malloc_or_refuse(std::size_t size) { return refused() ? nullptr : std::malloc(size); }

// @return what came of it: "1", "0" or "thrown"
std::string run_with(int requests, const std::function<bool()>& run) {
    const ImportMock heap("qzrcore.dll", "HeapAlloc", reinterpret_cast<void*>(&alloc_or_refuse));
    const ImportMock runtime("libstdc++-6.dll", "malloc", reinterpret_cast<void*>(&malloc_or_refuse));
    std::string told = "thrown";
    requests_left = requests;
    thread_with_limit = GetCurrentThreadId();
    try {
        told = run() ? "1" : "0";
    } catch (const CXException&) { // of memory, or of the enumerator that a tree did not give
    }
    thread_with_limit = 0;
    return told;
}

class MemoryEnd : public testing::Test {
protected:
    // With no memory, with a little more, and so on until the work is done.
    void expect(const char* what, const std::string& on_failure, const std::function<bool()>& run,
                const std::function<void(bool done)>& check) {
        for (int requests = 0; requests < 5000; ++requests) {
            SCOPED_TRACE(what + (" with " + std::to_string(requests)));
            const std::string told = run_with(requests, run);
            EXPECT_TRUE(told == "1" || on_failure.find(told) != std::string::npos) << told;
            check(told == "1");
            if (requests_left >= 0 || HasFailure()) return;
        }
        ADD_FAILURE() << what << " never comes to an end";
    }

    const Tree tree_ = tree_from("[\\]|a=i1|b=stext|[\\s\\deep]|c=x00FF|[\\t]|d=R1.5");
    const std::string form_ = text_of(*tree_);
    ScratchFolder folder_;
};

TEST_F(MemoryEnd, TextsAreWhole) {
    CXString text;
    expect(
        "writing", "0 thrown", [&] { return text = CXString(), Param_Param2String(tree_.Get(), text) == 1; },
        [&](bool done) { EXPECT_EQ(text, done ? form_.c_str() : ""); });
}

TEST_F(MemoryEnd, TreesArriveWholeOrTheCallerIsTold) {
    std::vector<std::string> paths;
    for (int i = 0; i < 60; ++i)
        paths.push_back("n" + std::to_string(i) + "\\deeper\\v" + std::to_string(i));
    const auto set_all = [&](IParam& into) {
        for (const std::string& path : paths)
            set_int(into, path.c_str(), 5);
        return 1;
    };
    const Tree tree = memory_tree();
    set_all(*tree);
    CXString text(text_of(*tree).c_str());
    const Stream stream = stream_of(bytes_of(*tree));
    const std::pair<const char*, std::function<int(IParam&)>> operations[] = {
        {"copy", [&](IParam& into) { return Param_CopyTo(tree.Get(), &into), 1; }},
        {"text", [&](IParam& into) { return Param_String2Param(text, &into); }},
        {"stream",
         [&](IParam& into) { return stream->Seek(0, 0), LoadParamFromXStream(stream.Get(), &into); }},
        {"set", set_all},
    };
    std::vector<Tree> kept; // so that their memory serves none of the later ones
    for (const auto& [name, run] : operations) {
        const std::size_t before = kept.size();
        kept.push_back(memory_tree());
        expect(
            name, "0 thrown", [&] { return run(*kept.back()) == 1; },
            [&](bool done) {
                EXPECT_TRUE(!done || Param_Cmp(tree.Get(), kept.back().Get()) == 1);
                kept.push_back(memory_tree());
            });
        EXPECT_GE(kept.size() - before, 4u) << name << " was refused twice at least";
    }
}

TEST_F(MemoryEnd, FilesAreTheOldOrTheNewOnes) {
    const std::wstring path = folder_.file(L"f.ini", "old");
    expect(
        "writing", "thrown", [&] { return Param_Param2IniFile(tree_.Get(), path.c_str()) == 1; },
        [&](bool done) {
            EXPECT_EQ(folder_.contents(L"f.ini") == "old", !done);
            EXPECT_EQ(folder_.count(), 1u);
        });
    Tree read;
    expect(
        "reading", "0 thrown",
        [&] {
            read = Tree::Adopt(new_MemParam());
            return read && Param_IniFile2Param(path.c_str(), read.Get()) == 1;
        },
        [&](bool done) { EXPECT_TRUE(!done || text_of(*read) == form_); });
}

TEST_F(MemoryEnd, LiveTreesAreMadeOrNot) {
    const std::wstring path = folder_.path(L"live.ini");
    const StorageRef storage = memory_storage();
    Tree made;
    const std::pair<const char*, std::function<IParam*()>> makers[] = {
        {"INI", [&] { return new_IParamIniFile(path.c_str()); }},
        {"storage", [&] { return new_IXStorParam(storage.Get()); }},
        {"memory", [] { return new_MemParam(); }},
    };
    for (const auto& [what, make] : makers) {
        expect(
            what, "0 thrown", [&] { return bool(made = Tree::Adopt(make())); }, [](bool) {});
        const CQZVariant value("a text for the heap");
        expect(
            what, "thrown", [&] { return made->SetValue("v", &value), true; },
            [&](bool done) { EXPECT_EQ(value_in(*made, "v") != "none", done); });
        made.Reset();
    }
}

// Among many names there is an index, which is made anew as they leave.
TEST_F(MemoryEnd, NamesAreThereOrNot) {
    const Tree tree = memory_tree();
    const auto name = [](int i) { return "n" + std::to_string(i); };
    int stored = 0, given_up = 0;
    for (int i = 0; i < 3000; ++i) {
        const bool done =
            run_with(i % 2 != 0 ? 0 : 1000, [&] { return set_int(*tree, name(i).c_str(), i), true; }) == "1";
        EXPECT_EQ(get_int(*tree, name(i).c_str()), done ? i : kNoValue);
        stored += done;
        given_up += !done;
    }
    EXPECT_GT(stored, 1000);
    EXPECT_GT(given_up, 0);
    EXPECT_EQ(take_names(tree->EnumValues()).size(), static_cast<std::size_t>(stored));
    for (int i = 0; i < 3000; ++i)
        run_with(0, [&] { return tree->DeleteValue(name(i).c_str()), true; });
    EXPECT_EQ(outline_of(*tree), "");
}

} // namespace
