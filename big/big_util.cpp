#include "big_frame.h"

#include "big_sys.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <utility>

#define BIG_SOURCE_PATH "big/big_util"

static MEM_INITIALIZER s_mem_initializer("BIG");

// ------------------------------------------------------------------------------------------------
// Common divisors
// ------------------------------------------------------------------------------------------------
//
// Each algorithm is written once, for the unsigned integers of the machine. The signed forms bring
// magnitudes to it, the 128-bit forms the machine's own 128-bit integer.

namespace {

using ULONG64 = unsigned long long;
__extension__ using UINT128 = unsigned __int128;

/// Subtracts the smaller from the larger until both are equal, which one 0 never becomes.
template <typename UNSIGNED>
UNSIGNED gcd_by_subtraction(UNSIGNED a, UNSIGNED b) {
    while (a != b) {
        if (b >= a)
            b -= a;
        else
            a -= b;
    }
    return a;
}

/// Replaces the pair by the smaller and the remainder until that is 0.
template <typename UNSIGNED>
UNSIGNED gcd_by_remainders(UNSIGNED a, UNSIGNED b) {
    while (b != 0)
        a = std::exchange(b, a % b);
    return a;
}

/// The zero bits below the lowest one bit of a number other than 0.
template <typename UNSIGNED>
int trailing_zeros(UNSIGNED value) {
    if constexpr (sizeof(UNSIGNED) > sizeof(ULONG64)) {
        auto const low = static_cast<ULONG64>(value);
        return low != 0 ? std::countr_zero(low)
                        : 64 + std::countr_zero(static_cast<ULONG64>(value >> 64));
    } else {
        return std::countr_zero(value);
    }
}

/// Replaces the larger of two odd numbers by its difference to the smaller, made odd again by as
/// many halvings at once as it has trailing zeros, until both are equal. The halvings that both
/// numbers allow at first are undone at the end.
template <typename UNSIGNED>
UNSIGNED gcd_by_halving(UNSIGNED a, UNSIGNED b) {
    if (a == 0 || b == 0)
        return a | b;
    int const common_halvings = trailing_zeros(a | b);
    a >>= trailing_zeros(a);
    b >>= trailing_zeros(b);
    while (a != b) {
        if constexpr (sizeof(UNSIGNED) > sizeof(ULONG64))
            if ((a | b) >> 64 == 0)
                return UNSIGNED{gcd_by_halving(static_cast<ULONG64>(a), static_cast<ULONG64>(b))}
                       << common_halvings;
        // b - a has the same trailing zeros, so that their count does not wait for the comparison,
        // and nothing here is a branch.
        UNSIGNED const difference = a - b;
        int const halvings = trailing_zeros(difference);
        bool const b_is_larger = a < b;
        b = b_is_larger ? a : b;
        a = (b_is_larger ? 0 - difference : difference) >> halvings;
    }
    return a << common_halvings;
}

/// The magnitude of a signed number; that of -2^63 is 2^63.
ULONG64 magnitude(long long value) {
    auto const bits = static_cast<ULONG64>(value);
    return value < 0 ? 0 - bits : bits;
}

UINT128 to_machine(BIG_ULONG128& value) {
    return UINT128{value.get_high_qword()} << 64 | value.get_low_qword();
}

BIG_ULONG128 from_machine(UINT128 value) {
    BIG_ULONG128 result(static_cast<ULONG64>(value));
    if (auto const high = static_cast<ULONG64>(value >> 64); high != 0)
        result.partial_add(2, BIG_ULONG128(high)); // two cells up: times 2^64
    return result;
}

/// The divisor of two 128-bit operands of which at least one is erased: an operand of 0 gives the
/// other one and equal operands give that operand, as ever. Anything else is the internal error
/// "Underflow" of the subtraction, in which an erased value is less than every number.
BIG_ULONG128 gcd_with_erased(BIG_ULONG128& a, BIG_ULONG128& b) {
    BIG_ULONG128 const zero;
    if (a == zero || a == b)
        return b;
    if (b == zero)
        return a;
    return a.is_defined() ? b - a : a - b;
}

/// An algorithm on two 128-bit operands.
template <UINT128 GCD(UINT128, UINT128)>
BIG_ULONG128 gcd_of_wide(BIG_ULONG128& a, BIG_ULONG128& b) {
    if (!a.is_defined() || !b.is_defined())
        return gcd_with_erased(a, b);
    return from_machine(GCD(to_machine(a), to_machine(b)));
}

} // namespace

