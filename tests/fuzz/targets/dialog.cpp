// Dialog templates, in bytes that end where unreadable memory begins. A sound one is copied so that it is
// sound again, and copying that without changes is the same.
#include "fuzz/low_bytes.h"
#include "supp/dialog_template.h"
#include "support/hex.h"

#include <cstring>
#include <cwchar>

namespace {

using namespace qzr;
using test::from_hex;

const char* const kSeeds[] = {
    "0000c880 00000000 0000 0100 0200 6400 3200 0000 0000 5900 6500 7300 0000",
    "0100ffff 07000000 00000100 0000c880 0000 0100 0200 6400 3200 0000 0000 5900 6500 7300 0000",
    "4000c880 00000000 0100 0100 0200 6400 3200 ffff0900 0000 5900 6500 7300 0000 0800 4d00 5300 0000 0000"
    " 00000150 04000000 0500 0600 0700 0800 6500 ffff8000 5900 6500 7300 0000 0400 'abcd'",
    "0100ffff 07000000 00000100 4000c880 0200 0100 0200 6400 3200 0000 0000 5900 6500 7300 0000 ff7f"
    " 63000000 04000000 00000150 0500 0600 0700 0800 65000000 ffff8000 5900 6500 7300 0000 0300 'abc' 00"
    " 63000000 04000000 00000150 0500 0600 0700 0800 65000000 5900 0000 ffff0900 0000",
};

std::vector<std::string> seeds() {
    std::vector<std::string> all;
    for (const char* const seed : kSeeds)
        all.push_back(from_hex(seed));
    return all;
}

std::vector<std::string> pieces() {
    std::vector<std::string> all;
    for (const char* const piece :
         {"ffff", "0000", "ff7f", "0100ffff", "4000", "5900 6500 7300 0000", "ffff8000",
          "00000150 04000000 0500 0600 0700 0800 6500",
          "63000000 04000000 00000150 0500 0600 0700 0800 65000000", "6d00 6100 7200 6b00 0000"})
        all.push_back(from_hex(piece));
    return all;
}

// "Yes" becomes longer, so that everything behind it moves; the others must not be used.
const wchar_t* translated(const wchar_t* text) {
    if (std::wcscmp(text, L"Yes") == 0) return L"Oui!!";
    if (std::wcscmp(text, L"n") == 0) return L"";
    return std::wcscmp(text, L"mark") == 0 ? L"\xFFFF\x0001" : nullptr;
}

void run(const std::string& input) {
    static fuzz::LowBytes memory(8192);
    static const RECT place = {-1, 2, 4, 10};
    memory.put(input);
    const void* const data = memory.data() + 8192 - input.size();
    const auto place_of = [](unsigned item) -> const RECT* { return item % 2 == 1 ? &place : nullptr; };
    const DialogChanges none{[](const wchar_t*) -> const wchar_t* { return nullptr; }, {}};
    DialogCopy plain, again, changed;
    const bool sound = translate_dialog_template(data, input.size(), none, plain);
    fuzz::require(translate_dialog_template(data, input.size(), {translated, place_of}, changed) == sound,
                  "damaged or not, as the changes go");
    if (!sound) return;
    fuzz::require(translate_dialog_template(plain.data(), plain.size(), none, again), "the copy is damaged");
    fuzz::require(plain.size() == again.size() && std::memcmp(plain.data(), again.data(), plain.size()) == 0,
                  "the copy of a copy differs");
}

} // namespace

const fuzz::Target fuzz::kDialog{.name = "dialog", .run = run, .seeds = seeds, .pieces = pieces};
