// A program as clients of the library write it, built in each language version they use. It returns the
// number of expectations that did not come true.
#include "qzcore.h"
#include "qzref.h"

#include "expect.h"

#include <cstdio>

namespace {

int failures = 0;

void use_variants() {
    CQZVariant value("2.5");
    expect(value.ChangeType(QZVT_DOUBLE) == 1 && static_cast<double>(value) == 2.5, "text becomes a number");
    value = tagRECT{1, 2, 3, 4};
    const CQZVariant copy(value);
    expect(value == copy, "a copy is equal");
    bool same = value == static_cast<const tagQZVARIANT&>(copy);
    same = same && value == static_cast<const tagQZVARIANT*>(&copy);
    expect(same, "records compare as well");
    int field = 0;
    expect(CQZVariant(7).BindToValue(QZVT_INT, &field) == 1 && field == 7, "a value goes into a field");
    const QZBlob blob(16), blob_copy(blob);
    expect(blob == blob_copy, "blobs compare");
}

} // namespace

void expect(bool ok, const char* what) {
    if (ok) return;
    ++failures;
    std::printf("failed: %s\n", what);
}

int main() {
    use_variants();
    use_texts();
    use_values();
    use_trees();
    use_ranges();
    use_files();
    use_progress();
    if (failures == 0) std::puts("every expectation came true");
    return failures;
}
