// Variants: one value of a small set of types.
#include "guide.h"

#include "qzcore.h"

#include <cstdio>

namespace {

// The library's own conversions, by type code.
void print_as_text(const char* what, const tagQZVARIANT& value) {
    const auto text = qz::convert<std::string>(value);
    std::printf("%s: type %d, %s\n", what, value.vt, text ? ('"' + *text + '"').c_str() : "has no text");
}

} // namespace

void variants(const Argument&) {
    CQZVariant value(42);
    print_as_text("an int", value);
    value = 2.5;
    print_as_text("a double", value);
    value = qz::to_variant(true); // CQZVariant(true) would be an int
    print_as_text("a boolean", value);
    value = tagRECT{10, 10, 40, 30};
    print_as_text("a rectangle", value);

    // In place, where the type is not known; the answer tells whether there is such a conversion.
    value = "12 mm";
    std::printf("\"12 mm\" as a double: %d, ", value.ChangeType(QZVT_DOUBLE));
    std::printf("%g\n", static_cast<double>(value)); // a cast reads the member, it converts nothing

    // Without loss, or not at all.
    for (const CQZVariant& number : {CQZVariant(300), CQZVariant(7L), CQZVariant(2.5), CQZVariant("7")}) {
        const auto byte = qz::from_variant<unsigned char>(number);
        std::printf("a variant of type %d is %s\n", number.vt, byte ? "a byte" : "no byte");
    }

    // A variant owns its text, its bytes, and one reference of its object.
    const auto tree = qz::new_tree();
    {
        const CQZVariant holder(tree.Get());
        const CQZVariant copy(holder);
        std::printf("two variants and we hold the tree: %u references\n", tree->AddRef() - 1);
        tree->Release();
    }
    tree->AddRef();
    std::printf("they are gone: %u reference\n", tree->Release());
}
