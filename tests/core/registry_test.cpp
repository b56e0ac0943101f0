// The class registry, with classes of a plug-in and of the library itself.
#include "qzobject.h"
#include "qzref.h"
#include "qzstring.h"
#include "support/file_failure.h"
#include "support/limited_memory.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

namespace {

constexpr const char* kPlugin = "plugin_good.dll";

// Equal hashes: the second of each pair is never exported or registered anywhere.
constexpr const char* kName = "SharpPageReaderA";
constexpr const char* kSameHash = "FullChartObject3";
constexpr const char* kPlain = "tlnky";
constexpr const char* kSameHashWithHighBytes = "\xF6gsi\xF9"; // only when bytes count as signed

int create(const char* name, CQZRef<IQZUnknown>& object, IQZUnknown* outer = nullptr) {
    return CreateObject(name, outer, typeid(IQZUnknown), object.Put());
}

HINSTANCE load_plugin() { return LoadLibraryA(kPlugin); }

// Registrations last as long as the process; each test takes back its own.
class Registry : public testing::Test {
protected:
    void TearDown() override {
        for (const char* name :
             {kName, kPlain, "PluginResult", "PluginThrows", "NotExportedByThePlugin", "no module"})
            UnregisterObject(name);
    }
};

TEST_F(Registry, CreatesFromAModuleFileOnDemand) {
    // A file that no other test has loaded.
    char loaded[MAX_PATH];
    ASSERT_NE(GetModuleFileNameA(load_plugin(), loaded, sizeof loaded), 0u);
    const ScratchFolder folder;
    const std::string path = narrow(folder.path(L"plugin_copy.dll").c_str());
    ASSERT_NE(CopyFileA(loaded, path.c_str(), FALSE), FALSE);

    EXPECT_EQ(RegisterObject(kName, path.c_str()), 1);
    EXPECT_EQ(IsRegisterObject(kName), 1);
    EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr) << "loaded by the first creation only";

    CQZRef<IQZUnknown> object;
    EXPECT_NE(create(kName, object), 0);
    ASSERT_TRUE(object);
    const HINSTANCE module = GetModuleHandleA(path.c_str());
    ASSERT_NE(module, nullptr);
    const auto live =
        reinterpret_cast<int (*)()>(reinterpret_cast<void*>(GetProcAddress(module, "plugin_live_objects")));
    EXPECT_EQ(live(), 1);
    EXPECT_EQ(object->AddRef(), 2u) << "one reference for the caller";
    object->Release();
    object.Reset();
    EXPECT_EQ(live(), 0);

    EXPECT_EQ(UnregisterObject(kName), 1);
    EXPECT_EQ(GetModuleHandleA(path.c_str()), module) << "modules stay loaded";
    FreeLibrary(module);
}

TEST_F(Registry, PassesOnWhatTheFactoryDoes) {
    const HINSTANCE module = load_plugin();
    EXPECT_EQ(RegisterObject("NotExportedByThePlugin", module), 0);
    EXPECT_EQ(IsRegisterObject("NotExportedByThePlugin"), 0);
    ASSERT_EQ(RegisterObject("PluginResult", module), 1);
    ASSERT_EQ(RegisterObject("PluginThrows", module), 1);
    CQZRef<IQZUnknown> object;
    EXPECT_EQ(create("PluginResult", object), 66);
    IQZUnknown* out = nullptr;
    IQZUnknown* const outer = reinterpret_cast<IQZUnknown*>(&out); // not looked at
    EXPECT_EQ(CreateObject("PluginResult", outer, typeid(IQZUnknown), &out), 77);
    EXPECT_EQ(CreateObjectC("PluginResult", nullptr, typeid(IQZUnknown), &out), 66);
    EXPECT_THROW(create("PluginThrows", object), int);
    EXPECT_EQ(CreateObject("PluginResult", nullptr, typeid(IQZUnknown), nullptr), 0) << "no out";
}

TEST_F(Registry, UnknownNamesGiveNothing) {
    for (const char* name : {"no such class", "", static_cast<const char*>(nullptr)}) {
        SCOPED_TRACE(name != nullptr ? name : "null");
        auto* out = reinterpret_cast<IQZUnknown*>(1);
        EXPECT_EQ(CreateObject(name, nullptr, typeid(IQZUnknown), &out), 0);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(IsRegisterObject(name), 0);
        EXPECT_EQ(UnregisterObject(name), 0);
    }
}

