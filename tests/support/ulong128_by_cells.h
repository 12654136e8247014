#ifndef ULONG128_BY_CELLS_H
#define ULONG128_BY_CELLS_H

/// @file
/// The rules of BIG_ULONG128, slow and cell by cell: what its results and its errors are checked
/// against.

#include <array>
#include <optional>
#include <string>

namespace by_cells {

/// A length and four cells. A cell without a number is one that no rule determines.
struct VALUE {
    int length;
    std::array<std::optional<unsigned int>, 4> cells;
};

/// The internal error that a rule reports, thrown.
struct REPORT {
    std::string text;
};

VALUE zero();
VALUE of_word(unsigned int value);
VALUE of_int(int value);
VALUE of_two_words(unsigned long long value);
VALUE copy(VALUE const& other);

/// Assignment: only the cells that are in use are copied.
void assign(VALUE& to, VALUE const& from);
void assign_word(VALUE& to, unsigned int value);
void assign_two_words(VALUE& to, unsigned long long value);

bool equal(VALUE const& a, VALUE const& b);
bool greater(VALUE const& a, VALUE const& b);

void partial_add(VALUE& to, int shift, VALUE other);
VALUE sum(VALUE const& a, VALUE const& b);
VALUE difference(VALUE const& a, VALUE const& b);
VALUE product(VALUE const& a, VALUE const& b);
VALUE quotient_by_word(VALUE const& a, unsigned int divisor);
VALUE quotient(VALUE const& a, VALUE const& divisor);
VALUE remainder(VALUE const& a, VALUE const& divisor);

} // namespace by_cells

#endif
