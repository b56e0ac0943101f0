// A file whose contents are those of another file.
#pragma once

#include "qzfile.h"

namespace qzr {

// Self derives from ForwardedFile<Self, IXFile or IXOutFile> and adds GetName and inner(), a reference to the
// file that does the work. Failures carry that file's name.
template <class Self, class Base>
class ForwardedFile : public CQZUnknownImpl<Base> {
public:
    unsigned Read(void* buffer, unsigned count) override { return inner().Read(buffer, count); }
    void Write(const void* buffer, unsigned count) override { inner().Write(buffer, count); }
    unsigned Seek(unsigned offset, unsigned origin) override { return inner().Seek(offset, origin); }
    unsigned GetPosition() override { return inner().GetPosition(); }
    int Flush() override { return inner().Flush(); }
    unsigned char ReadByte() override { return inner().ReadByte(); }
    unsigned short ReadWord() override { return inner().ReadWord(); }
    unsigned ReadDWord() override { return inner().ReadDWord(); }
    double ReadDouble() override { return inner().ReadDouble(); }
    void WriteByte(unsigned char value) override { inner().WriteByte(value); }
    void WriteWord(unsigned short value) override { inner().WriteWord(value); }
    void WriteDWord(unsigned value) override { inner().WriteDWord(value); }
    void WriteDouble(double value) override { inner().WriteDouble(value); }
    void WriteStringW(const wchar_t* text) override { inner().WriteStringW(text); }
    void WriteString(const char* text) override { inner().WriteString(text); }
    int ReadLineW(wchar_t* buffer, int max) override { return inner().ReadLineW(buffer, max); }
    int ReadLine(char* buffer, int max) override { return inner().ReadLine(buffer, max); }
    unsigned GetSize() override { return inner().GetSize(); }

private:
    auto& inner() { return static_cast<Self*>(this)->inner(); }
};

} // namespace qzr
