// Replaces a function of the system for one module: its import table is patched for the life of the mock.
// Nobody else in the process notices.
//
//     ImportMock mock("qzrcore.dll", "HeapAlloc", reinterpret_cast<void*>(&refuse));
//     auto* const original = mock.original<decltype(HeapAlloc)>();
#pragma once

class ImportMock {
public:
    // Ends the test program when the module does not import the function: a mock that mocks nothing proves
    // nothing.
    ImportMock(const char* module, const char* function, void* replacement);
    ~ImportMock();
    ImportMock(const ImportMock&) = delete;
    ImportMock& operator=(const ImportMock&) = delete;

    template <class Function>
    Function* original() const {
        return reinterpret_cast<Function*>(original_);
    }

private:
    void** slot_;
    void* original_;
};
