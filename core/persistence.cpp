// Objects in streams: class name with its terminator, length of the data (32 bits), the data. A null object
// is a single zero byte.
#include "core/object_proxy.h"
#include "core/stream_position.h"
#include "qzobject.h"
#include "qzref.h"
#include "qzstream.h"

#include <cstring>
#include <new>

namespace qzr {

namespace {

constexpr int kMostNameChars = 260; // with the terminator

// A name as read from a record. ReadLine may leave the place behind the last character as it was and writes
// one further, so there is room for both and all of it is zero.
struct ClassName {
    char text[kMostNameChars + 4] = {};

    explicit ClassName(IXStream& stream) { stream.ReadLine(text, kMostNameChars); }
    bool empty() const { return text[0] == 0; }
};

CQZRef<IPersistXStream> stand_in(const char* name, unsigned length) {
    auto* proxy = new (std::nothrow) CXProxy(name, length);
    if (proxy == nullptr) throw CXMemException();
    return CQZRef<IPersistXStream>::Adopt(proxy);
}

// An object of the class, without its data. A class that is registered but cannot be made counts as unknown;
// what its factory stored all the same is its own business, unless it throws: then the object is ours.
CQZRef<IPersistXStream> make_object(const char* name, unsigned length) {
    CQZRef<IQZUnknown> made;
    const int result = CreateObject(name, nullptr, typeid(IPersistXStream), made.Put());
    IQZUnknown* const object = made.Detach();
    if (result == 0 || object == nullptr) return stand_in(name, length);
    return CQZRef<IPersistXStream>::Adopt(static_cast<IPersistXStream*>(object));
}

// What a record begins with. A reader takes the empty name for the null object, so an object without a name
// is stored, and measured, as that.
const char* name_of(IPersistXStream* object) {
    const char* const name = object != nullptr ? object->GetClassName() : nullptr;
    return name != nullptr ? name : "";
}

} // namespace

} // namespace qzr

// The length is what Save really wrote, whatever the object says of its size, and is put in place afterwards.
int WriteObjectToXStream(IXStream* stream, IPersistXStream* obj) {
    const char* const name = qzr::name_of(obj);
    stream->WriteString(name);
    if (*name == 0) return 1;
    stream->WriteDWord(0);
    const unsigned begin = qzr::position_of(*stream);
    obj->Save(stream);
    const unsigned end = qzr::position_of(*stream);
    qzr::seek_to(*stream, begin - sizeof(unsigned));
    stream->WriteDWord(end - begin);
    qzr::seek_to(*stream, end);
    return 1;
}

int ReadObjectFromXStream(IXStream* stream, IQZUnknown** out) {
    if (out != nullptr) *out = nullptr;
    const qzr::ClassName name(*stream);
    if (name.empty()) return 0;
    const unsigned length = stream->ReadDWord();
    const CQZRef<IPersistXStream> object = qzr::make_object(name.text, length);
    object->Load(stream);
    return object->QueryInterface(typeid(IQZUnknown), out);
}

unsigned SizeOfObject(IPersistXStream* obj) {
    const char* const name = qzr::name_of(obj);
    if (*name == 0) return 1;
    return static_cast<unsigned>(std::strlen(name)) + 5 + obj->GetSizeMax();
}

// Does not look for the empty name: of a null record the four bytes behind it are taken for a length. Callers
// skip records that they know to hold an object.
unsigned SkipObjectToXStream(IXStream* stream) {
    const unsigned begin = stream->GetPosition();
    const qzr::ClassName name(*stream);
    const int length = static_cast<int>(stream->ReadDWord());
    if (length >= 0) {
        stream->Seek(length, 1);
    } else {
        stream->Seek(0, 2); // too long for a seek, and for any stream it can be in: never backwards
    }
    return begin;
}
