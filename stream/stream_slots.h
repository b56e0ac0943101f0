// The typed operations of IXStream for any class with Read and Write.
#pragma once

#include "qzstream.h"
#include "stream/typed_io.h"
#include "stream/variant_codec.h"

namespace qzr {

// Self derives from StreamSlots<Self> and adds Read, Write, Seek, GetPosition, GetSize and GetName. Make Self
// final: the operations here then reach its Read and Write without a virtual call.
template <class Self>
class StreamSlots : public CQZUnknownImpl<IXStream> {
public:
    // How many bytes a wide text in a variant takes; a class with another rule declares its own.
    static constexpr WideTextCount kWideTextCount = WideTextCount::kWhole;

    // Whom to ask for size and position when the answer matters to the library alone.
    Self& measured() { return self(); }

    unsigned char ReadByte() override { return read_or_eof<unsigned char>(self()); }
    unsigned short ReadWord() override { return read_or_eof<unsigned short>(self()); }
    unsigned ReadDWord() override { return read_or_eof<unsigned>(self()); }
    double ReadDouble() override { return read_or_eof<double>(self()); }

    int ReadLineW(wchar_t* buffer, int max) override { return read_stream_line(self(), buffer, max); }
    int ReadLine(char* buffer, int max) override { return read_stream_line(self(), buffer, max); }

    int ReadVariant(tagQZVARIANT* v) override { return read_variant(self(), *v); }
    int WriteVariant(const tagQZVARIANT* v) override {
        return write_variant(self(), *v, Self::kWideTextCount);
    }

    void WriteByte(unsigned char value) override { write_value(self(), value); }
    void WriteWord(unsigned short value) override { write_value(self(), value); }
    void WriteDWord(unsigned value) override { write_value(self(), value); }
    void WriteDouble(double value) override { write_value(self(), value); }
    void WriteStringW(const wchar_t* text) override { write_text(self(), text); }
    void WriteString(const char* text) override { write_text(self(), text); }

private:
    Self& self() { return static_cast<Self&>(*this); }
};

} // namespace qzr
