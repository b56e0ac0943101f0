// Blocks of memory as files: what their names say, and what cannot be read.
#include "qzfile.h"
#include "qzref.h"
#include "support/file_failure.h"
#include "support/low_memory.h"

#include <gtest/gtest.h>

namespace {

CQZRef<IXFile> open_file(const std::wstring& path) {
    return CQZRef<IXFile>::Adopt(Fio_Open(path.c_str(), QZFILE_READ));
}

TEST(MemoryFile, PathsAreKnownByTheirPrefix) {
    const struct {
        const wchar_t* path;
        int expected;
    } rows[] = {{L"fmem::1,2", 1}, {L"FMEM::1,2", 1}, {L"fMem::", 1}, {L"fmem:", 0},
                {L" fmem::1", 0},  {L"", 0},          {nullptr, 0}};
    for (const auto& row : rows)
        EXPECT_EQ(Fio_IsMemFile(row.path), row.expected) << (row.path != nullptr ? narrow(row.path) : "null");
}

TEST(MemoryFile, NamesTellAddressAndSize) {
    const LowMemory block("0123456789");
    const std::wstring address = std::to_wstring(reinterpret_cast<std::size_t>(block.data()));
    const struct {
        std::wstring rest;
        unsigned size;
    } rows[] = {{address + L",10", 10},
                {address + L".3", 3},
                {L",." + address + L",.4,9", 4},
                {L"0,0", 0},
                {address, 0},
                {address + L",x", 0},
                {address + L", 5 and more", 5},
                {L"", 0},
                {address + L",0010", 10}};
    for (const auto& row : rows) {
        const std::wstring path = L"FMem::" + row.rest;
        SCOPED_TRACE(narrow(path.c_str()));
        const auto file = open_file(path);
        char buffer[20] = "";
        EXPECT_EQ(file->Read(buffer, 20), row.size);
        EXPECT_EQ(std::string_view(buffer), std::string_view("0123456789", row.size));
        EXPECT_EQ(file->Read(buffer, 20), 0u);
        EXPECT_EQ(std::wstring(file->GetName()), path);
    }
    EXPECT_EQ(failure_of([] { Fio_Open((L"fmem::" + std::wstring(506, L'1')).c_str(), 0); }).substr(0, 20),
              "code 7, operation 1,");
}

TEST(MemoryFile, WhatCannotBeReadIsAFailure) {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    const std::size_t page = system.dwPageSize;
    const LowMemory block(std::string(2 * page, 'x'));
    DWORD before = 0;
    VirtualProtect(block.data() + page, page, PAGE_NOACCESS, &before);
    const auto expect_failure = [](const std::wstring& path, unsigned from, unsigned count) {
        SCOPED_TRACE(narrow(path.c_str()));
        const auto file = open_file(path);
        file->Seek(from, 0);
        std::string buffer(count, '\0');
        EXPECT_EQ(failure_of([&] { file->Read(buffer.data(), count); }), failure(11, 1, path));
        EXPECT_EQ(failure_of([&] { file->ReadLine(buffer.data(), 1); }), failure(11, 1, path));
        EXPECT_EQ(file->GetPosition(), from);
    };
    expect_failure(L"fmem::16,100", 0, 1);
    expect_failure(L"fmem::-16,100", 0, 1);
    const auto edge = static_cast<unsigned>(page);
    expect_failure(block.path(), edge, 1);

    const auto file = open_file(block.path());
    std::string buffer(2 * page, '\0');
    EXPECT_EQ(file->Read(buffer.data(), edge), edge) << "up to the edge all is well";
    file->Seek(edge - 5, 0);
    EXPECT_NE(failure_of([&] { file->Read(buffer.data(), 6); }), "");

    // A negative size is as much as there is.
    const std::wstring path =
        L"fmem::" + std::to_wstring(reinterpret_cast<std::size_t>(block.data())) + L",-1";
    EXPECT_EQ(open_file(path)->GetSize(), edge);
    EXPECT_EQ(open_file(L"fmem::16,-1")->GetSize(), 0u);
    VirtualProtect(block.data() + page, page, before, &before);
}

TEST(MemoryFile, OutputIsIgnored) {
    const LowMemory block("0123456789");
    const auto file = CQZRef<IXOutFile>::Adopt(Fio_OpenOut(block.path().c_str(), QZFILE_WRITE));
    file->Write("abc", 3);
    file->WriteString("abc");
    file->Commit();
    EXPECT_EQ(file->GetPosition(), 0u);
    EXPECT_EQ(std::string_view(block.data(), 10), "0123456789");
}

} // namespace
