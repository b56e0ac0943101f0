// The exception classes: codes, and the four buffers that keep file names.
#include "qzexception.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

CXFileException failure(const wchar_t* name) { return CXFileException(QZERR_NOT_FOUND, QZOP_READ, name); }

TEST(Exception, CodesAndModule) {
    EXPECT_EQ(CXException(1234).GetCode(), 1234u);
    EXPECT_EQ(CXMemException().GetCode(), 2u);
    EXPECT_EQ(CXEofException().GetCode(), 4u);
    const CXIFaceException iface(typeid(std::string));
    EXPECT_EQ(iface.GetCode(), 10u);
    EXPECT_TRUE(*iface.m_pIid == typeid(std::string));
    EXPECT_EQ(CXException(1).m_hModule, GetModuleHandleA("qzrcore.dll"));
    CXEofException end;
    end.Report(); // by itself it tells nobody
    EXPECT_EQ(end.GetCode(), 4u);
}

TEST(ExceptionName, SurvivesBeingThrownAgain) {
    try {
        try {
            throw CXFileException(QZERR_ACCESS, QZOP_DELETE, L"a\\kept");
        } catch (const CXException& e) {
            EXPECT_EQ(e.GetCode(), 9u);
            throw;
        }
    } catch (const CXFileException& e) {
        EXPECT_STREQ(e.m_pszFileName, L"a\\kept");
        EXPECT_EQ(e.m_nOperation, 7u);
    }
}

TEST(ExceptionName, FifthSharesTheFirstBuffer) {
    const auto first = failure(L"first"), second = failure(L"second"), third = failure(L"third");
    {
        const auto fourth = failure(L"fourth");
        const auto fifth = failure(L"fifth");
        EXPECT_EQ(fifth.m_pszFileName, first.m_pszFileName);
        EXPECT_STREQ(first.m_pszFileName, L"fifth");
        EXPECT_STREQ(second.m_pszFileName, L"second");
        EXPECT_STREQ(third.m_pszFileName, L"third");
        EXPECT_STREQ(fourth.m_pszFileName, L"fourth");
    }
    EXPECT_STREQ(first.m_pszFileName, L"") << "the fifth's end freed the buffer of both";
    const auto next = failure(L"next");
    EXPECT_EQ(next.m_pszFileName, first.m_pszFileName);
}

TEST(ExceptionName, EmptyNamesTakeNoBuffer) {
    for (const wchar_t* name : {L"", static_cast<const wchar_t*>(nullptr)}) {
        const auto nameless = failure(name);
        EXPECT_STREQ(nameless.m_pszFileName, L"");
        const auto named = failure(L"named");
        EXPECT_EQ(named.m_pszFileName, nameless.m_pszFileName);
        EXPECT_STREQ(nameless.m_pszFileName, L"named");
    }
}

TEST(ExceptionName, NullLeavesTheFirstBufferWhenAllAreInUse) {
    const auto first = failure(L"first"), second = failure(L"b"), third = failure(L"c"),
               fourth = failure(L"d");
    {
        const auto nameless = failure(nullptr);
        EXPECT_STREQ(nameless.m_pszFileName, L"first");
    }
    EXPECT_STREQ(first.m_pszFileName, L"");
}

TEST(ExceptionName, LongNamesAreCut) {
    for (const std::size_t length : {std::size_t{1}, std::size_t{QZR_EXCEPTION_NAME_UNITS - 2},
                                     std::size_t{QZR_EXCEPTION_NAME_UNITS - 1},
                                     std::size_t{QZR_EXCEPTION_NAME_UNITS}, std::size_t{100'000}}) {
        const std::wstring name(length, L'x');
        const auto e = failure(name.c_str());
        EXPECT_EQ(e.m_pszFileName, name.substr(0, QZR_EXCEPTION_NAME_UNITS - 1)) << length;
    }
    EXPECT_STREQ(failure(L"short").m_pszFileName, L"short");
}

TEST(ExceptionName, CopiesShareAndAnyOfThemFrees) {
    const auto original = failure(L"name");
    {
        const CXFileException copy(original);
        EXPECT_EQ(copy.m_pszFileName, original.m_pszFileName);
        EXPECT_EQ(copy.m_nOperation, original.m_nOperation);
        EXPECT_STREQ(copy.m_pszFileName, L"name");
    }
    EXPECT_STREQ(original.m_pszFileName, L"");
}

TEST(ExceptionName, AssigningGivesUpTheOldOne) {
    for (int i = 0; i < 4; ++i) {
        auto e = failure(L"old");
        e = failure(L"temporary");
    }
    auto a = failure(L"a");
    const auto copy = a, b = failure(L"b");
    EXPECT_STREQ(a.m_pszFileName, L"a");
    a = b;
    EXPECT_EQ(a.m_pszFileName, b.m_pszFileName);
    EXPECT_STREQ(copy.m_pszFileName, L"a") << "somebody shows it still";
    a = *&a;
    EXPECT_STREQ(b.m_pszFileName, L"b");
    a.m_pszFileName = L"the program's own, which may be constant";
}

// While there is a buffer for each, each also shows its own name.
TEST(ExceptionName, StaysWholeWhenThreadsThrowAtOnce) {
    for (const std::size_t count : {3, 8}) {
        std::vector<std::thread> threads;
        std::atomic<int> spoiled = 0;
        for (std::size_t t = 0; t < count; ++t)
            threads.emplace_back([&, name = std::wstring(1 + t * 400, static_cast<wchar_t>(L'a' + t))] {
                for (int i = 0; i < 20'000; ++i) {
                    const auto e = failure(name.c_str());
                    const std::size_t length = wcsnlen(e.m_pszFileName, QZR_EXCEPTION_NAME_UNITS);
                    spoiled += length == QZR_EXCEPTION_NAME_UNITS || (count < 4 && e.m_pszFileName != name);
                }
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(spoiled, 0) << count;
    }
}

} // namespace
