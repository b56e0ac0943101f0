// What crosses between modules: objects made by plug-ins, exceptions in both directions, ids of interfaces,
// and objects of the client in the library's hands.
#include "abi/client_objects.h"
#include "plugins/plugin_refuses/plugin_failure.h"
#include "qzcore.h"
#include "qzref.h"

#include <gtest/gtest.h>

#include <cstring>

#include <windows.h>
#undef GetClassName

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

TEST_F(Plugin, ObjectsAreCreatedByTheNameOfTheirFactory) {
    const Registration registered("SamplePluginPair", "plugin_good.dll");
    EXPECT_EQ(GetModuleHandleA("plugin_good.dll"), nullptr); // loaded when first needed
    auto pair = create_pair();
    ASSERT_TRUE(pair);
    const HMODULE module = GetModuleHandleA("plugin_good.dll");
    ASSERT_NE(module, nullptr);
    auto* const live_objects = export_of<int()>(module, "plugin_live_objects");
    EXPECT_EQ(live_objects(), 1);
    EXPECT_STREQ(pair->GetClassName(), "SamplePluginPair");
    EXPECT_TRUE(CQZRef<IPersistX>::Query(pair.Get()));
    EXPECT_FALSE(CQZRef<IXStream>::Query(pair.Get()));
    pair.Reset();
    EXPECT_EQ(live_objects(), 0);

    IQZUnknown* out = pair.Get();
    EXPECT_EQ(CreateObject("SamplePluginPair", nullptr, typeid(IXStream), &out), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(live_objects(), 0);
}

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

    const auto copy = CQZRef<ClientStream>::Adopt(new ClientStream);
    EXPECT_EQ(WriteObjectToXStream(copy.Get(), pair.Get()), 1);
    ASSERT_EQ(copy->bytes.size(), size);
    EXPECT_EQ(std::memcmp(copy->bytes.data(), record, size), 0);
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

TEST_F(Plugin, AMissingExportAnswersNoAgainAndAgain) {
    const Registration registered("SampleMissing", "plugin_no_export.dll");
    for (int round = 0; round < 3; ++round) {
        IQZUnknown* out = reinterpret_cast<IQZUnknown*>(8);
        EXPECT_EQ(CreateObject("SampleMissing", nullptr, typeid(IQZUnknown), &out), 0);
        EXPECT_EQ(out, nullptr);
    }
    EXPECT_NE(GetModuleHandleA("plugin_no_export.dll"), nullptr);
    EXPECT_EQ(IsRegisterObject("SampleMissing"), 1);
    EXPECT_EQ(RegisterObject("SampleMissing2", GetModuleHandleA("plugin_no_export.dll")), 0);
    EXPECT_EQ(IsRegisterObject("SampleMissing2"), 0);
}

TEST_F(Plugin, ThePlainEntryServesCallersThatBindByName) {
    auto* const create = export_of<int(const char*, IQZUnknown*, const std::type_info&, IQZUnknown**)>(
        GetModuleHandleA("qzrcore.dll"), "CreateObjectC");
    ASSERT_NE(create, nullptr);
    const Registration registered("SamplePluginPair", "plugin_good.dll");
    CQZRef<IQZUnknown> pair;
    EXPECT_EQ(create("SamplePluginPair", nullptr, typeid(IPersistXStream), pair.Put()), 1);
    EXPECT_TRUE(pair);
    EXPECT_EQ(create("nobody", nullptr, typeid(IPersistXStream), pair.Put()), 0);
    auto* const container = export_of<int(IQZUnknown*, const std::type_info&, IQZUnknown**)>(
        GetModuleHandleA("qzrcore.dll"), "CLSID_OFSERVICECONTAINER");
    ASSERT_NE(container, nullptr);
    EXPECT_EQ(container(nullptr, typeid(IQZServiceContainer), pair.Put()), 1);
}

class RefusingPlugin : public testing::Test {
protected:
    static int create(const char* name) {
        const Registration registered(name, "plugin_refuses.dll");
        IQZUnknown* out = nullptr;
        return CreateObject(name, nullptr, typeid(IXStream), &out);
    }
};

TEST_F(RefusingPlugin, ARefusalIsPassedOn) { EXPECT_EQ(create("SampleRefusal"), 0); }

TEST_F(RefusingPlugin, AFileExceptionArrivesWithItsFields) {
    try {
        create("SampleFileFailure");
        FAIL() << "nothing was thrown";
    } catch (const CXFileException& failure) {
        EXPECT_EQ(failure.GetCode(), QZERR_SHARING);
        EXPECT_EQ(failure.m_nOperation, QZOP_WRITE);
        EXPECT_STREQ(failure.m_pszFileName, L"plugin data.bin");
        EXPECT_EQ(failure.m_hModule, GetModuleHandleA("qzrcore.dll"));
    }
}

TEST_F(RefusingPlugin, AnExceptionOfItsOwnArrivesAsItselfAndAsItsBase) {
    try {
        create("SampleOwnFailure");
        FAIL() << "nothing was thrown";
    } catch (CXException& failure) {
        EXPECT_EQ(failure.GetCode(), 4711u);
        failure.Report(); // runs in the plug-in's class
        const auto* const own = dynamic_cast<PluginFailure*>(&failure);
        ASSERT_NE(own, nullptr);
        EXPECT_TRUE(own->reported);
    }
    EXPECT_THROW(create("SampleOwnFailure"), PluginFailure);
}

TEST_F(RefusingPlugin, ATextAndAnInterfaceIdArrive) {
    try {
        create("SampleTextFailure");
        FAIL() << "nothing was thrown";
    } catch (const CXString& text) {
        EXPECT_STREQ(text.GetData(), "the plug-in's words");
    }
    try {
        create("SampleIfaceFailure");
        FAIL() << "nothing was thrown";
    } catch (const CXIFaceException& failure) {
        EXPECT_EQ(failure.GetCode(), QZERR_INTERFACE);
        EXPECT_EQ(*failure.m_pIid, typeid(IXStream));
    }
}

TEST_F(RefusingPlugin, AFailureIsThrownAgainThroughAllModules) {
    try {
        try {
            create("SampleFileFailure");
            FAIL() << "nothing was thrown";
        } catch (const CXException&) {
            throw;
        }
    } catch (const CXFileException& failure) {
        EXPECT_STREQ(failure.m_pszFileName, L"plugin data.bin");
    }
    // In reading, a class whose factory fails is replaced by a stand-in.
    const Registration registered("SampleRefusal", "plugin_refuses.dll");
    const auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    stream->WriteString("SampleRefusal");
    stream->WriteDWord(2);
    stream->Write("ab", 2);
    stream->Seek(0, 0);
    CQZRef<IQZUnknown> object;
    EXPECT_EQ(ReadObjectFromXStream(stream.Get(), object.Put()), 1);
    EXPECT_STREQ(CQZRef<IPersistXStream>::Require(object.Get())->GetClassName(), "SampleRefusal");
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
    try {
        rethrows(read_past_the_end);
        FAIL() << "nothing was thrown";
    } catch (const CXEofException& failure) {
        EXPECT_EQ(failure.GetCode(), QZERR_EOF);
        EXPECT_EQ(failure.m_hModule, GetModuleHandleA("qzrcore.dll"));
    }
    const auto bad_seek = [] { CQZRef<IXStream>::Adopt(new_StreamOnMemory())->Seek(0, 3); };
    try {
        rethrows(bad_seek);
        FAIL() << "nothing was thrown";
    } catch (const CXFileException& failure) {
        EXPECT_EQ(failure.GetCode(), QZERR_SEEK_ORIGIN);
        EXPECT_EQ(failure.m_nOperation, QZOP_SEEK);
    }
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
