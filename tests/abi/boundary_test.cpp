// What crosses between modules: objects made by plug-ins, exceptions in both directions, ids of interfaces.
#include <windows.h> // before the library's headers here, behind them in the plug-in

#include "plugins/plugin_refuses/plugin_failure.h"
#include "qzcore.h"
#include "qzref.h"
#include "support/file_failure.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

namespace {

template <class Function>
Function* export_of(HMODULE module, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// Registered for the time of a test.
struct Registration {
    Registration(const char* class_name, const char* module) : name(class_name) {
        EXPECT_EQ(RegisterObject(class_name, module), 1);
    }
    ~Registration() { UnregisterObject(name); }
    const char* name;
};

struct LoadedModule {
    explicit LoadedModule(const char* name) : handle(LoadLibraryA(name)) {
        EXPECT_NE(handle, nullptr) << name;
    }
    ~LoadedModule() { FreeLibrary(handle); }
    HMODULE handle;
};

CQZRef<IPersistXStream> create_pair() {
    CQZRef<IQZUnknown> made;
    if (CreateObject("SamplePluginPair", nullptr, typeid(IPersistXStream), made.Put()) == 0) return {};
    return CQZRef<IPersistXStream>::Query(made.Get());
}

// The registry keeps modules loaded for ever; here the tests give them back, so that each begins without.
class Plugin : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(GetModuleHandleA("plugin_good.dll"), nullptr); }
    void TearDown() override {
        while (const HMODULE module = GetModuleHandleA("plugin_good.dll"))
            FreeLibrary(module);
    }
};

TEST_F(Plugin, ObjectsArePersistedThroughTheirModule) {
    const Registration registered("SamplePluginPair", "plugin_good.dll");
    // "SamplePluginPair", 12 bytes, 0x01020304, 1.5
    static const unsigned char record[] = "SamplePluginPair\0\x0C\0\0\0\x04\x03\x02\x01\0\0\0\0\0\0\xF8\x3F";
    const unsigned size = sizeof record - 1;
    const auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    stream->Write(record, size);
    stream->Seek(0, 0);
    CQZRef<IQZUnknown> read;
    ASSERT_EQ(ReadObjectFromXStream(stream.Get(), read.Put()), 1);
    const auto pair = CQZRef<IPersistXStream>::Require(read.Get());
    EXPECT_EQ(export_of<int()>(GetModuleHandleA("plugin_good.dll"), "plugin_live_objects")(), 1);
    EXPECT_EQ(SizeOfObject(pair.Get()), size);

    const auto copy = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    EXPECT_EQ(WriteObjectToXStream(copy.Get(), pair.Get()), 1);
    ASSERT_EQ(copy->GetSize(), size);
    EXPECT_EQ(std::memcmp(CQZRef<IMemBlock>::Require(copy.Get())->GetData(), record, size), 0);
}

TEST_F(Plugin, ARegistrarWorksAsLongAsItsModuleIsLoaded) {
    EXPECT_EQ(IsRegisterObject("SamplePluginPair"), 0);
    {
        const LoadedModule plugin("plugin_good.dll");
        EXPECT_EQ(IsRegisterObject("SamplePluginPair"), 1);
        EXPECT_TRUE(create_pair());
    }
    EXPECT_EQ(GetModuleHandleA("plugin_good.dll"), nullptr);
    EXPECT_EQ(IsRegisterObject("SamplePluginPair"), 0);
    EXPECT_FALSE(create_pair());
}

