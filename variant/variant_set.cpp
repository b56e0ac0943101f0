// Constructors and assignments of CQZVariant: what puts a value in.
#include "qzstring.h"
#include "variant/blob.h"
#include "variant/record.h"
#include "variant/text.h"

using namespace qzr;

namespace {

// Writes a record of one value over what is there, which is not released. Its other bytes are zero.
template <class T>
void fill(tagQZVARIANT& v, unsigned short vt, T tagQZVARIANT::*member, T value) {
    set_empty(v);
    v.vt = vt;
    v.*member = value;
}

// An integer of its natural type, or a boolean when the caller asks for one.
template <class T>
void fill_integer(tagQZVARIANT& v, unsigned short wanted, unsigned short natural, T tagQZVARIANT::*member,
                  T value) {
    if (wanted == QZVT_BOOL) {
        fill(v, QZVT_BOOL, &tagQZVARIANT::boolVal, value != 0 ? 1 : 0);
    } else {
        fill(v, natural, member, value);
    }
}

// The value comes by copy: it may be part of the variant that it is assigned to.
template <class T>
CQZVariant& set_value(CQZVariant& v, unsigned short vt, T tagQZVARIANT::*member, T value) {
    if (v.vt == vt) {
        v.*member = value;
    } else if (!owns_something(v)) {
        fill(v, vt, member, value);
    } else {
        const tagQZVARIANT old = v;
        fill(v, vt, member, value);
        release_value(old);
    }
    return v;
}

template <class T>
CQZVariant& set_integer(CQZVariant& v, unsigned short vt, T tagQZVARIANT::*member, T value) {
    if (v.vt != QZVT_BOOL) return set_value(v, vt, member, value);
    v.boolVal = value != 0 ? 1 : 0;
    return v;
}

template <class T>
tagQZVARIANT record_of(unsigned short vt, T tagQZVARIANT::*member, T value) {
    tagQZVARIANT v;
    fill(v, vt, member, value);
    return v;
}

tagQZVARIANT text_record(const char* text) {
    return record_of(QZVT_TEXT, &tagQZVARIANT::pszVal, duplicate_text(text));
}

tagQZVARIANT text_record(const wchar_t* text) {
    return record_of(QZVT_WTEXT, &tagQZVARIANT::pwszVal, duplicate_text(text));
}

tagQZVARIANT blob_record(const tagQZBLOB& blob) {
    return record_of(QZVT_BLOB, &tagQZVARIANT::blobVal, duplicate_blob(blob));
}

tagQZVARIANT object_record(IQZUnknown* object) {
    if (object != nullptr) object->AddRef();
    return record_of(QZVT_OBJECT, &tagQZVARIANT::pUnkVal, object);
}

CQZVariant& replaced(CQZVariant& v, const tagQZVARIANT& fresh) {
    replace_value(v, fresh);
    return v;
}

} // namespace

CQZVariant::CQZVariant() { set_empty(*this); }

CQZVariant::CQZVariant(const tagQZVARIANT& source) : tagQZVARIANT(duplicate_of(source)) {}
CQZVariant::CQZVariant(const tagQZVARIANT* source) : tagQZVARIANT(duplicate_of(*source)) {}
CQZVariant::CQZVariant(const CQZVariant& source) : tagQZVARIANT(duplicate_of(source)) {}

CQZVariant::CQZVariant(const tagQZBLOB& value) : tagQZVARIANT(blob_record(value)) {}

CQZVariant::CQZVariant(const tagPOINT& value) { fill(*this, QZVT_POINT, &tagQZVARIANT::pointVal, value); }
CQZVariant::CQZVariant(const tagSIZE& value) { fill(*this, QZVT_SIZE, &tagQZVARIANT::sizeVal, value); }
CQZVariant::CQZVariant(const tagRECT& value) { fill(*this, QZVT_RECT, &tagQZVARIANT::rectVal, value); }
CQZVariant::CQZVariant(const tagRPOINT& value) { fill(*this, QZVT_RPOINT, &tagQZVARIANT::rpointVal, value); }
CQZVariant::CQZVariant(const tagRSIZE& value) { fill(*this, QZVT_RSIZE, &tagQZVARIANT::rsizeVal, value); }
CQZVariant::CQZVariant(const tagRRECT& value) { fill(*this, QZVT_RRECT, &tagQZVARIANT::rrectVal, value); }

CQZVariant::CQZVariant(const char* value) : tagQZVARIANT(text_record(value)) {}
CQZVariant::CQZVariant(const CXString& value) : tagQZVARIANT(text_record(value.GetData())) {}
CQZVariant::CQZVariant(const wchar_t* value) : tagQZVARIANT(text_record(value)) {}
CQZVariant::CQZVariant(const CXStringW& value) : tagQZVARIANT(text_record(value.GetData())) {}

