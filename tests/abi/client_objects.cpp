#include "abi/client_objects.h"

#include <algorithm>
#include <cstring>

unsigned ClientStream::Read(void* buffer, unsigned count) {
    const std::size_t left = bytes.size() - std::min(position, bytes.size());
    const auto given = static_cast<unsigned>(std::min<std::size_t>(count, left));
    if (given != 0) std::memcpy(buffer, bytes.data() + position, given);
    position += given;
    return given;
}

int ClientStream::Write(const void* buffer, unsigned count) {
    if (refuse_writing) throw CXFileException(QZERR_DISK_FULL, QZOP_WRITE, GetName());
    bytes.resize(std::max(bytes.size(), position + count));
    if (count != 0) std::memcpy(bytes.data() + position, buffer, count);
    position += count;
    return 1;
}

unsigned ClientStream::Seek(int offset, unsigned origin) {
    const long long bases[] = {0, static_cast<long long>(position), static_cast<long long>(bytes.size())};
    position = static_cast<std::size_t>(bases[origin] + offset);
    return GetPosition();
}

int ClientStream::ReadLine(char* buffer, int max) {
    int count = 0;
    while (count < max) {
        const char c = static_cast<char>(ReadByte());
        buffer[count++] = c;
        if (c == 0 || c == '\n') break;
    }
    buffer[count] = 0;
    return count;
}

int ClientStream::ReadVariant(tagQZVARIANT* v) {
    QZVariantClear(v);
    v->vt = ReadWord();
    v->intVal = static_cast<int>(ReadDWord());
    return 1;
}

int ClientStream::WriteVariant(const tagQZVARIANT* v) {
    WriteWord(v->vt);
    WriteDWord(v->uintVal);
    return 1;
}

void ClientStream::WriteString(const char* text) {
    Write(text, static_cast<unsigned>(std::strlen(text)) + 1);
}