// What comes of creating an object of a plug-in that refuses, told by the type that arrives.
std::string outcome(const char* name) {
    const Registration registered(name, "plugin_refuses.dll");
    IQZUnknown* out = nullptr;
    try {
        return "answer " + std::to_string(CreateObject(name, nullptr, typeid(IXStream), &out));
    } catch (PluginFailure& own) {
        static_cast<CXException&>(own).Report(); // runs in the plug-in's class
        return "own " + std::to_string(own.GetCode()) + (own.reported ? ", reported" : "");
    } catch (const CXIFaceException& failure) {
        return std::string("interface ") + failure.m_pIid->name();
    } catch (const CXFileException& failure) {
        EXPECT_EQ(failure.m_hModule, GetModuleHandleA("qzrcore.dll"));
        return failure_of([] { throw; }); // through all modules once more
    } catch (const CXString& text) {
        return text.GetData();
    }
}

TEST(RefusingPlugin, WhatItThrowsArrives) {
    const std::pair<const char*, std::string> rows[] = {
        {"SampleRefusal", "answer 0"},
        {"SampleFileFailure", failure(QZERR_SHARING, QZOP_WRITE, L"plugin data.bin")},
        {"SampleOwnFailure", "own 4711, reported"},
        {"SampleIfaceFailure", "interface 8IXStream"},
        {"SampleTextFailure", "the plug-in's words"},
    };
    for (const auto& [name, expected] : rows)
        EXPECT_EQ(outcome(name), expected) << name;
}

TEST(Boundary, ExceptionsOfTheLibraryAreCaughtByTypeInOtherModules) {
    const LoadedModule plugin("plugin_good.dll");
    const auto exhaust = [] { Mem_DefaultHeap()->Alloc(1ull << 40); };
    EXPECT_THROW(exhaust(), CXMemException);
    auto* const catches = export_of<int(void (*)())>(plugin.handle, "plugin_catches_memory_exception");
    EXPECT_EQ(catches(exhaust), 1);
    EXPECT_EQ(catches([] { throw CXEofException(); }), 0);

    auto* const rethrows = export_of<void(void (*)())>(plugin.handle, "plugin_rethrows");
    const auto read_past_the_end = [] { CQZRef<IXStream>::Adopt(new_StreamOnMemory())->ReadDWord(); };
    EXPECT_THROW(rethrows(read_past_the_end), CXEofException);
    const auto bad_seek = [] { CQZRef<IXStream>::Adopt(new_StreamOnMemory())->Seek(0, 3); };
    EXPECT_EQ(failure_of([&] { rethrows(bad_seek); }),
              failure(QZERR_SEEK_ORIGIN, QZOP_SEEK, L"Memory stream"));
}

TEST(Boundary, TheSystemsGetClassNameIsThereInEitherOrderOfIncludes) {
    const LoadedModule plugin("plugin_good.dll");
    auto* const of_plugin = export_of<int(HWND, char*, int)>(plugin.handle, "plugin_window_class");
    char here[100] = {}, there[100] = {};
    wchar_t wide[100] = {};
    const HWND desktop = GetDesktopWindow();
    EXPECT_EQ(GetClassName(desktop, here, 100), of_plugin(desktop, there, 100));
    EXPECT_STREQ(here, there);
    EXPECT_EQ(GetClassName(desktop, wide, 100), static_cast<int>(std::strlen(here)));
}

TEST(Boundary, InterfaceIdsOfOtherModulesMatch) {
    const LoadedModule plugin("plugin_good.dll");
    const auto& unknown = *export_of<const std::type_info*()>(plugin.handle, "plugin_id_of_unknown")();
    const auto& stream_id = *export_of<const std::type_info*()>(plugin.handle, "plugin_id_of_stream")();
    EXPECT_NE(&unknown, &typeid(IQZUnknown)); // another object, the same id
    EXPECT_TRUE(unknown == typeid(IQZUnknown));
    EXPECT_TRUE(stream_id == typeid(IXStream));
    EXPECT_FALSE(stream_id == unknown);
    const auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    for (const std::type_info* id : {&unknown, &stream_id}) {
        CQZRef<IQZUnknown> found;
        EXPECT_EQ(stream->QueryInterface(*id, found.Put()), 1);
        EXPECT_EQ(found.Get(), stream.Get());
    }
}

} // namespace
