#include "supp/resource_context.h"

#include "string/code_page.h"

#include <iterator>

namespace qzr {

namespace {

constexpr DWORD kMostPathUnits = 1024;

template <class Unit>
bool is_number(const Unit* id) noexcept {
    return IS_INTRESOURCE(id);
}

template <class Unit>
unsigned number_of(const Unit* id) noexcept {
    return static_cast<unsigned>(reinterpret_cast<ULONG_PTR>(id));
}

// Of the number's decimal digits.
WideHash hash_of_number(unsigned number) noexcept {
    wchar_t digits[16] = {};
    wchar_t* first = digits + std::size(digits) - 1;
    do {
        *--first = static_cast<wchar_t>(L'0' + number % 10);
        number /= 10;
    } while (number != 0);
    return wide_hash(first);
}

// Strings are loaded by the thousand, so nothing is allocated here.
class ModulePath {
public:
    explicit ModulePath(HINSTANCE module) noexcept {
        path_[0] = 0;
        GetModuleFileNameW(module, path_, kMostPathUnits);
        path_[kMostPathUnits - 1] = 0;
    }

    // What stands behind the last delimiter.
    const wchar_t* file_name() const noexcept {
        const wchar_t* name = path_;
        for (const wchar_t* p = path_; *p != 0; ++p)
            if (*p == L':' || *p == L'\\' || *p == L'/') name = p + 1;
        return name;
    }

private:
    wchar_t path_[kMostPathUnits];
};

CXString narrow_module_file_name(HINSTANCE module) {
    char path[kMostPathUnits] = {};
    GetModuleFileNameA(module, path, kMostPathUnits);
    path[kMostPathUnits - 1] = 0;
    return CXString(path).FileName();
}

} // namespace

CXStringW module_file_name(HINSTANCE module) {
    const ModulePath path(module);
    return CXStringW(path.file_name());
}

WideHash resource_context(HINSTANCE module, ResourceKind kind, const wchar_t* id) noexcept {
    const ModulePath path(module);
    return resource_context(path.file_name(), kind, id);
}

WideHash resource_context(const wchar_t* file, ResourceKind kind, const wchar_t* id) noexcept {
    const WideHash hash =
        wide_hash(file) + wide_hash(L"#") + hash_of_number(static_cast<unsigned>(kind)) + wide_hash(L"#");
    return hash + (is_number(id) ? hash_of_number(number_of(id)) : wide_hash(id)) +
           wide_hash(L"\x044D\x044D");
}

CXString resource_context(HINSTANCE module, ResourceKind kind, const char* id) {
    const CXString file = narrow_module_file_name(module);
    CXString context;
    if (is_number(id)) {
        context.Format("%s#%d#%u\xFD\xFD", file.GetData(), static_cast<int>(kind), number_of(id));
    } else {
        context.Format("%s#%d#%s\xFD\xFD", file.GetData(), static_cast<int>(kind), id);
    }
    return context;
}

const wchar_t* wide_resource_name(const char* id, CXStringW& name) {
    if (is_number(id)) return reinterpret_cast<const wchar_t*>(id);
    narrow_to_wide(id, CP_ACP, name);
    return name.GetData();
}

} // namespace qzr
