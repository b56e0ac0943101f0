// The binary form under mutation: no bytes crash or hang, and what was loaded is saved so that it loads the
// same.
#include "fuzz/target.h"

#include "qzexception.h"
#include "qzstream.h"
#include "qzvariant.h"
#include "support/tree_names.h"

namespace {

using Tree = CQZRef<IParam>;
using Stream = CQZRef<IXStream>;
using namespace std::string_literals;

std::vector<std::string> corpus() {
    return {
        "\0\0"s,
        "s\0t\0\0v\0\5\0\1\0\0\0\0\0\0\0a\0\5\0\2\1\0\0\0"s,
        "\0e\0\0\0\0\0\0\0f\0\1\0\1\0\0\0b\0\2\0\7w\0\3\0\1\2W\0\4\0\1\2\3\4R\0\x08\0\0\0\0\0\0\0\x04\x40\0"s,
        "\0s\0\x0A\0\3\0\0\0ab\0x\0\x11\0\2\0\0\0\1\2w\0\x13\0\5\0\0\0a\0b\0c\0"s,
        "\0z\0\x0B\0\1\0\0\0\2\0\0\0t\0\x0F\0\1\0\0\0\2\0\0\0\3\0\0\0\4\0\0\0o\0\x12\0\0\0\0"s,
        "a\0b\0c\0d\0\0\0\0\0\0\0\0\0\0\0"s,
    };
}

std::vector<std::string> pieces() {
    std::vector<std::string> pieces =
        fuzz::parts("\0~\0\0~n\0~\n~\\~a\\b\0~\xFF\xFF\xFF\xFF~\xFF\xFF\xFF\x7F~\0\0\0\x10~@\0"s,
                    {std::string(1030, 'n')});
    for (char code = 0; code <= 20; ++code)
        pieces.push_back("v\0"s + code + "\0\4\0\0\0"s);
    return pieces;
}

Stream stream_of(const std::string& bytes) {
    Stream stream = Stream::Adopt(new_StreamOnMemory());
    stream->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
    stream->Seek(0, 0);
    return stream;
}

std::string saved(IParam& tree) {
    const Stream stream = stream_of({});
    fuzz::require(SaveParamToXStream(stream.Get(), &tree) == 1, "not saved");
    std::string bytes(stream->GetSize(), '\0');
    stream->Seek(0, 0);
    stream->Read(bytes.data(), static_cast<unsigned>(bytes.size()));
    return bytes;
}

// Names that the form cannot hold, and wide texts and objects, which memory streams do not keep whole.
bool is_plain_name(const std::string& name) {
    return name.find_first_of("\n\\") == name.npos && name.size() < 1024;
}

struct Survey {
    bool plain = true; // the form keeps all of it
    bool huge = false; // a blob that a short input claimed, millions of zeroes that take all the time
};

void survey_values(IParam& node, Survey& found) {
    constexpr unsigned kHuge = 0x10000;
    for (const std::string& name : take_names(node.EnumValues())) {
        CQZVariant value;
        if (node.GetValue(name.c_str(), &value) == 0 || !is_plain_name(name)) found.plain = false;
        if (value.vt == QZVT_WTEXT || value.vt == QZVT_OBJECT) found.plain = false;
        if (value.vt == QZVT_BLOB && value.blobVal.cbSize > kHuge) found.huge = true;
    }
}

Survey survey(const Tree& root) {
    Survey found;
    std::vector<Tree> nodes = {root};
    while (!nodes.empty()) {
        const Tree node = nodes.back();
        nodes.pop_back();
        survey_values(*node, found);
        for (const std::string& name : take_names(node->EnumSubParams())) {
            Tree child = Tree::Adopt(node->OpenSubParam(name.c_str(), 0));
            if (!child || !is_plain_name(name) || name.empty()) found.plain = false;
            if (child) nodes.push_back(child);
        }
    }
    return found;
}

void run(const std::string& input) {
    const Tree tree = Tree::Adopt(new_MemParam());
    try {
        if (LoadParamFromXStream(stream_of(input).Get(), tree.Get()) == 0) {
            fuzz::require(saved(*tree) == "\0\0"s, "not emptied");
            return;
        }
    } catch (const CXException&) { // of an object in the stream, or of a blob beyond reason
        return;
    }
    const Survey found = survey(tree);
    if (found.huge) return;
    const std::string first = saved(*tree);
    const Tree again = Tree::Adopt(new_MemParam());
    try {
        const int loaded = LoadParamFromXStream(stream_of(first).Get(), again.Get());
        if (found.plain) fuzz::require(loaded == 1 && saved(*again) == first, "changed by a round trip");
    } catch (const CXException&) {
        fuzz::require(!found.plain, "not loaded again");
    }
}

} // namespace

const fuzz::Target fuzz::kTreeStream{.name = "tree_stream", .run = run, .seeds = corpus, .pieces = pieces};
