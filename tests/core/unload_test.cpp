// What is left of the library when it is unloaded, tried on a copy of it under another name.
#include "qzheap.h"
#include "qzobject.h"
#include "qzref.h"

#include <gtest/gtest.h>

#include <psapi.h>
#include <windows.h>

#include <string>

namespace {

std::string copy_of_the_library() {
    char path[MAX_PATH] = "";
    GetModuleFileNameA(GetModuleHandleA("qzrcore.dll"), path, sizeof path);
    char folder[MAX_PATH] = "";
    GetTempPathA(sizeof folder, folder);
    const std::string copy =
        std::string(folder) + "qzrcore_copy" + std::to_string(GetCurrentProcessId()) + ".dll";
    CopyFileA(path, copy.c_str(), FALSE);
    return copy;
}

template <class Function>
Function* find(HINSTANCE module, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

using Create = int(const char*, IQZUnknown*, const std::type_info&, IQZUnknown**);

class Unload : public testing::Test {
protected:
    void SetUp() override {
        path_ = copy_of_the_library();
        heaps_before_ = GetProcessHeaps(0, nullptr);
        module_ = LoadLibraryA(path_.c_str());
        ASSERT_NE(module_, nullptr);
        create_ = find<Create>(module_, "CreateObjectC");
        ASSERT_NE(create_, nullptr);
        EXPECT_GT(GetProcessHeaps(0, nullptr), heaps_before_) << "a copy has heaps of its own";
    }

    void TearDown() override { DeleteFileA(path_.c_str()); }

    std::string path_;
    DWORD heaps_before_ = 0;
    HINSTANCE module_ = nullptr;
    Create* create_ = nullptr;
};

TEST_F(Unload, DestroysEveryHeap) {
    auto* const new_heap = find<IHeap*(unsigned long long)>(module_, "_Z14new_MemoryHeapy");
    ASSERT_NE(new_heap, nullptr);
    IHeap* const forgotten = new_heap(0);
    forgotten->Alloc(1000);
    {
        CQZRef<IQZUnknown> object;
        EXPECT_EQ(create_("CLSID_OFSERVICECONTAINER", nullptr, typeid(IQZServiceContainer), object.Put()), 1);
        const auto container = CQZRef<IQZServiceContainer>::Require(object.Get());
        for (int i = 0; i < 300; ++i)
            EXPECT_EQ(container->AddService(std::to_string(i).c_str(), forgotten), 1);
        container->RemoveAllServices();
    }
    EXPECT_NE(FreeLibrary(module_), FALSE);
    EXPECT_EQ(GetModuleHandleA(path_.c_str()), nullptr);
    EXPECT_EQ(GetProcessHeaps(0, nullptr), heaps_before_);
}

// A module that goes later than the library still unregisters its classes.
TEST_F(Unload, LateCallsFindTheRegistryClosed) {
    auto* const register_by_path = find<int(const char*, const char*)>(module_, "_Z14RegisterObjectPKcS0_");
    auto* const register_by_module =
        find<int(const char*, HINSTANCE)>(module_, "_Z14RegisterObjectPKcP11HINSTANCE__");
    auto* const unregister = find<int(const char*)>(module_, "_Z16UnregisterObjectPKc");
    auto* const is_registered = find<int(const char*)>(module_, "_Z16IsRegisterObjectPKc");
    ASSERT_TRUE(register_by_path && register_by_module && unregister && is_registered);
    EXPECT_EQ(register_by_path("late", "kernel32.dll"), 1);
    EXPECT_EQ(is_registered("CLSID_OFSERVICECONTAINER"), 1);

    // The module stays in memory: only its entry point is told, as at the end of a process.
    MODULEINFO info = {};
    ASSERT_NE(GetModuleInformation(GetCurrentProcess(), module_, &info, sizeof info), FALSE);
    reinterpret_cast<BOOL(WINAPI*)(HINSTANCE, DWORD, void*)>(info.EntryPoint)(module_, DLL_PROCESS_DETACH,
                                                                              &info);
    EXPECT_EQ(GetProcessHeaps(0, nullptr), heaps_before_);

    EXPECT_EQ(is_registered("late"), 0);
    EXPECT_EQ(unregister("late"), 0);
    EXPECT_EQ(register_by_path("later", "kernel32.dll"), 0);
    EXPECT_EQ(register_by_module("CreateObjectC", module_), 0);
    IQZUnknown* out = nullptr;
    EXPECT_EQ(create_("CLSID_OFSERVICECONTAINER", nullptr, typeid(IQZUnknown), &out), 0);
}

} // namespace
