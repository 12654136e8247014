#include "big_frame.h"

#define BIG_SOURCE_PATH "big/big_ulong128"

static MEM_INITIALIZER s_mem_initializer("BIG");

// A value is a length and four cells of 32 bits, least significant first. The length says how many
// cells are in use; what lies above them is left over from earlier values and is no digit.
//
//                  m_length   m_cells[0]   [1]          [2]          [3]
//     0            1          0            -            -            -
//     2^32 + 5     2          5            1            -            -
//     2^64 - 1     2          4294967295   4294967295   -            -
//     10^38        4          0            160047680    1518781562   1262177448
//     erased       0          -            -            -            -
//
// The highest cell in use is not 0, except for zero itself: comparisons look at the lengths first
// and rely on it.
//
// Sums, differences, products and comparisons are inline in big_sys.h, on the machine's 128-bit
// integer. Here are the rules cell by cell, which decide the error to report when a result does not
// fit, and what takes longer: division and text.

#include "big_digits.h"
#include "big_ulong128_internal.h"

#include <string_view>

BIG_ULONG128_DECIMAL_TABLE BIG_ULONG128::s_table;

namespace {

__extension__ typedef unsigned __int128 WIDE;

} // namespace

// ------------------------------------------------------------------------------------------------
// Construction
// ------------------------------------------------------------------------------------------------

BIG_ULONG128::BIG_ULONG128(int value)
    : BIG_ULONG128(value < 0 ? 0u : static_cast<unsigned int>(value)) {
    if (value < 0)
        mem_msg_vdebug("Error: Negative number in BIG_ULONG128::BIG_ULONG128(int) ");
}

BIG_ULONG128 abs_value(long long value) {
    unsigned long long const bits = static_cast<unsigned long long>(value);
    return BIG_ULONG128(value < 0 ? 0 - bits : bits);
}

// ------------------------------------------------------------------------------------------------
// Sum, difference and product
// ------------------------------------------------------------------------------------------------

void BIG_ULONG128::partial_add(int shift, BIG_ULONG128 const& other) {
    BIG_ULONG128 sum = *this;
    sum.add_cells(shift, other);
    *this = sum;
}

void BIG_ULONG128::add_cells(int shift, BIG_ULONG128 const& other) {
    long long const reach = static_cast<long long>(shift) + other.m_length;
    if (reach < 0 || reach > MAX_CELL)
        BIG_FAIL("Overflow");
    while (m_length < reach)
        m_cells[m_length++] = 0;

    // The carry goes all the way up, past the end of other. It is 0 or 1 between two cells.
    unsigned long long carry = 0;
    for (int place = shift; place < m_length; ++place) {
        unsigned int const i = static_cast<unsigned int>(place); // huge for a negative place
        BIG_REQUIRE(i < BIG_ULONG128::MAX_CELL);
        int const digit = place - shift;
        carry += m_cells[i];
        if (digit < other.m_length)
            carry += other.m_cells[digit];
        m_cells[i] = static_cast<unsigned int>(carry);
        carry >>= 32;
    }
    if (carry != 0) {
        BIG_REQUIRE((m_length+1) <= BIG_ULONG128::MAX_CELL);
        m_cells[m_length++] = 1;
    }
}

void BIG_ULONG128::report_underflow() {
    BIG_FAIL("Underflow");
}

BIG_ULONG128 BIG_ULONG128::multiply_by_cells(BIG_ULONG128 const& other) const {
    BIG_ULONG128 product;
    for (int j = 0; j < other.m_length; ++j) {
        for (int i = 0; i < m_length; ++i) {
            unsigned long long const cell = m_cells[i];
            product.add_cells(i + j, BIG_ULONG128(cell * other.m_cells[j]));
        }
    }
    return product;
}

// ------------------------------------------------------------------------------------------------
// Quotient and remainder
// ------------------------------------------------------------------------------------------------

namespace {

struct DIVISION {
    unsigned long long quotient;
    unsigned long long remainder;
};

/// Divides high x 2^64 + low by a divisor above `high`, so that the quotient is one word: a single
/// instruction where there is one, for which the language has no expression.
DIVISION divide_words(unsigned long long high, unsigned long long low, unsigned long long divisor) {
    DIVISION result;
#if defined(__x86_64__) && !defined(BIG_PORTABLE)
    __asm__("divq %4"
            : "=a"(result.quotient), "=d"(result.remainder)
            : "a"(low), "d"(high), "r"(divisor)
            : "cc");
#else
    WIDE const dividend = static_cast<WIDE>(high) << 64 | low;
    result.quotient = static_cast<unsigned long long>(dividend / divisor);
    result.remainder = static_cast<unsigned long long>(dividend % divisor);
#endif
    return result;
}

} // namespace

