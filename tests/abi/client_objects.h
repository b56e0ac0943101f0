// An object that a client implements itself and hands to the library: a stream over a vector.
#pragma once

#include "qzexception.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzvariant.h"

#include <vector>

class ClientStream final : public CQZUnknownImpl<IXStream> {
public:
    std::vector<unsigned char> bytes;
    std::size_t position = 0;
    bool refuse_writing = false;

    unsigned Read(void* buffer, unsigned count) override;
    int Write(const void* buffer, unsigned count) override;
    unsigned Seek(int offset, unsigned origin) override;
    unsigned GetPosition() override { return static_cast<unsigned>(position); }
    unsigned char ReadByte() override { return read_value<unsigned char>(); }
    unsigned short ReadWord() override { return read_value<unsigned short>(); }
    unsigned ReadDWord() override { return read_value<unsigned>(); }
    double ReadDouble() override { return read_value<double>(); }
    int ReadLineW(wchar_t*, int) override { throw CXEofException(); }
    int ReadLine(char* buffer, int max) override;
    int ReadVariant(tagQZVARIANT* v) override; // int values alone
    int WriteVariant(const tagQZVARIANT* v) override;
    void WriteByte(unsigned char value) override { Write(&value, sizeof value); }
    void WriteWord(unsigned short value) override { Write(&value, sizeof value); }
    void WriteDWord(unsigned value) override { Write(&value, sizeof value); }
    void WriteDouble(double value) override { Write(&value, sizeof value); }
    void WriteStringW(const wchar_t*) override {}
    void WriteString(const char* text) override;
    unsigned GetSize() override { return static_cast<unsigned>(bytes.size()); }
    const wchar_t* GetName() override { return L"client stream"; }

private:
    template <class T>
    T read_value() {
        T value{};
        if (Read(&value, sizeof value) == 0) throw CXEofException();
        return value;
    }
};
