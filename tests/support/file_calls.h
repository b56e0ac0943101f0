// Stands between the library and the functions by which it reaches files, to watch and to refuse its calls.
//
//     const FileCalls calls([&](const char* function) -> DWORD { return refuse ? ERROR_DISK_FULL : 0; });
//
// The function is called before each call of the library, with the name of what it calls: 0 lets the call
// through, anything else is the error that it fails with. Closing and unmapping are done all the same.
#pragma once

#include "support/import_mock.h"

#include <functional>
#include <memory>
#include <string_view>
#include <type_traits>
#include <vector>

#include <windows.h>

class FileCalls {
public:
    using Before = std::function<DWORD(const char* function)>;

    explicit FileCalls(Before before) {
        hook() = std::move(before);
        watch<&CreateFileW>("CreateFileW");
        watch<&GetFileType>("GetFileType");
        watch<&GetFileSizeEx>("GetFileSizeEx");
        watch<&WriteFile>("WriteFile");
        watch<&CreateFileMappingW>("CreateFileMappingW");
        watch<&MapViewOfFile>("MapViewOfFile");
        watch<&UnmapViewOfFile>("UnmapViewOfFile");
        watch<&FlushViewOfFile>("FlushViewOfFile");
        watch<&FlushFileBuffers>("FlushFileBuffers");
        watch<&SetFilePointerEx>("SetFilePointerEx");
        watch<&SetEndOfFile>("SetEndOfFile");
        watch<&CloseHandle>("CloseHandle");
        watch<&GetTempFileNameW>("GetTempFileNameW");
        watch<&GetFileAttributesW>("GetFileAttributesW");
        watch<&FindFirstFileW>("FindFirstFileW");
        watch<&CopyFileW>("CopyFileW");
        watch<&DeleteFileW>("DeleteFileW");
        watch<&MoveFileW>("MoveFileW");
        watch<&MoveFileExW>("MoveFileExW");
    }
    ~FileCalls() {
        mocks_.clear();
        hook() = nullptr;
    }

private:
    static Before& hook() {
        static Before before;
        return before;
    }
    template <auto Function>
    struct Gate;
    template <class Result, class... Arguments, Result (*Function)(Arguments...)>
    struct Gate<Function> {
        static inline const char* name_of_function = nullptr;

        static Result call(Arguments... arguments) {
            const DWORD error = hook()(name_of_function);
            const std::string_view name = name_of_function;
            if (error == 0) return Function(arguments...);
            if (name == "CloseHandle" || name == "UnmapViewOfFile") Function(arguments...);
            SetLastError(error);
            if constexpr (std::is_same_v<Result, HANDLE>) {
                if (name == "CreateFileW" || name == "FindFirstFileW") return INVALID_HANDLE_VALUE;
            }
            return Result();
        }
    };

    template <auto Function>
    void watch(const char* name) {
        Gate<Function>::name_of_function = name;
        mocks_.push_back(std::make_unique<ImportMock>("qzrcore.dll", name,
                                                      reinterpret_cast<void*>(&Gate<Function>::call)));
    }

    std::vector<std::unique_ptr<ImportMock>> mocks_;
};