BIG_ULONG128 BIG_ULONG128::operator/(unsigned int const& divisor) const {
    return *this / BIG_ULONG128(divisor);
}

BIG_ULONG128 BIG_ULONG128::operator/(BIG_ULONG128 const& divisor) const {
    WIDE const denominator = divisor.value();
    if (denominator >> 64 != 0)
        return BIG_ULONG128(static_cast<unsigned long long>(value() / denominator));
    if (denominator == 0) // an erased divisor too, which callers do not pass
        BIG_FAIL("Division by Zero");

    WIDE const numerator = value();
    unsigned long long const high = static_cast<unsigned long long>(numerator >> 64);
    unsigned long long const low = static_cast<unsigned long long>(numerator);
    unsigned long long const word = static_cast<unsigned long long>(denominator);
    if (high < word)
        return BIG_ULONG128(divide_words(high, low, word).quotient);
    WIDE const upper = high / word;
    return of(upper << 64 | divide_words(high % word, low, word).quotient);
}

BIG_ULONG128& BIG_ULONG128::operator/=(BIG_ULONG128 const& divisor) {
    if (divisor == BIG_ULONG128())
        BIG_FAIL("Division by Zero");
    return *this = *this / divisor;
}

// The remainder is *this - quotient x divisor. An erased value has the quotient 0, and nothing can
// be subtracted from it, not even 0.
BIG_ULONG128 BIG_ULONG128::operator%(BIG_ULONG128 const& divisor) const {
    WIDE const denominator = divisor.value();
    if (denominator == 0)
        BIG_FAIL("Division by Zero");
    if (m_length == 0)
        report_underflow();
    if (denominator >> 64 != 0)
        return of(value() % denominator);

    WIDE const numerator = value();
    unsigned long long const high = static_cast<unsigned long long>(numerator >> 64);
    unsigned long long const low = static_cast<unsigned long long>(numerator);
    unsigned long long const word = static_cast<unsigned long long>(denominator);
    return BIG_ULONG128(divide_words(high < word ? high : high % word, low, word).remainder);
}

BIG_ULONG128& BIG_ULONG128::operator%=(BIG_ULONG128 const& divisor) {
    if (divisor == BIG_ULONG128())
        BIG_FAIL("Modulo by Zero");
    return *this = *this % divisor;
}

// ------------------------------------------------------------------------------------------------
// Decimal text
// ------------------------------------------------------------------------------------------------

BIG_ULONG128_DECIMAL_TABLE::BIG_ULONG128_DECIMAL_TABLE() {
    BIG_ULONG128 power(1u);
    m_powers[0] = power;
    for (int k = 1; k <= 38; ++k) {
        power = power * BIG_ULONG128(10u);
        m_powers[k] = power;
    }
}

BIG_ULONG128_DECIMAL_TABLE::~BIG_ULONG128_DECIMAL_TABLE() {}

namespace {

/// A value is written as up to three groups of 19 digits: the largest power of ten in a word.
constexpr std::size_t DIGITS_IN_GROUP = 19;
constexpr unsigned long long GROUP = 10000000000000000000ull;

struct TEXT_BUFFER {
    char m_bytes[2 * DIGITS_IN_GROUP + BIG_DIGITS_ROOM];

    char* end() { return m_bytes + sizeof m_bytes; }
};

/// The decimal digits of a number, made in a buffer. Zero has none.
std::string_view decimal_digits(WIDE value, TEXT_BUFFER& buffer) {
    if (value == 0)
        return {};
    char* group_end = buffer.end();
    while (value >> 64 != 0) {
        unsigned long long const high = static_cast<unsigned long long>(value >> 64);
        DIVISION const low_group =
            divide_words(high % GROUP, static_cast<unsigned long long>(value), GROUP);
        big_write_24_digits(group_end, low_group.remainder);
        group_end -= DIGITS_IN_GROUP; // the next group overwrites the zeros in front
        value = static_cast<WIDE>(high / GROUP) << 64 | low_group.quotient;
    }
    char const* const first = big_write_digits(group_end, static_cast<unsigned long long>(value));
    return {first, static_cast<std::size_t>(buffer.end() - first)};
}

} // namespace

// Zero and an erased value have no digit, and so an empty text. It has always been so: callers that
// want "0" supply it.
std::string* BIG_ULONG128::to_string(std::string* out) const {
    TEXT_BUFFER buffer;
    *out = decimal_digits(value(), buffer);
    return out;
}

std::string BIG_ULONG128::to_string() const {
    TEXT_BUFFER buffer;
    return std::string(decimal_digits(value(), buffer));
}
