// A class of a client that saves itself: a byte with the number of characters, then the characters.
#pragma once

#include "qzexception.h"
#include "qzobject.h"
#include "qzstream.h"

#include <functional>
#include <string>
#include <utility>

namespace test {

class PersistentNote final : public CQZUnknownImplParent<IPersistXStream, IPersistX> {
public:
    explicit PersistentNote(std::string note = {}, std::string name = "TestNote")
        : text(std::move(note)), class_name(std::move(name)) {
        ++live;
    }
    ~PersistentNote() override { --live; }

    const char* GetClassName() override { return class_name.c_str(); }
    unsigned GetSizeMax() override { return static_cast<unsigned>(text.size()) + 1 + overstated; }

    int Load(IXStream* stream) override {
        if (on_load) on_load(stream);
        text.resize(stream->ReadByte());
        if (stream->Read(text.data(), static_cast<unsigned>(text.size())) != text.size())
            throw CXEofException();
        return 0; // nobody looks at it
    }

    int Save(IXStream* stream) override {
        if (on_save) on_save(stream);
        if (saves_nothing) return 0;
        stream->WriteByte(static_cast<unsigned char>(text.size()));
        stream->Write(text.data(), static_cast<unsigned>(text.size()));
        return 0;
    }

    // The body of a factory.
    static int create(const std::type_info& iid, IQZUnknown** out) {
        auto* note = new PersistentNote;
        const int found = note->QueryInterface(iid, out);
        note->Release();
        return found;
    }

    std::string text;
    std::string class_name;
    unsigned overstated = 0; // what GetSizeMax says too much
    bool saves_nothing = false;
    std::function<void(IXStream*)> on_save; // runs at the start of each Save

    static inline int live = 0;                           // notes in existence
    static inline std::function<void(IXStream*)> on_load; // runs at the start of each Load
};

} // namespace test
