// Damaged streams: stored variants, object records and lines are mutated and read back. Whatever the bytes,
// reading ends, throws nothing but the library's exceptions, writes only where it may and leaks no object;
// and the block-wise path of a memory stream does the same as the one that transfers character by character.
//
//     fuzz_stream [INPUTS [FIRST]]      the inputs FIRST to FIRST + INPUTS - 1, always the same ones
#include "contracts/persistent_note.h"
#include "qzexception.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzvariant.h"
#include "support/hex.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include <windows.h>

#undef GetClassName // a macro of the platform header, a member of IPersistXStream

extern "C" __declspec(dllexport) int TestNote(IQZUnknown*, const std::type_info& iid, IQZUnknown** out) {
    return test::PersistentNote::create(iid, out);
}

namespace {

constexpr unsigned kInputs = 250'000;
constexpr unsigned kHeapCheckEvery = 10'000;

unsigned current_input; // for the message of a crash

// A generator of its own: the inputs are the same everywhere.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 0x1234567) {}
    unsigned below(std::size_t n) {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return static_cast<unsigned>((state_ >> 32) % n);
    }

private:
    std::uint64_t state_;
};

const char* const kSeeds[] = {
    "0000 00000000 0100 01000000 0200 c8 0300 cdab 0400 efbeadde 0500 feffffff 0600 005ed0b2 0700 ffffffff",
    "0800 00000000000004c0 0900 0000c03f 0b00 03000000fcffffff 0d00 ffffffff02010000",
    "0a00 03000000 787900 0a00 01000000 00 1300 06000000 780079000000 1300 04000000 61006200",
    "0c00 000000000000e03f0000000000000040 0e00 000000000000f03f000000000000f0bf",
    "0f00 01000000020000000300000004000000",
    "1000 000000000000e03f000000000000f03f000000000000004000000000000000c0",
    "1100 03000000 0102ff 1100 00000000 1200 00",
    "1200 'TestNote' 00 04000000 03 'abc' 1200 'NoSuchClass' 00 05000000 dead000aff",
    "'TestNote' 00 04000000 03 'abc' 'NoSuchClass' 00 05000000 dead000aff 00",
    "'a line' 0a 'another' 0d0a 0a 00 'the last'",
    "61006200 0a00 63000a00 0000 6400",
};

// Numbers that lie on the edges of what counts can be.
const char* const kEdges[] = {"00",       "ff",       "0000",     "ffff",     "00000000", "ffffffff",
                              "ffffff7f", "00000080", "feffffff", "00000004", "fbff0304", "0a"};

std::string mutated(Random& random) {
    std::string bytes;
    for (unsigned parts = 1 + random.below(3); parts != 0; --parts)
        bytes += test::from_hex(kSeeds[random.below(std::size(kSeeds))]);
    for (unsigned steps = random.below(5); steps != 0 && !bytes.empty(); --steps) {
        const std::size_t at = random.below(bytes.size());
        const std::string edge = test::from_hex(kEdges[random.below(std::size(kEdges))]);
        switch (random.below(6)) {
        case 0:
            bytes[at] = static_cast<char>(bytes[at] ^ (1 << random.below(8)));
            break;
        case 1:
            bytes.replace(at, edge.size(), edge);
            break;
        case 2:
            bytes.insert(at, edge);
            break;
        case 3:
            bytes.erase(at, 1 + random.below(6));
            break;
        case 4:
            bytes.resize(at);
            break;
        default:
            bytes.insert(at, bytes.substr(random.below(bytes.size()), 1 + random.below(300)));
            break;
        }
    }
    return bytes;
}

class PatientSink final : public CQZUnknownImpl<QZRFC::IProgress> {
    int CheckCancel() override { return 0; }
};

CQZRef<IXStream> stream_of(const std::string& bytes, QZRFC::IProgress* sink) {
    auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory(sink));
    CQZRef<IMemBlock>::Query(stream.Get())->SetData(bytes.data(), static_cast<unsigned>(bytes.size()));
    return stream;
}

void require(bool holds, const char* what) {
    if (!holds) throw std::runtime_error(what);
}

template <class Char>
std::string read_line(IXStream& s, int max, int (IXStream::*read)(Char*, int)) {
    const std::size_t places = static_cast<std::size_t>(max < 0 ? 0 : max) + 2;
    std::basic_string<Char> buffer(places + 8, Char(0x55));
    const int result = (s.*read)(buffer.data(), max);
    require(result >= 1 && result <= static_cast<int>(places) - 1, "a line's length is out of range");
    require(buffer[static_cast<std::size_t>(result)] == 0, "a line has no terminator");
    require(buffer.substr(places) == std::basic_string<Char>(8, Char(0x55)), "a line left its buffer");
    return std::string(reinterpret_cast<const char*>(buffer.data()), places * sizeof(Char));
}

