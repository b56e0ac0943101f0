// Whole files in the text form.
#include "param/text/text_files.h"
#include "param/text/text_form.h"
#include "param/text/text_parser.h"
#include "qzexception.h"
#include "qzfile.h"
#include "qzparam.h"
#include "qzref.h"

#include <new>
#include <stdexcept>

namespace qzr {

namespace {

void replace_file(const wchar_t* name, std::string_view text) {
    const auto file = CQZRef<IXOutFile>::Adopt(Fio_OpenOut(name, QZFILE_WRITE));
    if (!file) throw CXMemException();
    file->Write(text.data(), static_cast<unsigned>(text.size()));
    file->Commit();
}

} // namespace

} // namespace qzr

int Param_IniFile2Param(const wchar_t* fileName, IParam* param) {
    try {
        const std::wstring name = fileName != nullptr ? fileName : L"";
        const std::string text = qzr::read_text_file(name);
        if (param == nullptr) return 0;
        qzr::read_text_form(text, qzr::full_path(name), *param);
        return 1;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

// The text is complete before the file is touched.
int Param_Param2IniFile(IParam* param, const wchar_t* fileName) {
    if (param == nullptr) return 0;
    try {
        qzr::TextBuffer text;
        qzr::append_text_form(*param, text);
        qzr::replace_file(fileName, text.view());
        return 1;
    } catch (const std::bad_alloc&) {
        throw CXMemException();
    } catch (const std::length_error&) {
        throw CXMemException();
    }
}
