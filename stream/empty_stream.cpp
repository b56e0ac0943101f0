// CEmptyStream: swallows what is written and reads as zeroes without end.
#include "stream/seek.h"
#include "stream/stream_slots.h"

#include <cstring>
#include <new>

namespace qzr {

class CEmptyStream final : public StreamSlots<CEmptyStream> {
public:
    // 1 says "not at the end", whatever the count: callers loop on it.
    unsigned Read(void* buffer, unsigned count) override {
        if (count != 0) std::memset(buffer, 0, count);
        return 1;
    }
    int Write(const void*, unsigned count) override { return static_cast<int>(count); }

    unsigned Seek(int offset, unsigned origin) override {
        return position_ = seek_within(*this, offset, origin);
    }
    unsigned GetPosition() override { return position_; }
    unsigned GetSize() override { return 1; } // never 0, so that nobody takes the stream for exhausted
    const wchar_t* GetName() override { return L"Empty stream"; }

    int ReadLineW(wchar_t* buffer, int) override { return empty_line(buffer); }
    int ReadLine(char* buffer, int) override { return empty_line(buffer); }

    // An object in a variant is not asked to save itself for nothing.
    int WriteVariant(const tagQZVARIANT*) override { return 1; }

private:
    template <class Char>
    static int empty_line(Char* buffer) {
        buffer[0] = 0;
        return 1;
    }

    unsigned position_ = 0;
};

} // namespace qzr

IXStream* new_EmptyStream() { return new (std::nothrow) qzr::CEmptyStream; }
