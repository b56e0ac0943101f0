#include "param/registry/reg_value.h"

#include "param/system_text.h"
#include "variant/text.h"
#include "variant/type_table.h"

#include <cstring>

namespace qzr {

namespace {

using Tag = unsigned; // the type code in front of binary data

// Whether values of a type are stored as bytes; each such type is its own tag.
bool is_binary(const VariantType& type) {
    return type.ownership == Ownership::kNone || type.ownership == Ownership::kBytes;
}

void write_plain(const RegKey& key, const char* name, const tagQZVARIANT& value, const VariantType& type) {
    char data[sizeof(Tag) + sizeof(tagQZVARIANT)];
    const Tag tag = value.vt;
    std::memcpy(data, &tag, sizeof tag);
    std::memcpy(data + sizeof tag, payload(value), type.memory_size);
    key.write(name, REG_BINARY, data, sizeof tag + type.memory_size);
}

// Bytes that are not there are stored as zeroes.
void write_blob(const RegKey& key, const char* name, const tagQZBLOB& blob) {
    const unsigned head[] = {QZVT_BLOB, blob.cbSize};
    Vector<char> data(sizeof head + std::size_t{blob.cbSize});
    std::memcpy(data.data(), head, sizeof head);
    if (blob.pBlobData != nullptr) std::memcpy(data.data() + sizeof head, blob.pBlobData, blob.cbSize);
    key.write(name, REG_BINARY, data.data(), data.size());
}

void write_text(const RegKey& key, const char* name, const char* text) {
    key.write(name, REG_SZ, text, text_length(text) + 1);
}

void write_wide_text(const RegKey& key, const char* name, const wchar_t* text) {
    key.write(system_text(or_empty(name)).GetData(), REG_SZ, text, (text_length(text) + 1) * sizeof(wchar_t));
}

// The count is checked against what is there before anything is made of it.
bool read_blob(const char* bytes, std::size_t size, tagQZVARIANT& value) {
    unsigned count = 0;
    if (size < sizeof count) return false;
    std::memcpy(&count, bytes, sizeof count);
    if (count > size - sizeof count) return false;
    tagQZBLOB blob{count, nullptr};
    if (count != 0) blob.pBlobData = mem_dup(bytes + sizeof count, count);
    value.vt = QZVT_BLOB;
    value.blobVal = blob;
    return true;
}

bool read_binary(const RegData& data, tagQZVARIANT& value) {
    Tag tag = 0;
    if (data.size() < sizeof tag) return false;
    std::memcpy(&tag, data.bytes(), sizeof tag);
    if (tag >= QZVT_COUNT || !is_binary(kVariantTypes[tag])) return false;
    const VariantType& type = kVariantTypes[tag];
    const char* const bytes = data.bytes() + sizeof tag;
    const std::size_t size = data.size() - sizeof tag;
    if (type.ownership == Ownership::kBytes) return read_blob(bytes, size, value);
    if (size < type.memory_size) return false;
    value.vt = static_cast<unsigned short>(tag);
    std::memcpy(payload(value), bytes, type.memory_size);
    return true;
}

// Less than two bytes are an empty text, a single character without a terminator too.
void read_text(const RegData& data, tagQZVARIANT& value) {
    const char* text = data.size() < 2 ? "" : data.bytes();
    QZVariantBindFromValue(QZVT_TEXT, &text, &value);
}

} // namespace

void write_reg_value(const RegKey& key, const char* name, const tagQZVARIANT& value) {
    const VariantType* const type = variant_type(value.vt);
    if (type == nullptr) return;
    switch (type->ownership) {
    case Ownership::kNone:
        return write_plain(key, name, value, *type);
    case Ownership::kText:
        return write_text(key, name, or_empty(value.pszVal));
    case Ownership::kWideText:
        return write_wide_text(key, name, or_empty(value.pwszVal));
    case Ownership::kBytes:
        return write_blob(key, name, value.blobVal);
    case Ownership::kReference:
        return;
    }
}

bool read_reg_value(const RegKey& key, const char* name, tagQZVARIANT& value) {
    RegData data;
    const bool found = key.read(name, data);
    QZVariantClear(&value);
    if (!found) return false;
    if (data.type() != REG_SZ) return read_binary(data, value);
    read_text(data, value);
    return true;
}

} // namespace qzr
