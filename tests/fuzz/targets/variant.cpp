// Stored variants, and lines of text.
#include "fuzz/record_steps.h"
#include "support/hex.h"

namespace {

const char* const kRecords[] = {
    "0000 00000000 0100 01000000 0200 c8 0300 cdab 0400 efbeadde 0500 feffffff 0600 005ed0b2 0700 ffffffff",
    "0800 00000000000004c0 0900 0000c03f 0b00 03000000fcffffff 0d00 ffffffff02010000",
    "0a00 03000000 787900 0a00 01000000 00 1300 06000000 780079000000 1300 04000000 61006200",
    "0c00 000000000000e03f0000000000000040 0e00 000000000000f03f000000000000f0bf",
    "0f00 01000000020000000300000004000000",
    "1000 000000000000e03f000000000000f03f000000000000004000000000000000c0",
    "1100 03000000 0102ff 1100 00000000 1200 00",
    "1200 'NoSuchClass' 00 05000000 dead000aff",
};
const char* const kLines[] = {"'a line' 0a 'another' 0d0a 0a 00 'the last'",
                              "61006200 0a00 63000a00 0000 6400"};

void run(const std::string& input) {
    fuzz::read_records(input, {fuzz::Step::variant, fuzz::Step::line, fuzz::Step::wide_line});
}

std::vector<std::string> seeds() {
    std::vector<std::string> all;
    for (const char* const record : kRecords)
        all.push_back(test::from_hex("0000000000000000") + test::from_hex(record));
    for (const char* const lines : kLines) {
        all.push_back(test::from_hex("4f4f4f4f4f4f4f4f") + test::from_hex(lines));
        all.push_back(test::from_hex("5050505050505050") + test::from_hex(lines));
    }
    return all;
}

std::vector<std::string> pieces() {
    std::vector<std::string> all;
    for (const char* const record : kRecords)
        all.push_back(test::from_hex(record));
    for (const char* const edge : {"0000", "ffff", "00000000", "ffffffff", "ffffff7f", "00000080", "feffffff",
                                   "00000004", "fbff0304", "0a", "0a00"})
        all.push_back(test::from_hex(edge));
    return all;
}

} // namespace

// A blob may claim 64 MiB; it is read twice, and copied.
const fuzz::Target fuzz::kVariant{
    .name = "variant", .run = run, .seeds = seeds, .pieces = pieces, .most_memory = 1ULL << 30};
