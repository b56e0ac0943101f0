// Streams in memory: typed values, seeking, the end, progress.
#include "guide.h"

#include "qzcore.h"

#include <cstdio>

void streams(const Argument&) {
    const auto stream = qz::new_stream();
    stream->WriteDWord(0x20240607);
    stream->WriteString("a title");
    const CQZVariant value(12.5);
    stream->WriteVariant(&value);
    std::printf("%u bytes, at %u\n", stream->GetSize(), stream->GetPosition());

    stream->Seek(0, 0);
    const unsigned date = stream->ReadDWord();
    char title[100 + 2] = {}; // ReadLine wants two more than the most it reads
    stream->ReadLine(title, 100);
    CQZVariant back;
    stream->ReadVariant(&back);
    std::printf("%X, \"%s\", %g\n", date, title, static_cast<double>(back));

    // The end: a Read that finds nothing answers 0, a typed one throws.
    char byte = 0;
    std::printf("at the end Read answers %u", stream->Read(&byte, 1));
    try {
        stream->ReadByte();
    } catch (const CXEofException& e) {
        std::printf(", ReadByte throws %u\n", e.GetCode());
    }

    // Bytes as a stream, and a stream as bytes.
    std::printf("%s\n", qz::read_rest(*qz::stream_of("all of it")).c_str());

    // A progress sink is asked after each transfer. This one has enough after three.
    const auto patient = CQZRef<IXStream>::Adopt(new_StreamOnMemory(qz::cancel_after(3).Get()));
    try {
        while (true)
            patient->WriteByte('x');
    } catch (const CXException& e) {
        std::printf("cancelled (%u) with %u bytes written\n", e.GetCode(),
                    CQZRef<IMemBlock>::Require(patient.Get())->GetSize());
    }
}
