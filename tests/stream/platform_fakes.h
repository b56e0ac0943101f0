// A storage and a stream of the platform that live on the test's stack, count, and fail as they are told.
#pragma once

#include <windows.h>

#include <objbase.h>

namespace test {

// The root operations for an object that nobody deletes.
template <class I>
class OnStack : public I {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    ULONG references = 1; // the test's own
};

class FakeStream final : public OnStack<IStream> {
public:
    HRESULT STDMETHODCALLTYPE Read(void*, ULONG, ULONG* read) override {
        *read = 0;
        return result;
    }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG* written) override {
        *written = takes;
        return result;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER* position) override {
        position->QuadPart = at;
        return result;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* statistics, DWORD) override {
        *statistics = {};
        statistics->cbSize.QuadPart = size;
        return result;
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return result; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

    HRESULT result = S_OK; // of every operation
    ULONG takes = 0;       // bytes that Write says it wrote
    unsigned long long at = 0, size = 0;
};

class FakeStorage final : public OnStack<IStorage> {
public:
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* statistics, DWORD) override {
        *statistics = {};
        statistics->grfMode = mode;
        return result;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD flags) override {
        commits += flags == STGC_DEFAULT ? 1 : 100;
        return result;
    }
    // Each child is the storage itself: levels without end.
    HRESULT STDMETHODCALLTYPE OpenStorage(const OLECHAR*, IStorage*, DWORD flags, SNB, DWORD,
                                          IStorage** child) override {
        child_flags = flags;
        *child = nullptr;
        if (SUCCEEDED(result)) {
            *child = this;
            AddRef();
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE CreateStorage(const OLECHAR* name, DWORD flags, DWORD, DWORD,
                                            IStorage** child) override {
        return OpenStorage(name, nullptr, flags, nullptr, 0, child);
    }
    HRESULT STDMETHODCALLTYPE CreateStream(const OLECHAR*, DWORD flags, DWORD, DWORD, IStream** s) override {
        child_flags = flags;
        *s = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE OpenStream(const OLECHAR*, void*, DWORD flags, DWORD, IStream** s) override {
        child_flags = flags;
        *s = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE EnumElements(DWORD, void*, DWORD, IEnumSTATSTG** elements) override {
        *elements = nullptr;
        return result;
    }
    HRESULT STDMETHODCALLTYPE DestroyElement(const OLECHAR*) override { return result; }
    HRESULT STDMETHODCALLTYPE CopyTo(DWORD, const IID*, SNB, IStorage*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE MoveElementTo(const OLECHAR*, IStorage*, const OLECHAR*, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RenameElement(const OLECHAR*, const OLECHAR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetElementTimes(const OLECHAR*, const FILETIME*, const FILETIME*,
                                              const FILETIME*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetClass(REFCLSID) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetStateBits(DWORD, DWORD) override { return E_NOTIMPL; }

    HRESULT result = S_OK; // of every operation but the opening of streams, which always fails
    DWORD mode = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
    DWORD child_flags = 0; // those of the last child asked for
    int commits = 0;
};

} // namespace test
