#include "formats/stream_check.h"

#include "qzref.h"
#include "qzstring.h"
#include "qzvariant.h"
#include "system/encoding.h"
#include "trees/tree.h"

#include <vector>

namespace tool {

namespace {

constexpr int kLongestName = 1024; // of the library's reader

/// Reads record by record and builds the tree on the way. Damage is thrown.
class Checker {
public:
    Checker(IXStream& stream, IParam& root) : stream_(stream), size_(stream.GetSize()) {
        open_.push_back(CQZRef<IParam>::Share(&root));
    }

    void check() {
        if (size_ == 0) throw Damage{0, "the file is empty"};
        while (!open_.empty()) {
            if (CXString name; read_name(name)) {
                open_.push_back(CQZRef<IParam>::Adopt(open_.back()->CreateSubParam(name.GetData())));
            } else {
                read_values();
                open_.pop_back();
            }
        }
        const unsigned position = stream_.GetPosition();
        if (position < size_) {
            throw Damage{position, std::to_string(size_ - position) + " bytes follow the end of the tree"};
        }
    }

private:
    void read_values() {
        for (CXString name; read_name(name);) {
            CQZVariant value;
            read_value(name, value);
            open_.back()->SetValue(name.GetData(), &value);
        }
    }

    /// @return false at the empty name, which ends a list
    bool read_name(CXString& name) {
        const unsigned start = stream_.GetPosition();
        if (start >= size_) throw ends_early(start);
        char buffer[kLongestName + 2] = {};
        int count = 0;
        try {
            count = stream_.ReadLine(buffer, kLongestName);
        } catch (const CXEofException&) {
            throw ends_early(start);
        }
        if (count > kLongestName) throw Damage{start, "a name is longer than 1024 bytes"};
        if (buffer[count - 1] == '\n') throw Damage{start, "a name holds a line feed"};
        name = CXString(buffer);
        return count > 1;
    }

    void read_value(const CXString& name, CQZVariant& value) {
        const unsigned start = stream_.GetPosition();
        const std::string of_value = " of the value " + printable(utf8(name));
        const unsigned short code = peek_type(start);
        try {
            stream_.ReadVariant(&value);
        } catch (const CXEofException&) {
            throw ends_early(start);
        } catch (const CXMemException&) {
            throw Damage{start, "the size" + of_value + " is far beyond the end of the data"};
        } catch (const CXFileException&) {
            throw Damage{start, "unknown type " + std::to_string(code) + of_value};
        } catch (const CXException&) {
            throw Damage{start, "the object" + of_value + " reaches past the end of the data"};
        }
        // What the end cut off was filled with zeroes; the lists are not closed then either.
        if (stream_.GetPosition() >= size_) throw ends_early(start);
    }

    unsigned short peek_type(unsigned position) {
        unsigned short code = 0;
        stream_.Read(&code, sizeof code);
        stream_.Seek(static_cast<int>(position), 0);
        return code;
    }

    Damage ends_early(unsigned start) const {
        const std::size_t count = open_.size();
        return {start, "the data end early, with " + std::to_string(count) +
                           (count == 1 ? " section still open" : " sections still open")};
    }

    IXStream& stream_;
    unsigned size_;
    std::vector<CQZRef<IParam>> open_;
};

} // namespace

std::optional<Damage> find_damage(IXStream& stream, IParam& tree) {
    try {
        Checker(stream, tree).check();
    } catch (const Damage& damage) {
        return damage;
    }
    return std::nullopt;
}

} // namespace tool
