// The other members of CQZVariant: casts, comparison, giving away, conversion and binding.
#include "qzstring.h"
#include "variant/record.h"
#include "variant/text.h"

using namespace qzr;

CQZVariant::operator unsigned char() const { return ucharVal; }
CQZVariant::operator unsigned short() const { return ushortVal; }
CQZVariant::operator int() const { return intVal; }
CQZVariant::operator unsigned int() const { return uintVal; }
CQZVariant::operator long() const { return longVal; }
CQZVariant::operator unsigned long() const { return ulongVal; }
CQZVariant::operator float() const { return floatVal; }
CQZVariant::operator double() const { return doubleVal; }
CQZVariant::operator char*() const { return pszVal; }
CQZVariant::operator IQZUnknown*() const { return pUnkVal; }
CQZVariant::operator tagQZBLOB() const { return blobVal; }
CQZVariant::operator tagPOINT() const { return pointVal; }
CQZVariant::operator tagSIZE() const { return sizeVal; }
CQZVariant::operator tagRECT() const { return rectVal; }
CQZVariant::operator tagRPOINT() const { return rpointVal; }
CQZVariant::operator tagRSIZE() const { return rsizeVal; }
CQZVariant::operator tagRRECT() const { return rrectVal; }

namespace {

// Turns narrow text into wide text within the record.
void widen_in_place(tagQZVARIANT& v) {
    const CXStringW wide(v.pszVal);
    tagQZVARIANT fresh = empty_record();
    fresh.vt = QZVT_WTEXT;
    fresh.pwszVal = duplicate_text(wide.GetData());
    replace_value(v, fresh);
}

} // namespace

// A cast that is const and yet changes the record: callers rely on finding wide text in it afterwards.
CQZVariant::operator wchar_t*() const {
    if (vt == QZVT_TEXT) widen_in_place(const_cast<CQZVariant&>(*this));
    return pwszVal;
}

int CQZVariant::operator==(const tagQZVARIANT& other) const {
    if (this == &other) return 1;
    if (vt != other.vt) return 0;
    const VariantType* type = variant_type(vt);
    return type != nullptr && type->equal(*this, other) ? 1 : 0;
}

int CQZVariant::operator==(const tagQZVARIANT* other) const { return *this == *other; }
int CQZVariant::operator==(const CQZVariant& other) const {
    return *this == static_cast<const tagQZVARIANT&>(other);
}

void CQZVariant::Clear() { QZVariantClear(this); }

void CQZVariant::Attach(tagQZVARIANT& src) {
    if (this == &src) {
        Clear();
        return;
    }
    const tagQZVARIANT taken = src;
    src.vt = QZVT_EMPTY;
    replace_value(*this, taken);
}

tagQZVARIANT CQZVariant::Detach() {
    const tagQZVARIANT given = *this;
    vt = QZVT_EMPTY;
    return given;
}

int CQZVariant::ChangeType(unsigned short type, tagQZVARIANT* src) {
    if (src == nullptr) src = this;
    if (src == this && vt == type) return 1;
    return QZVariantChangeType(this, src, type);
}

int CQZVariant::BindFromValue(unsigned short type, void* value) {
    return QZVariantBindFromValue(type, value, this);
}

int CQZVariant::BindToValue(unsigned short type, void* value) const {
    return QZVariantBindToValue(type, value, this);
}