CQZVariant::CQZVariant(unsigned char value, unsigned short wanted) {
    fill_integer(*this, wanted, QZVT_UCHAR, &tagQZVARIANT::ucharVal, value);
}
CQZVariant::CQZVariant(unsigned short value, unsigned short wanted) {
    fill_integer(*this, wanted, QZVT_USHORT, &tagQZVARIANT::ushortVal, value);
}
CQZVariant::CQZVariant(int value, unsigned short wanted) {
    fill_integer(*this, wanted, QZVT_INT, &tagQZVARIANT::intVal, value);
}
CQZVariant::CQZVariant(unsigned int value, unsigned short wanted) {
    fill_integer(*this, wanted, QZVT_UINT, &tagQZVARIANT::uintVal, value);
}
CQZVariant::CQZVariant(long value, unsigned short wanted) {
    fill_integer(*this, wanted, QZVT_LONG, &tagQZVARIANT::longVal, value);
}
CQZVariant::CQZVariant(unsigned long value, unsigned short wanted) {
    fill_integer(*this, wanted, QZVT_ULONG, &tagQZVARIANT::ulongVal, value);
}

CQZVariant::CQZVariant(float value) { fill(*this, QZVT_FLOAT, &tagQZVARIANT::floatVal, value); }
CQZVariant::CQZVariant(double value) { fill(*this, QZVT_DOUBLE, &tagQZVARIANT::doubleVal, value); }

CQZVariant::CQZVariant(IQZUnknown* value) : tagQZVARIANT(object_record(value)) {}

CQZVariant::~CQZVariant() {
    try {
        release_value(*this);
    } catch (...) {
        // An object that fails while it goes must not end the program; who cares calls Clear before.
    }
}

CQZVariant& CQZVariant::operator=(const tagQZVARIANT& source) { return *this = &source; }
CQZVariant& CQZVariant::operator=(const CQZVariant& source) {
    return *this = static_cast<const tagQZVARIANT*>(&source);
}
CQZVariant& CQZVariant::operator=(const tagQZVARIANT* source) {
    QZVariantCopy(this, source);
    return *this;
}

CQZVariant& CQZVariant::operator=(const tagQZBLOB& value) { return replaced(*this, blob_record(value)); }

CQZVariant& CQZVariant::operator=(const tagPOINT& value) {
    return set_value(*this, QZVT_POINT, &tagQZVARIANT::pointVal, value);
}
CQZVariant& CQZVariant::operator=(const tagSIZE& value) {
    return set_value(*this, QZVT_SIZE, &tagQZVARIANT::sizeVal, value);
}
CQZVariant& CQZVariant::operator=(const tagRECT& value) {
    return set_value(*this, QZVT_RECT, &tagQZVARIANT::rectVal, value);
}
CQZVariant& CQZVariant::operator=(const tagRPOINT& value) {
    return set_value(*this, QZVT_RPOINT, &tagQZVARIANT::rpointVal, value);
}
CQZVariant& CQZVariant::operator=(const tagRSIZE& value) {
    return set_value(*this, QZVT_RSIZE, &tagQZVARIANT::rsizeVal, value);
}
CQZVariant& CQZVariant::operator=(const tagRRECT& value) {
    return set_value(*this, QZVT_RRECT, &tagQZVARIANT::rrectVal, value);
}

CQZVariant& CQZVariant::operator=(const char* value) { return replaced(*this, text_record(value)); }
CQZVariant& CQZVariant::operator=(const CXString& value) { return *this = value.GetData(); }
CQZVariant& CQZVariant::operator=(const wchar_t* value) { return replaced(*this, text_record(value)); }
CQZVariant& CQZVariant::operator=(const CXStringW& value) { return *this = value.GetData(); }

CQZVariant& CQZVariant::operator=(unsigned short value) {
    return set_integer(*this, QZVT_USHORT, &tagQZVARIANT::ushortVal, value);
}
CQZVariant& CQZVariant::operator=(int value) {
    return set_integer(*this, QZVT_INT, &tagQZVARIANT::intVal, value);
}
CQZVariant& CQZVariant::operator=(unsigned int value) {
    return set_integer(*this, QZVT_UINT, &tagQZVARIANT::uintVal, value);
}
CQZVariant& CQZVariant::operator=(long value) {
    return set_integer(*this, QZVT_LONG, &tagQZVARIANT::longVal, value);
}
CQZVariant& CQZVariant::operator=(unsigned long value) {
    return set_integer(*this, QZVT_ULONG, &tagQZVARIANT::ulongVal, value);
}

// Unlike the other integers an unsigned char ends a boolean. Callers rely on the difference.
CQZVariant& CQZVariant::operator=(unsigned char value) {
    return set_value(*this, QZVT_UCHAR, &tagQZVARIANT::ucharVal, value);
}
CQZVariant& CQZVariant::operator=(float value) {
    return set_value(*this, QZVT_FLOAT, &tagQZVARIANT::floatVal, value);
}
CQZVariant& CQZVariant::operator=(double value) {
    return set_value(*this, QZVT_DOUBLE, &tagQZVARIANT::doubleVal, value);
}

CQZVariant& CQZVariant::operator=(IQZUnknown* value) { return replaced(*this, object_record(value)); }