TEST_F(Registry, TheEmptyNameIsANameByPathOnly) {
    EXPECT_EQ(RegisterObject("", load_plugin()), 0) << "nothing is exported under it";
    EXPECT_EQ(RegisterObject("", kPlugin), 1);
    EXPECT_EQ(IsRegisterObject(""), 1);
    EXPECT_EQ(IsRegisterObject(nullptr), 1) << "null counts as empty";
    EXPECT_EQ(UnregisterObject(nullptr), 1);
    EXPECT_EQ(IsRegisterObject(""), 0);
    EXPECT_EQ(UnregisterObject(""), 0) << "it works once";
}

TEST_F(Registry, NamesAreTheSameWhenTheirHashesAre) {
    ASSERT_EQ(RegisterObject(kName, kPlugin), 1);
    EXPECT_EQ(IsRegisterObject(kSameHash), 1);
    EXPECT_EQ(RegisterObject(kSameHash, "no such file.dll"), 1) << "the path is not looked at";
    EXPECT_EQ(RegisterObject(kSameHash, GetModuleHandleA("kernel32.dll")), 1) << "nor the module";
    CQZRef<IQZUnknown> object;
    EXPECT_NE(create(kSameHash, object), 0) << "the first registration serves both";
    EXPECT_TRUE(object);
    EXPECT_EQ(UnregisterObject(kSameHash), 1);
    EXPECT_EQ(IsRegisterObject(kName), 0);

    ASSERT_EQ(RegisterObject(kPlain, kPlugin), 1);
    EXPECT_EQ(IsRegisterObject(kSameHashWithHighBytes), 1);
}

TEST_F(Registry, MissingFilesAreNotRegistered) {
    const std::string too_long = std::string(600, 'x') + ".dll";
    for (const char* path : {"no such file.dll", "", too_long.c_str(), static_cast<const char*>(nullptr)}) {
        SCOPED_TRACE(path != nullptr ? path : "null");
        EXPECT_EQ(RegisterObject("missing", path), 0);
        EXPECT_EQ(IsRegisterObject("missing"), 0);
    }
}

TEST_F(Registry, FilesThatAreNoModulesGiveNothing) {
    const ScratchFolder folder;
    const std::string path = narrow(folder.file(L"no module.dll").c_str());
    EXPECT_EQ(RegisterObject("no module", path.c_str()), 1) << "the file is there";
    CQZRef<IQZUnknown> object;
    EXPECT_EQ(create("no module", object), 0);
    EXPECT_FALSE(object);
}

TEST_F(Registry, WithoutMemoryNothingIsRegisteredAndNothingThrown) {
    const HINSTANCE module = load_plugin();
    std::vector<CXString> held; // so that no text's block is left to be used again
    for (int i = 0; i < 20'000; ++i)
        held.emplace_back(std::string(static_cast<std::size_t>(i) % 200, 'x').c_str());
    for (const bool by_path : {false, true}) {
        SCOPED_TRACE(by_path);
        const auto add = [&] {
            return by_path ? RegisterObject(kName, kPlugin) : RegisterObject(kName, module);
        };
        int requests = 0, answer = 0;
        for (; answer == 0 && requests < 100; ++requests) {
            const LimitedMemory limited(requests);
            EXPECT_NO_THROW(answer = add());
            EXPECT_EQ(IsRegisterObject(kName), answer);
        }
        EXPECT_GT(requests, 1) << "memory was never missing";
        EXPECT_EQ(UnregisterObject(kName), 1);
    }
}

// The module is kept as loaded before its export is looked up, so a second try does not look again.
TEST_F(Registry, AModuleWithoutTheExportStaysWithoutFactory) {
    ASSERT_EQ(RegisterObject("NotExportedByThePlugin", kPlugin), 1);
    for (int i = 0; i < 3; ++i) {
        auto* out = reinterpret_cast<IQZUnknown*>(1);
        EXPECT_EQ(CreateObject("NotExportedByThePlugin", nullptr, typeid(IQZUnknown), &out), 0);
        EXPECT_EQ(out, nullptr);
    }
    EXPECT_NE(GetModuleHandleA(kPlugin), nullptr);
    EXPECT_EQ(IsRegisterObject("NotExportedByThePlugin"), 1);
}

} // namespace
