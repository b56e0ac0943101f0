// qzrtool recover.
#include "commands/commands.h"
#include "formats/kinds.h"
#include "system/encoding.h"
#include "system/files.h"
#include "system/recovery.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <optional>

namespace tool {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLookedAt = 64 * 1024; // bytes that tell a document's kind

std::string name_of(const Leftover& leftover) { return printable(utf8(leftover.path.filename().wstring())); }

/// @return a line of standard input without its end; nothing at the end of the input
std::optional<std::wstring> read_line() {
    _setmode(_fileno(stdin), _O_BINARY);
    std::string line;
    int c = 0;
    while ((c = std::getchar()) != EOF && c != '\n') {
        line += static_cast<char>(c);
    }
    if (c == EOF && line.empty()) return std::nullopt;
    if (line.ends_with('\r')) line.pop_back();
    const CXStringW wide(line.c_str());
    return std::wstring(wide.GetData());
}

std::string kind_text(const Leftover& leftover) {
    std::string head;
    try {
        read_pieces(leftover.path, name_of(leftover), [&](std::string_view piece) {
            head = piece.substr(0, std::min(kLookedAt, piece.size()));
            throw Failure{}; // enough
        });
    } catch (const Failure&) {
        // What cannot be read has no kind.
    }
    if (head.size() > leftover.size) head.resize(static_cast<std::size_t>(leftover.size));
    const Kind* kind = kind_of_contents(head);
    return kind != nullptr ? std::string("looks like ") + kind->name : "of no known kind";
}

const char* state_text(Leftover::State state) {
    switch (state) {
    case Leftover::complete:
        return "complete";
    case Leftover::unfinished:
        return "unfinished: its program stopped while it wrote";
    case Leftover::empty:
        return "empty";
    case Leftover::copy:
        return "nothing new: the beginning of another file of the folder";
    case Leftover::in_use:
        break;
    }
    return "in use: a program is still at work on it";
}

class Recovery {
public:
    Recovery(Invocation& invocation, fs::path folder) : invocation_(invocation), folder_(std::move(folder)) {}

    void list(const std::vector<Leftover>& leftovers) {
        for (const Leftover& leftover : leftovers) {
            std::string line = name_of(leftover) + "  ";
            if (leftover.state == Leftover::complete) {
                line += std::to_string(leftover.size) + " bytes, complete, " + kind_text(leftover);
            } else {
                line += state_text(leftover.state);
            }
            invocation_.out.write(line + "\n");
        }
        invocation_.out.finish(); // in front of the questions
    }

    void put_back_as(const Leftover& leftover, const std::wstring& name) {
        fs::path given = native_path(name);
        const fs::path target = given.is_absolute() ? given : folder_ / given;
        const fs::path kept = put_back(leftover, target, printable(utf8(name)));
        invocation_.out.write(name_of(leftover) + " is " + printable(utf8(name)) + " again\n");
        if (!kept.empty()) {
            invocation_.out.write("the file of that name is now " +
                                  printable(utf8(kept.filename().wstring())) + "\n");
        }
        invocation_.out.finish();
    }

    /// @return the name under which a document is to be put back; empty to leave it
    std::wstring ask(const Leftover& leftover, const std::wstring& proposed) {
        if (proposed.empty()) {
            question("Put " + name_of(leftover) + " back under which name? (nothing: leave it) ");
            return read_line().value_or(L"");
        }
        question("Put " + name_of(leftover) + " back as " + printable(utf8(proposed)) + "? [y/N] ");
        const std::wstring answer = read_line().value_or(L"");
        return answer == L"y" || answer == L"Y" || answer == L"yes" ? proposed : std::wstring();
    }

private:
    /// Questions go where the list went, so that they come after it.
    void question(const std::string& text) {
        invocation_.out.write(text);
        invocation_.out.finish();
    }

    Invocation& invocation_;
    fs::path folder_;
};

} // namespace

ExitCode run_recover(Invocation& invocation) {
    const fs::path place = fs::absolute(native_path(invocation.arguments[0]));
    const std::wstring name = invocation.arguments.size() > 1 ? invocation.arguments[1] : std::wstring();
    const auto found = find_leftovers(place, printable(utf8(invocation.arguments[0])));
    std::error_code ignored;
    Recovery recovery(invocation, fs::is_directory(place, ignored) ? place : place.parent_path());
    recovery.list(found);

    std::vector<Leftover> complete;
    std::copy_if(found.begin(), found.end(), std::back_inserter(complete),
                 [](const Leftover& leftover) { return leftover.state == Leftover::complete; });
    if (complete.empty()) {
        invocation.out.write("nothing to recover\n");
        return kNo;
    }
    if (invocation.options.yes) {
        if (name.empty()) fail("--yes needs the name under which the document is put back");
        if (complete.size() > 1)
            fail("there are several; name one of the temporary files instead of the folder");
        recovery.put_back_as(complete.front(), name);
        return kOk;
    }
    for (const Leftover& leftover : complete) {
        const std::wstring answer = recovery.ask(leftover, name);
        if (answer.empty()) continue;
        recovery.put_back_as(leftover, answer);
        if (!name.empty()) break;
    }
    return kOk;
}

} // namespace tool
