#include "supp/resource_context.h"

#include "string/code_page.h"

namespace qzr {

namespace {

constexpr DWORD kMostPathUnits = 1024;

template <class Unit>
bool is_number(const Unit* id) noexcept {
    return IS_INTRESOURCE(id);
}

template <class Unit>
int number_of(const Unit* id) noexcept {
    return static_cast<int>(reinterpret_cast<ULONG_PTR>(id));
}

CXString narrow_module_file_name(HINSTANCE module) {
    char path[kMostPathUnits] = {};
    GetModuleFileNameA(module, path, kMostPathUnits);
    path[kMostPathUnits - 1] = 0;
    return CXString(path).FileName();
}

} // namespace

CXStringW module_file_name(HINSTANCE module) {
    wchar_t path[kMostPathUnits] = {};
    GetModuleFileNameW(module, path, kMostPathUnits);
    path[kMostPathUnits - 1] = 0;
    return CXStringW(path).FileName();
}

CXStringW resource_context(HINSTANCE module, ResourceKind kind, const wchar_t* id) {
    return resource_context(module_file_name(module).GetData(), kind, id);
}

CXStringW resource_context(const wchar_t* file, ResourceKind kind, const wchar_t* id) {
    CXStringW context;
    if (is_number(id)) {
        context.Format(L"%s#%d#%i\x044D\x044D", file, static_cast<int>(kind), number_of(id));
    } else {
        context.Format(L"%s#%d#%s\x044D\x044D", file, static_cast<int>(kind), id);
    }
    return context;
}

CXString resource_context(HINSTANCE module, ResourceKind kind, const char* id) {
    const CXString file = narrow_module_file_name(module);
    CXString context;
    if (is_number(id)) {
        context.Format("%s#%d#%i\xFD\xFD", file.GetData(), static_cast<int>(kind), number_of(id));
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
