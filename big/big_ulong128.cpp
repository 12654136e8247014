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
// Arithmetic and comparisons are inline in big_sys.h, on the machine's 128-bit integer. Here are
// the rules cell by cell, which decide the error to report when a result does not fit, and the
// text.

#include "big_digits.h"
#include "big_text.h"
#include "big_ulong128_internal.h"

BIG_ULONG128_DECIMAL_TABLE BIG_ULONG128::s_table;

namespace {

__extension__ using WIDE = unsigned __int128;

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
    return BIG_ULONG128(big_magnitude(value));
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

void BIG_ULONG128::report_division_by_zero() {
    BIG_FAIL("Division by Zero");
}

void BIG_ULONG128::report_modulo_by_zero() {
    BIG_FAIL("Modulo by Zero");
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

// A number of more than one word has up to 39 digits: at most 7, 16 and 16. The two divisions are
// multiplications by a reciprocal of 64 bits and more that is cut below the last place, so that a
// quotient may be too small by one. It is never too large, and then its remainder tells (Granlund &
// Montgomery, "Division by invariant integers using multiplication", 1994).

constexpr unsigned long long TEN_TO_16 = 10000000000000000;
constexpr WIDE TEN_TO_32 = static_cast<WIDE>(TEN_TO_16) * TEN_TO_16;

constexpr unsigned long long high_product(unsigned long long a, unsigned long long b) {
    return static_cast<unsigned long long>(static_cast<WIDE>(a) * b >> 64);
}

/// Divides by 10^32 and leaves the remainder.
unsigned int take_quotient_by_ten_to_32(WIDE& value) {
    // 2^149 / 10^32: with the upper word of the value, 2^85 times the quotient.
    constexpr auto reciprocal =
        static_cast<unsigned long long>((static_cast<WIDE>(1) << 117) / (TEN_TO_32 >> 32));
    unsigned long long quotient =
        high_product(static_cast<unsigned long long>(value >> 64), reciprocal) >> 21;
    value -= quotient * TEN_TO_32;
    if (value >= TEN_TO_32) [[unlikely]] {
        ++quotient;
        value -= TEN_TO_32;
    }
    return static_cast<unsigned int>(quotient);
}

/// Divides a number below 10^32 by 10^16 and leaves the remainder.
unsigned long long take_quotient_by_ten_to_16(WIDE& value) {
    // 2^117 / 10^16: with the value's upper 64 of 107 bits, 2^74 times the quotient.
    constexpr auto reciprocal =
        static_cast<unsigned long long>((static_cast<WIDE>(1) << 117) / TEN_TO_16);
    unsigned long long quotient =
        high_product(static_cast<unsigned long long>(value >> 43), reciprocal) >> 10;
    value -= static_cast<WIDE>(quotient) * TEN_TO_16;
    if (value >= TEN_TO_16) [[unlikely]] {
        ++quotient;
        value -= TEN_TO_16;
    }
    return quotient;
}

/// Makes the decimal digits of a number the whole content of a string. Zero has none.
void assign_digits(std::string* out, WIDE value) {
    if (value >> 64 == 0) {
        if (value == 0)
            out->clear();
        else
            big_assign_number(out, static_cast<unsigned long long>(value), false);
        return;
    }
    unsigned int const top = take_quotient_by_ten_to_32(value);
    unsigned long long const middle = take_quotient_by_ten_to_16(value);
    BIG_SIXTEEN_DIGITS const lower_digits =
        big_sixteen_digits(static_cast<unsigned long long>(value));

    if (top == 0) { // and the middle is not
        std::size_t const length = big_digit_count(middle);
        big_assign_text(out, length + 16, [&](char* to) {
            big_put_digits(to, middle, length);
            lower_digits.store(to + length);
            return length + 16;
        });
        return;
    }
    std::size_t const length = big_digit_count(top);
    big_assign_text(out, length + 32, [&](char* to) {
        big_write_last_of_eight(to, top, 8 - length);
        big_sixteen_digits(middle).store(to + length);
        lower_digits.store(to + length + 16);
        return length + 32;
    });
}

} // namespace

// Zero and an erased value have no digit, and so an empty text. It has always been so: callers that
// want "0" supply it.
std::string* BIG_ULONG128::to_string(std::string* out) const {
    assign_digits(out, value());
    return out;
}

std::string BIG_ULONG128::to_string() const {
    std::string text;
    assign_digits(&text, value());
    return text;
}
