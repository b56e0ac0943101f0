#include "fuzz/record_steps.h"

namespace {

using fuzz::Step;

class PatientSink final : public CQZUnknownImpl<QZRFC::IProgress> {
    int CheckCancel() override { return 0; }
};

CQZRef<IXStream> stream_of(const std::string& bytes, QZRFC::IProgress* sink) {
    auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory(sink));
    CQZRef<IMemBlock>::Query(stream.Get())->SetData(bytes.data(), static_cast<unsigned>(bytes.size()));
    return stream;
}

template <class Char>
std::string read_line(IXStream& s, int max, int (IXStream::*read)(Char*, int)) {
    const std::size_t places = static_cast<std::size_t>(max < 0 ? 0 : max) + 2;
    std::basic_string<Char> buffer(places + 8, Char(0x55));
    const int result = (s.*read)(buffer.data(), max);
    fuzz::require(result >= 1 && result <= static_cast<int>(places) - 1, "a line's length is out of range");
    fuzz::require(buffer[static_cast<std::size_t>(result)] == 0, "a line has no terminator");
    fuzz::require(buffer.substr(places) == std::basic_string<Char>(8, Char(0x55)), "a line left its buffer");
    return std::string(reinterpret_cast<const char*>(buffer.data()), places * sizeof(Char));
}

// What one operation made of the stream, told in full so that two streams can be compared.
std::string step(IXStream& s, Step kind, int max) {
    switch (kind) {
    case Step::variant: {
        CQZVariant v;
        std::string told = std::to_string(s.ReadVariant(&v)) + ' ' + std::to_string(v.vt);
        fuzz::require(v.vt < QZVT_COUNT, "an unknown type was read");
        if (v.vt == QZVT_BLOB && v.blobVal.cbSize > 1'000'000) return told;
        const auto copy = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
        copy->WriteVariant(&v);
        const auto block = CQZRef<IMemBlock>::Query(copy.Get());
        told.append(static_cast<const char*>(block->GetData()), block->GetSize());
        if (v.vt == QZVT_OBJECT) return told; // a damaged class name need not read back: a line feed ends it
        copy->Seek(0, 0);
        CQZVariant again;
        copy->ReadVariant(&again);
        fuzz::require(copy->GetPosition() == copy->GetSize(), "a written variant is longer than it reads");
        return told;
    }
    case Step::object: {
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
    case Step::skip_object:
        return std::to_string(SkipObjectToXStream(&s));
    case Step::line:
        return read_line<char>(s, max, &IXStream::ReadLine);
    default:
        return read_line<wchar_t>(s, max, &IXStream::ReadLineW);
    }
}

std::string guarded_step(IXStream& s, Step kind, int max) {
    const unsigned before = s.GetPosition();
    std::string told;
    try {
        told = step(s, kind, max);
    } catch (const CXException& e) {
        told = "failure " + std::to_string(e.GetCode());
    }
    fuzz::require(s.GetPosition() >= before && s.GetPosition() <= s.GetSize(),
                  "the position left the stream");
    return told;
}

} // namespace

void fuzz::read_records(const std::string& input, const std::vector<Step>& among) {
    if (input.size() < kScript) return;
    static const auto sink = CQZRef<PatientSink>::Adopt(new PatientSink);
    const std::string bytes = input.substr(kScript);
    const auto plain = stream_of(bytes, nullptr);
    const auto watched = stream_of(bytes, sink.Get());
    for (std::size_t i = 0; i < kScript && plain->GetPosition() < plain->GetSize(); ++i) {
        const auto choice = static_cast<unsigned char>(input[i]);
        const Step kind = among[choice % among.size()];
        const int max = choice / 6 - 1;
        require(guarded_step(*plain, kind, max) == guarded_step(*watched, kind, max),
                "two ways of reading differ in what they read");
        require(plain->GetPosition() == watched->GetPosition(),
                "two ways of reading differ in where they end");
    }
    require(test::PersistentNote::live == 0, "an object was left alive");
}
