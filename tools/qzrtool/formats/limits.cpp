#include "formats/limits.h"

#include "formats/statements.h"

#include <string_view>

namespace tool {

namespace {

constexpr std::size_t kLongestProfileText = 32766; // of the platform's functions, with the type letter

template <unsigned short... Codes>
bool is(const tagQZVARIANT& value) {
    return ((value.vt == Codes) || ...);
}

std::string_view text_of(const tagQZVARIANT& value) {
    return value.vt == QZVT_TEXT && value.pszVal != nullptr ? value.pszVal : std::string_view();
}

bool has_break(const tagQZVARIANT& value) {
    return text_of(value).find_first_of("\r\n") != std::string_view::npos;
}

bool has_break_or_bar(const tagQZVARIANT& value) {
    return has_break(value) || find_ascii(text_of(value), '|') != std::string_view::npos;
}

bool ends_in_blank(const tagQZVARIANT& value) {
    return trim_right(text_of(value)).size() < text_of(value).size();
}

bool is_long(const tagQZVARIANT& value) {
    if (value.vt == QZVT_BLOB) return 2 * std::size_t{value.blobVal.cbSize} + 1 > kLongestProfileText;
    return text_of(value).size() + 1 > kLongestProfileText;
}

struct Limit {
    unsigned forms;
    const char* what; // for people
    const char* why;  // of one value; null for what is told by its name
    bool (*concerns)(const tagQZVARIANT& value);
};

// The first row that concerns a value gives the reason.
constexpr Limit kLimits[] = {
    {kTextForm | kLiveForm, "objects", "objects have no text form", is<QZVT_OBJECT>},
    {kRegistryForm, "objects", "objects are not kept in the registry", is<QZVT_OBJECT>},
    {kStreamForm | kStorageForm, "objects that do not store themselves",
     "an object that cannot be stored is lost", is<QZVT_OBJECT>},
    {kTextForm | kLiveForm, "bytes other than 0", "a byte reads back as 0 from text", is<QZVT_UCHAR>},
    {kTextForm | kLiveForm, "wide text as such", "wide text is stored as narrow text", is<QZVT_WTEXT>},
    {kRegistryForm, "wide text as such", "wide text reads back as narrow text", is<QZVT_WTEXT>},
    {kStreamForm, "wide text of more than two characters",
     "of a wide text only the first half of the bytes is stored in streams", is<QZVT_WTEXT>},
    {kTextForm, "text with \"|\" or line breaks", "a text ends at \"|\" and at line breaks",
     has_break_or_bar},
    {kLiveForm, "text with line breaks", "a text ends at line breaks", has_break},
    {kTextForm | kLiveForm, "text with blanks at its end", "blanks at the end of a text are not stored",
     ends_in_blank},
    {kLiveForm, "values of more than 32766 characters", "the system keeps no value of this length", is_long},
    {kTextForm | kLiveForm, "more than 14 digits of reals", "reals are stored with 14 digits",
     is<QZVT_DOUBLE, QZVT_FLOAT, QZVT_RSIZE, QZVT_RPOINT, QZVT_RRECT>},
    {kTextForm | kLiveForm, "names with \"=\" and such", nullptr, nullptr},
    {kStreamForm, "names with line feeds", nullptr, nullptr},
    {kStorageForm, "names of more than 31 characters, a value and a section of one name", nullptr, nullptr},
    {kRegistryForm, "names of more than 255 characters", nullptr, nullptr},
    {kLiveForm, "an empty default value, which marks sections", nullptr, nullptr},
};

} // namespace

const char* why_lost(Form form, const tagQZVARIANT& value) {
    for (const Limit& limit : kLimits) {
        const bool concerned = (limit.forms & form) != 0 && limit.concerns != nullptr;
        if (concerned && limit.concerns(value)) return limit.why;
    }
    return nullptr;
}

std::string what_is_lost(Form form) {
    std::string text;
    for (const Limit& limit : kLimits) {
        if ((limit.forms & form) == 0) continue;
        if (!text.empty()) text += "; ";
        text += limit.what;
    }
    return text;
}

} // namespace tool