unsigned int big_gcd_additive(unsigned int a, unsigned int b) {
    return gcd_by_subtraction(a, b);
}

long long big_gcd_additive(long long a, long long b) {
    return static_cast<long long>(gcd_by_subtraction(magnitude(a), magnitude(b)));
}

BIG_ULONG128 big_gcd_additive(BIG_ULONG128 a, BIG_ULONG128 b) {
    return gcd_of_wide<gcd_by_subtraction>(a, b);
}

unsigned int big_gcd_modulo(unsigned int a, unsigned int b) {
    return gcd_by_remainders(a, b);
}

long long big_gcd_modulo(long long a, long long b) {
    return static_cast<long long>(gcd_by_remainders(magnitude(a), magnitude(b)));
}

BIG_ULONG128 big_gcd_modulo(BIG_ULONG128 a, BIG_ULONG128 b) {
    return gcd_of_wide<gcd_by_remainders>(a, b);
}

unsigned int big_gcd_binary(unsigned int a, unsigned int b) {
    return gcd_by_halving(a, b);
}

long long big_gcd_binary(long long a, long long b) {
    return static_cast<long long>(gcd_by_halving(magnitude(a), magnitude(b)));
}

BIG_ULONG128 big_gcd_binary(BIG_ULONG128 a, BIG_ULONG128 b) {
    return gcd_of_wide<gcd_by_halving>(a, b);
}

void big_suppress_gcd(long long& numerator, long long& denominator) {
    long long n = numerator; // copies: both may be one object
    long long d = denominator;
    if (n < 0 && d < 0) {
        n = static_cast<long long>(magnitude(n)); // -2^63 stays what it is
        d = static_cast<long long>(magnitude(d));
    }
    long long const divisor = big_gcd_modulo(n, d);
    if (divisor == 0)
        return;
    numerator = n / divisor;
    denominator = d / divisor;
}

// ------------------------------------------------------------------------------------------------
// Timescale delays and radix formatting of 64-bit values
// ------------------------------------------------------------------------------------------------

std::string big_delay_in_current_timescale(int delay, BIG_TIME default_timescale,
                                           BIG_TIME current_timescale) {
    BIG_REQUIRE(!default_timescale.is_negative());
    BIG_REQUIRE(!current_timescale.is_negative());
    BIG_REQUIRE(delay > 0);
    long long const default_ts = default_timescale.get_storage_number();
    long long const cur_ts = current_timescale.get_storage_number();
    BIG_REQUIRE(cur_ts != 0);
    // The order of the operations decides the last digits.
    double const delay_in_current =
        static_cast<double>(delay) / static_cast<double>(cur_ts) * static_cast<double>(default_ts);

    constexpr int DECIMAL_PLACES = 9;
    char text[40]; // 29 digits (2^31 x 2^63), a point and 9 decimal places are 39 characters
    char* end = std::to_chars(text, text + sizeof text, delay_in_current, std::chars_format::fixed,
                              DECIMAL_PLACES)
                    .ptr;
    while (end[-1] == '0')
        --end;
    if (end[-1] == '.')
        --end;
    return std::string(text, end);
}

