// Object records: of a registered class, of unknown ones, read and stepped over.
#include "fuzz/record_steps.h"
#include "qzobject.h"
#include "support/hex.h"

#include <windows.h>

extern "C" __declspec(dllexport) int TestNote(IQZUnknown*, const std::type_info& iid, IQZUnknown** out) {
    return test::PersistentNote::create(iid, out);
}

namespace {

void run(const std::string& input) {
    static const int registered = RegisterObject("TestNote", GetModuleHandleW(nullptr));
    fuzz::require(registered == 1, "the class is not registered");
    fuzz::read_records(input, {fuzz::Step::object, fuzz::Step::skip_object});
}

std::vector<std::string> seeds() {
    const std::string script = test::from_hex("0000000000000000"), mixed = test::from_hex("0001000100010001");
    const std::string note = test::from_hex("'TestNote' 00 04000000 03 'abc'");
    const std::string unknown = test::from_hex("'NoSuchClass' 00 05000000 dead000aff");
    return {script + note, script + unknown, script + test::from_hex("00"),
            mixed + note + unknown + note + unknown};
}

std::vector<std::string> pieces() {
    return {"TestNote",
            test::from_hex("'TestNote' 00"),
            test::from_hex("'NoSuchClass' 00"),
            test::from_hex("'TestNote' 00 04000000 03 'abc'"),
            test::from_hex("00"),
            test::from_hex("0a"),
            test::from_hex("ffffffff"),
            test::from_hex("ffffff7f"),
            test::from_hex("00000080"),
            std::string(260, 'n')};
}

} // namespace

const fuzz::Target fuzz::kObject{.name = "object", .run = run, .seeds = seeds, .pieces = pieces};
