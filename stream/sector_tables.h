// A look at a compound file's tables before the platform follows them.
#pragma once

#include "core/allocator.h"
#include "stream/platform_storage.h"

#include <cstddef>
#include <cstdint>

namespace qzr {

// What the look is taken at.
class TableBytes {
public:
    virtual std::uint64_t size() = 0;

    // Reads up to `count` bytes from a position on. @return how many there were
    virtual std::size_t read(std::uint64_t position, unsigned char* buffer, std::size_t count) = 0;

protected:
    ~TableBytes() = default;
};

struct TableFindings {
    // Whether it is safe to let the platform follow the tables. What is no compound file counts as safe.
    bool safe = true;

    // Marks that do no harm until the file grows, and what they should be. In unused places of the lists of
    // table sectors some platforms take any but the usual one for a sector; a sector of the table that counts
    // as free in it is overwritten.
    struct OddMark {
        std::uint64_t position; // of the 32-bit number
        unsigned should_be;
    };
    Vector<OddMark> odd_marks;

    // Whether none of these lies in a chain, the bytes of which it would change.
    bool mendable = true;
};

// Takes time and memory in proportion to the bytes.
TableFindings look_at_tables(TableBytes& bytes);

// S_OK when it is safe to let the platform open a file: not all of them notice sector numbers that run in
// circles or lead out of the tables, or streams that claim more than their chains hold, and they then hang
// or end the process. A file that cannot be read, or is none of these, is for the platform to judge and
// counts as safe. A file that was merely cut short is safe: what is left of it can be read. Any other is
// STG_E_DOCFILECORRUPT.
//
// Of a file that is to be written to, odd marks become the usual ones, which changes nothing of what it says:
// nobody else writes meanwhile, and when a mark also lies in something that it would change the file is left
// as it is and is not safe. STG_E_ACCESSDENIED when marks stay odd because others have the file, or it cannot
// be written to.
HRESULT make_tables_safe(const wchar_t* path, bool writable);

} // namespace qzr