namespace {

/// The flags and the field width of a printf conversion.
struct FIELD {
    bool left;      ///< '-': pads on the right, with blanks
    bool plus;      ///< '+': signed numbers have a sign
    bool blank;     ///< ' ': or else a blank in its place
    bool alternate; ///< '#': octal and hexadecimal numbers tell their base
    bool zero;      ///< '0': pads with zeros after sign and base
    std::size_t width;
};

/// The widest field; also the longest number, 22 octal digits and the zero that tells the base.
constexpr std::size_t MAX_FIELD_WIDTH = 23;

/// Reads any of the flags "-+ #0" and then a width. Anything else is refused before it could reach
/// a format.
bool read_field(std::string_view text, FIELD& field) {
    std::size_t const flag_count = std::min(text.find_first_not_of("-+ #0"), text.size());
    std::string_view const flags = text.substr(0, flag_count);
    auto const has = [flags](char flag) { return flags.find(flag) != std::string_view::npos; };
    field = {has('-'), has('+'), has(' '), has('#'), has('0'), 0};
    if (flag_count == text.size())
        return true;
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data() + flag_count, end, field.width);
    return error == std::errc() && stop == end && field.width <= MAX_FIELD_WIDTH;
}

/// How a radix writes a number.
struct CONVERSION {
    int base;
    std::string_view alternate_prefix; ///< tells the base of a number other than 0
};

constexpr CONVERSION CONVERSIONS[] = {
    {10, ""},   // BIG_64_SIGNED_DEC
    {10, ""},   // BIG_64_UNSIGNED_DEC
    {8, "0"},   // BIG_64_OCT
    {16, "0x"}, // BIG_64_HEX_LOWER
    {16, "0X"}, // BIG_64_HEX_UPPER
};
static_assert(std::size(CONVERSIONS) == BIG_64_HEX_UPPER + 1);

/// What stands in front of the digits.
std::string_view prefix_of(long long value, BIG_64_RADIX radix, FIELD const& field) {
    if (radix == BIG_64_SIGNED_DEC)
        return value < 0 ? "-" : field.plus ? "+" : field.blank ? " " : "";
    return field.alternate && value != 0 ? CONVERSIONS[radix].alternate_prefix : "";
}

/// Writes the digits into a buffer of MAX_FIELD_WIDTH characters.
std::string_view digits_of(long long value, BIG_64_RADIX radix, char* buffer) {
    ULONG64 const number =
        radix == BIG_64_SIGNED_DEC ? magnitude(value) : static_cast<ULONG64>(value);
    char* const end =
        std::to_chars(buffer, buffer + MAX_FIELD_WIDTH, number, CONVERSIONS[radix].base).ptr;
    if (radix == BIG_64_HEX_UPPER)
        std::transform(buffer, end, buffer,
                       [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    return {buffer, end};
}

} // namespace

std::string* big_64_to_string(long long value, std::string const& flags, BIG_64_RADIX radix,
                              std::string* stl_str) {
    BIG_REQUIRE(stl_str != NULL);
    FIELD field;
    if (!read_field(flags, field))
        BIG_FAIL("flags");
    if (radix > BIG_64_HEX_UPPER)
        radix = BIG_64_SIGNED_DEC;

    char buffer[MAX_FIELD_WIDTH];
    std::string_view const digits = digits_of(value, radix, buffer);
    std::string_view const prefix = prefix_of(value, radix, field);
    std::size_t const length = prefix.size() + digits.size();
    std::size_t const padding = field.width > length ? field.width - length : 0;

    char text[MAX_FIELD_WIDTH];
    char* end = text;
    if (!field.left && !field.zero)
        end = std::fill_n(end, padding, ' ');
    end = std::copy(prefix.begin(), prefix.end(), end);
    if (!field.left && field.zero)
        end = std::fill_n(end, padding, '0');
    end = std::copy(digits.begin(), digits.end(), end);
    if (field.left)
        end = std::fill_n(end, padding, ' ');
    stl_str->assign(text, end);
    return stl_str;
}

std::string big_64_to_string(long long value, std::string const& flags, BIG_64_RADIX radix) {
    std::string text;
    big_64_to_string(value, flags, radix, &text);
    return text;
}
