// A program outside the tree, on the standalone platform.

#include <big_fraction_sys.h>
#include <big_sys.h>
#include <pdb_sys.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace {

template <typename VALUE, typename EXPECTED>
void expect(char const* what, VALUE const& value, EXPECTED const& expected) {
    if (value == expected)
        return;
    std::cerr << what << " is \"" << value << "\" instead of \"" << expected << "\"\n";
    std::exit(EXIT_FAILURE);
}

/// The text of the internal error that a statement reports through the library's boundary.
template <typename STATEMENT>
std::string internal_error_of(STATEMENT statement) {
    try {
        statement();
    } catch (ERR_INTERNAL_ERROR const& error) {
        return error.text();
    }
    return "none";
}

} // namespace

int main() {
    BIG_TIME const delay("2.5 ns", false);
    expect("2.5 ns in picoseconds", delay.to_string(BIG_TIME::UNIT_PS, 3, true), "2500 ps");

    BIG_ULONG128 const wide = BIG_ULONG128(1ull << 63) * BIG_ULONG128(4u);
    expect("2^63 times 4", wide.to_string(), "36893488147419103232");
    expect("a division by zero", internal_error_of([&] { wide / 0u; }), "Division by Zero");

    std::string bits;
    big_radix_conversion("A5", &bits, BIG_HEX, BIG_BIN, 8);
    expect("hexadecimal A5", bits, "10100101");

    BIG_FRACTION const third = BIG_FRACTION(2, 6) / BIG_FRACTION(1, 1);
    expect("the denominator of 2/6", third.get_denominator(), 3);

    std::string sizes;
    for (PDB_THUNK_INFO const* const record : pdb_registered_classes())
        sizes += std::to_string(record->m_size) + " ";
    expect("the registered classes' sizes", sizes, "16 8 24 ");
    return EXIT_SUCCESS;
}