// What one operation made of the stream, told in full so that two streams can be compared.
std::string step(IXStream& s, unsigned kind, int max) {
    switch (kind) {
    case 0: {
        CQZVariant v;
        std::string told = std::to_string(s.ReadVariant(&v)) + ' ' + std::to_string(v.vt);
        require(v.vt < QZVT_COUNT, "an unknown type was read");
        if (v.vt == QZVT_BLOB && v.blobVal.cbSize > 1'000'000) return told;
        const auto copy = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
        copy->WriteVariant(&v);
        const auto block = CQZRef<IMemBlock>::Query(copy.Get());
        told.append(static_cast<const char*>(block->GetData()), block->GetSize());
        if (v.vt == QZVT_OBJECT) return told; // a damaged class name need not read back: a line feed ends it
        copy->Seek(0, 0);
        CQZVariant again;
        copy->ReadVariant(&again);
        require(copy->GetPosition() == copy->GetSize(), "a written variant is longer than it reads");
        return told;
    }
    case 1: {
        IQZUnknown* object = nullptr;
        std::string told = std::to_string(ReadObjectFromXStream(&s, &object));
        const auto owner = CQZRef<IQZUnknown>::Adopt(object);
        const auto persistent = CQZRef<IPersistXStream>::Query(object);
        if (!persistent) return told;
        const auto copy = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
        WriteObjectToXStream(copy.Get(), persistent.Get());
        const auto block = CQZRef<IMemBlock>::Query(copy.Get());
        return told.append(static_cast<const char*>(block->GetData()), block->GetSize());
    }
    case 2:
        return std::to_string(SkipObjectToXStream(&s));
    case 3:
        return read_line<char>(s, max, &IXStream::ReadLine);
    default:
        return read_line<wchar_t>(s, max, &IXStream::ReadLineW);
    }
}

std::string guarded_step(IXStream& s, unsigned kind, int max) {
    const unsigned before = s.GetPosition();
    std::string told;
    try {
        told = step(s, kind, max);
    } catch (const CXException& e) {
        told = "failure " + std::to_string(e.GetCode());
    }
    require(s.GetPosition() >= before && s.GetPosition() <= s.GetSize(), "the position left the stream");
    return told;
}

void run(unsigned input, QZRFC::IProgress* sink) {
    Random random(input);
    const std::string bytes = mutated(random);
    const auto plain = stream_of(bytes, nullptr);
    const auto watched = stream_of(bytes, sink);
    for (unsigned steps = 0; steps < 12 && plain->GetPosition() < plain->GetSize(); ++steps) {
        const unsigned kind = random.below(5);
        const int max = static_cast<int>(random.below(40)) - 1;
        require(guarded_step(*plain, kind, max) == guarded_step(*watched, kind, max),
                "two ways of reading differ in what they read");
        require(plain->GetPosition() == watched->GetPosition(),
                "two ways of reading differ in where they end");
    }
    require(test::PersistentNote::live == 0, "an object was left alive");
}

void check_heaps() {
    std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr) + 8);
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    require(count <= heaps.size(), "too many heaps");
    for (DWORD i = 0; i < count; ++i)
        require(HeapValidate(heaps[i], 0, nullptr) != 0, "a heap is damaged");
}

LONG CALLBACK tell_crash(EXCEPTION_POINTERS* info) {
    std::fprintf(stderr, "input %u: crash %08lx\n", current_input, info->ExceptionRecord->ExceptionCode);
    return EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

int main(int argc, char** argv) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(tell_crash);
    const unsigned inputs = argc > 1 ? static_cast<unsigned>(std::strtoul(argv[1], nullptr, 10)) : kInputs;
    const unsigned first = argc > 2 ? static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10)) : 1;
    RegisterObject("TestNote", GetModuleHandleW(nullptr));
    const auto sink = CQZRef<PatientSink>::Adopt(new PatientSink);
    try {
        for (unsigned i = 0; i < inputs; ++i) {
            current_input = first + i;
            run(current_input, sink.Get());
            if (i % kHeapCheckEvery == 0) check_heaps();
        }
        check_heaps();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "input %u: %s\n", current_input, e.what());
        return 1;
    }
    UnregisterObject("TestNote");
    std::printf("%u inputs read, %u to %u\n", inputs, first, first + inputs - 1);
    return 0;
}
