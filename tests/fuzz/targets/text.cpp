// The text form under mutation: no input crashes or hangs, and what was read is written so that it reads the
// same.
#include "fuzz/target.h"

#include "qzparam.h"
#include "qzref.h"
#include "qzstring.h"

#include <algorithm>

namespace {

using Tree = CQZRef<IParam>;

std::vector<std::string> corpus() {
    return {
        "[\\]|a=i1|b=sx|[\\s]|c=R1.5|[\\s\\t]|d=x00FF|",
        "\r\n[\\]\t\t| e=e\t| f=fYes\t| b=b:L\t| w=w65535\r\n[\\s]\t\t| W=W1\t| i=i-9\t| u=u0x10\t| l=l7",
        "[\\]\nR=R-1e10\nr=r.25\nz=z1,2\nZ=Z1,2\np=p0x1,2\nP=P3,4\nt=t1,2,3,4\nT=T1,2,3,4\n; comment\nname\n",
        "#include \"missing.ini\"|[a\\b]|=i1|a b = s text |#other|[]|x=x1G2",
    };
}

std::vector<std::string> pieces() {
    return fuzz::parts(
        "|~[~]~\\~=~;~#include ~\"~\r\n~\n~\t~ ~x~,~0x~i~s~R~[\\]|~|v=~[\\s]|~|v=i1|~1e999~-~-1~"
        "99999999999~65536~nan~.~..\\~\x81\x7C~\x83\x5C~\xFF~|v=T1,2,3,4|~|v=x0A|~=s~|;~@~1.#INF",
        {std::string(1, '\0')});
}

std::string text_of(IParam& tree) {
    CXString text;
    fuzz::require(Param_Param2String(&tree, text) == 1, "not written");
    return text.GetData();
}

std::string read_and_write(const std::string& text) {
    const Tree tree = Tree::Adopt(new_MemParam());
    CXString form(text.c_str());
    fuzz::require(Param_String2Param(form, tree.Get()) == 1, "not read");
    return text_of(*tree);
}

// A "\" in a value's name is a path, and the name behind it may be one that no text can hold; reals that are
// no numbers have no text that reads back.
bool is_plain(const std::string& first) {
    return first.find("1.#") == std::string::npos && first.find("inf") == std::string::npos &&
           first.find("nan") == std::string::npos;
}

bool has_path_names(const std::string& input) {
    std::size_t start = 0;
    while (start < input.size()) {
        const std::size_t end = std::min(input.find_first_of("|\n", start), input.size());
        const std::size_t first = std::min(input.find_first_not_of(" \t\v\f\r", start), end);
        const std::string statement = input.substr(first, end - first);
        if (!statement.empty() && statement[0] != '[' && statement.find('\\') < statement.find('='))
            return true;
        start = end + 1;
    }
    return false;
}

void run(const std::string& input) {
    const std::string first = read_and_write(input);
    const std::string second = read_and_write(first);
    if (is_plain(first) && !has_path_names(input.c_str()))
        fuzz::require(second == first, "changed by a round trip");
    const std::string third = read_and_write(second);
    fuzz::require(read_and_write(third) == third, "never settles");
}

} // namespace

const fuzz::Target fuzz::kText{.name = "text", .run = run, .seeds = corpus, .pieces = pieces};
