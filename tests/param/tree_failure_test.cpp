// Trees that fail in the middle of a walk: what they throw passes, what was held is released, and results are
// as they were.
#include "foreign_param.h"
#include "forms.h"

#include "support/import_mock.h"
#include "support/param_outline.h"
#include "support/scratch_folder.h"

#include "qzexception.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include <windows.h>

namespace {

using namespace forms;

const char* const kSteps = "set v; create a; set a\\v; create a\\b; set a\\b\\v";

// One operation on two trees, the first of which, or the second, fails.
struct Operation {
    const char* name;
    std::function<int(IParam& first, IParam& second)> run; // 1 when it succeeds
};

const std::vector<Operation>& operations() {
    static const std::vector<Operation> all = {
        {"write text",
         [](IParam& first, IParam&) {
             CXString text("untouched");
             try {
                 return Param_Param2String(&first, text);
             } catch (...) {
                 EXPECT_EQ(text, "untouched");
                 throw;
             }
         }},
        {"write a stream",
         [](IParam& first, IParam&) { return SaveParamToXStream(stream_of({}).Get(), &first); }},
        {"compare", [](IParam& first, IParam& second) { return Param_Cmp(&first, &second); }},
        {"copy", [](IParam& first, IParam& second) { return Param_CopyTo(&first, &second), 1; }},
        {"dump", [](IParam& first, IParam&) { return Dump_Param(&first), 1; }},
        {"read text",
         [](IParam&, IParam& second) {
             CXString text("[\\]|v=sx|[\\a\\b]|v=x00|w=i1|u");
             return Param_String2Param(text, &second);
         }},
        {"read a stream",
         [](IParam&, IParam& second) {
             const Stream stream = stream_of(bytes_of(*memory_tree(kSteps)));
             return LoadParamFromXStream(stream.Get(), &second);
         }},
    };
    return all;
}

// Fails at the first call, at the second, and so on until the operation succeeds.
TEST(TreeFailure, ReleasesEverythingWhereverATreeThrows) {
    for (const Operation& operation : operations()) {
        int failures = 0;
        for (const bool first_fails : {true, false}) {
            int result = 0;
            for (int call = 1; result == 0; ++call) {
                SCOPED_TRACE(operation.name + std::string(" ") + std::to_string(call));
                ForeignTree first(kSteps), second(kSteps);
                (first_fails ? first : second).calls_left = call;
                try {
                    result = operation.run(*first.root(), *second.root());
                    ASSERT_EQ(result, 1);
                } catch (const CXException& e) {
                    EXPECT_EQ(e.GetCode(), ForeignTree::kFailure);
                    ++failures;
                }
                EXPECT_EQ(first.held, 0);
                EXPECT_EQ(second.held, 0);
            }
        }
        EXPECT_GE(failures, 5) << operation.name;
    }
}

TEST(TreeFailure, EnumeratorsAreNeeded) {
    for (const Operation& operation : operations()) {
        if (std::string(operation.name).substr(0, 4) == "read") continue; // which asks for none
        for (bool ForeignTree::*enumerates :
             {&ForeignTree::enumerates_values, &ForeignTree::enumerates_children}) {
            SCOPED_TRACE(operation.name);
            ForeignTree first(kSteps), second(kSteps);
            first.*enumerates = false;
            try {
                operation.run(*first.root(), *second.root());
                ADD_FAILURE() << "no exception";
            } catch (const CXIFaceException& e) {
                EXPECT_TRUE(*e.m_pIid == typeid(CTEnum<const char*>));
            }
            EXPECT_EQ(first.held, 0);
            EXPECT_EQ(second.held, 0);
        }
    }
}

// Going on without the child would lose what belongs below it.
TEST(TreeFailure, AChildThatTheTreeRefusesEndsTheOperation) {
    const char* const steps = "set v; create a; set a\\w";
    ForeignTree copied, parsed, loaded;
    copied.creates = parsed.creates = loaded.creates = false;
    EXPECT_THROW(Param_CopyTo(memory_tree(steps).Get(), copied.root().Get()), CXMemException);
    CXString text("[\\]|a=i1|[\\s\\t]|b=i2|[\\]|c=i3");
    EXPECT_THROW(Param_String2Param(text, parsed.root().Get()), CXMemException);
    EXPECT_EQ(outline_of(*parsed.root()), "a=1"); // what was read until then
    const Stream stream = stream_of(bytes_of(*memory_tree(steps)));
    EXPECT_THROW(LoadParamFromXStream(stream.Get(), loaded.root().Get()), CXMemException);
    EXPECT_EQ(copied.held + parsed.held + loaded.held, 0);
}

// Nothing of what was read is in doubt then.
TEST(TreeFailure, ATextFileThatCannotBeClosedIsReadAllTheSame) {
    const ScratchFolder folder;
    const Tree tree = memory_tree();
    const ImportMock mock("qzrcore.dll", "UnmapViewOfFile", reinterpret_cast<void*>(+[](const void* view) {
                              return UnmapViewOfFile(view) - 1;
                          }));
    EXPECT_EQ(Param_IniFile2Param(folder.file(L"text", "[\\]\r\na=i1").c_str(), tree.Get()), 1);
    EXPECT_EQ(outline_of(*tree), "a=1");
}

} // namespace
