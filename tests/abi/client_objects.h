// Objects that a client implements itself and hands to the library: a stream over a vector, a parameter node
// over maps, an enumerator.
#pragma once

#include "qzexception.h"
#include "qzparam.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzvariant.h"

#include <map>
#include <string>
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

class ClientNames final : public CQZUnknownImpl<CTEnum<const char*>> {
public:
    explicit ClientNames(std::vector<std::string> names) : names_(std::move(names)) {}
    int Next(int count, const char** items, unsigned* fetched) override;
    int Skip(unsigned count) override;
    void Reset() override { next_ = 0; }

private:
    std::vector<std::string> names_;
    std::size_t next_ = 0;
};

class ClientParam final : public CQZUnknownImpl<IParam> {
public:
    IParam* CreateSubParam(const char* name) override { return OpenSubParam(name, 1); }
    IParam* OpenSubParam(const char* name, int create) override;
    void DeleteSubParam(const char* name) override { children.erase(name); }
    void DeleteAllSubParams() override { children.clear(); }
    CTEnum<const char*>* EnumSubParams() override { return names_of(children); }
    int GetValue(const char* name, tagQZVARIANT* out) override;
    void SetValue(const char* name, const tagQZVARIANT* value) override { values[name] = value; }
    void DeleteValue(const char* name) override { values.erase(name); }
    void DeleteAllValues() override { values.clear(); }
    CTEnum<const char*>* EnumValues() override { return names_of(values); }
    void Clear() override {
        children.clear();
        values.clear();
    }

    std::map<std::string, CQZVariant> values;
    std::map<std::string, CQZRef<IParam>> children;

private:
    template <class Map>
    static CTEnum<const char*>* names_of(const Map& map) {
        std::vector<std::string> names;
        for (const auto& entry : map)
            names.push_back(entry.first);
        return new ClientNames(std::move(names));
    }
};
