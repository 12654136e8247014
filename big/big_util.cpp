// Numbers and units as text, and the arithmetic that tools share.

#include "big_frame.h"

#include "big_sys.h"
#include "big_text.h"
#include "big_unit_names.h"
#include "big_units.h"
#include "gen_sys.h"
#include "ktl_sys.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <string_view>
#include <utility>
#include <vector>

#define BIG_SOURCE_PATH "big/big_util"

static MEM_INITIALIZER s_mem_initializer("BIG");

// ------------------------------------------------------------------------------------------------
// Common divisors
// ------------------------------------------------------------------------------------------------
//
// Each algorithm is written once, for the unsigned integers of the machine. The signed forms bring
// magnitudes to it, the 128-bit forms the machine's own 128-bit integer.
//
// The forms by remainders and by halving have the same results, and one algorithm that takes the
// best of both: a remainder where the operands differ much in size, which halving would bring down
// bit by bit, and halving where they do not, since a division takes as long as several halvings.

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

/// The zero bits below the lowest one bit of a number other than 0.
int trailing_zeros(ULONG64 value) {
    return __builtin_ctzll(value);
}
int trailing_zeros(UINT128 value) {
    auto const low = static_cast<ULONG64>(value);
    return low != 0 ? trailing_zeros(low) : 64 + trailing_zeros(static_cast<ULONG64>(value >> 64));
}

// One turn of halving: the larger of two numbers gives way to the difference, which comes to be a,
// and the smaller to be b. Which one is larger is as good as random, so that a branch would be
// guessed wrong every other time. Compilers make one all the same, some at one level of
// optimization and some at another, and so the choice is spelled out as conditional moves.

void subtract_smaller(ULONG64& a, ULONG64& b) {
    ULONG64 difference = a - b;
    ULONG64 const negated = b - a;
#if defined(__x86_64__) && !defined(BIG_PORTABLE)
    __asm__("cmpq %[b], %[a]\n\t"
            "cmovbq %[negated], %[difference]\n\t"
            "cmovbq %[a], %[b]"
            : [difference] "+&r"(difference), [b] "+&r"(b)
            : [a] "r"(a), [negated] "r"(negated)
            : "cc");
#else
    difference = a < b ? negated : difference;
    b = a < b ? a : b;
#endif
    a = difference;
}

ULONG64 low_word(UINT128 value) {
    return static_cast<ULONG64>(value);
}
ULONG64 high_word(UINT128 value) {
    return static_cast<ULONG64>(value >> 64);
}

void subtract_smaller(UINT128& a, UINT128& b) {
    UINT128 const difference = a - b;
    UINT128 const negated = b - a;
#if defined(__x86_64__) && !defined(BIG_PORTABLE)
    ULONG64 low = low_word(difference);
    ULONG64 high = high_word(difference);
    ULONG64 b_low = low_word(b);
    ULONG64 b_high = high_word(b);
    ULONG64 borrow = high_word(a);
    __asm__("cmpq %[b_low], %[a_low]\n\t"
            "sbbq %[b_high], %[borrow]\n\t"
            "cmovbq %[negated_low], %[low]\n\t"
            "cmovbq %[negated_high], %[high]\n\t"
            "cmovbq %[a_low], %[b_low]\n\t"
            "cmovbq %[a_high], %[b_high]"
            : [low] "+&r"(low), [high] "+&r"(high), [b_low] "+&r"(b_low), [b_high] "+&r"(b_high),
              [borrow] "+&r"(borrow)
            : [a_low] "r"(low_word(a)), [a_high] "r"(high_word(a)),
              [negated_low] "r"(low_word(negated)), [negated_high] "r"(high_word(negated))
            : "cc");
    a = UINT128{high} << 64 | low;
    b = UINT128{b_high} << 64 | b_low;
#else
    bool const is_less = a < b;
    b = is_less ? a : b;
    a = is_less ? negated : difference;
#endif
}

// The greatest common divisor of two odd numbers (Stein, "Computational problems associated with
// Racah algebra", 1967): the larger is replaced by its difference to the smaller, made odd again by
// as many halvings at once as it has trailing zeros, until both are equal. The trailing zeros are
// those of the difference either way round, so that their count need not wait for the choice.

ULONG64 gcd_of_odd(ULONG64 a, ULONG64 b) {
    while (a != b) {
        int const halvings = trailing_zeros(a - b);
        subtract_smaller(a, b);
        a >>= halvings;
    }
    return b;
}

UINT128 gcd_of_odd(UINT128 a, UINT128 b) {
    while ((a | b) >> 64 != 0) {
        ULONG64 const low_difference = low_word(a - b);
        subtract_smaller(a, b);
        if (low_difference == 0) [[unlikely]] {
            if (a == 0)
                return b;
            a = high_word(a) >> trailing_zeros(high_word(a));
            continue;
        }
        // Word by word: the language's shift would ask whether it is one by 64 bits or more.
        int const halvings = trailing_zeros(low_difference);
        a = UINT128{high_word(a) >> halvings} << 64
            | (low_word(a) >> halvings | high_word(a) << 1 << (63 - halvings));
    }
    return gcd_of_odd(low_word(a), low_word(b));
}

/// The greatest common divisor; an operand of 0 gives the other one.
template <typename UNSIGNED>
UNSIGNED greatest_common_divisor(UNSIGNED a, UNSIGNED b) {
    constexpr int much_larger = 12; // bits from which on a division is quicker
    if constexpr (sizeof(UNSIGNED) > sizeof(ULONG64))
        if ((a | b) >> 64 == 0)
            return greatest_common_divisor(low_word(a), low_word(b));
    if (a < b)
        std::swap(a, b);
    if (b == 0)
        return a;
    if (a >> much_larger >= b) {
        a %= b;
        if (a == 0)
            return b;
    }
    int const common_halvings = trailing_zeros(a | b);
    return gcd_of_odd(a >> trailing_zeros(a), b >> trailing_zeros(b)) << common_halvings;
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
    return static_cast<long long>(gcd_by_subtraction(big_magnitude(a), big_magnitude(b)));
}

BIG_ULONG128 big_gcd_additive(BIG_ULONG128 a, BIG_ULONG128 b) {
    return gcd_of_wide<gcd_by_subtraction>(a, b);
}

unsigned int big_gcd_modulo(unsigned int a, unsigned int b) {
    return static_cast<unsigned int>(greatest_common_divisor<ULONG64>(a, b));
}

long long big_gcd_modulo(long long a, long long b) {
    return static_cast<long long>(greatest_common_divisor(big_magnitude(a), big_magnitude(b)));
}

BIG_ULONG128 big_gcd_modulo(BIG_ULONG128 a, BIG_ULONG128 b) {
    return gcd_of_wide<greatest_common_divisor>(a, b);
}

unsigned int big_gcd_binary(unsigned int a, unsigned int b) {
    return static_cast<unsigned int>(greatest_common_divisor<ULONG64>(a, b));
}

long long big_gcd_binary(long long a, long long b) {
    return static_cast<long long>(greatest_common_divisor(big_magnitude(a), big_magnitude(b)));
}

BIG_ULONG128 big_gcd_binary(BIG_ULONG128 a, BIG_ULONG128 b) {
    return gcd_of_wide<greatest_common_divisor>(a, b);
}

void big_suppress_gcd(long long& numerator, long long& denominator) {
    long long n = numerator; // copies: both may be one object
    long long d = denominator;
    if (n < 0 && d < 0) {
        n = static_cast<long long>(big_magnitude(n)); // -2^63 stays what it is
        d = static_cast<long long>(big_magnitude(d));
    }
    long long const divisor = big_gcd_modulo(n, d);
    if (divisor == 0)
        return;
    numerator = n / divisor;
    denominator = d / divisor;
}

// ------------------------------------------------------------------------------------------------
// Decimal numbers held as text
// ------------------------------------------------------------------------------------------------
//
//     number = [sign] digits ["." fraction run] [whatever follows, such as a unit]
//
// The point is the first "." of the text, and the fraction run the digits directly behind it.

namespace {

/// The place of the point and the end of the fraction run.
struct FRACTION_RUN {
    std::size_t point; ///< npos when there is none
    std::size_t end;   ///< one past the last digit of the run

    bool has_more_digits_than(std::size_t precision) const {
        return point != std::string::npos && end - point - 1 > precision;
    }
};

FRACTION_RUN find_fraction_run(std::string const& s) {
    std::size_t const point = s.find('.');
    if (point == std::string::npos)
        return {point, point};
    std::size_t const end = s.find_first_not_of("0123456789", point + 1);
    return {point, std::min(end, s.size())};
}

/// Whether cutting to `precision` digits would drop a first digit of 5 or more. The digits behind
/// that one do not matter.
bool big_need_rounding(std::string const* s, unsigned int precision) {
    FRACTION_RUN const run = find_fraction_run(*s);
    return run.has_more_digits_than(precision) && (*s)[run.point + precision + 1] > '4';
}

} // namespace

void big_trim_begin_blankspace(std::string& s) {
    s.erase(s.begin(), std::find_if_not(s.begin(), s.end(), big_is_blank));
}

void big_trim_end_blankspace(std::string& s) {
    s.erase(std::find_if_not(s.rbegin(), s.rend(), big_is_blank).base(), s.end());
}

void big_truncate_to_precision(std::string* s, unsigned int precision) {
    FRACTION_RUN const run = find_fraction_run(*s);
    if (!run.has_more_digits_than(precision))
        return;
    std::size_t const cut = precision == 0 ? run.point : run.point + precision + 1;
    s->erase(cut, run.end - cut);
}

void big_trim_end_zero(std::string* s) {
    std::size_t const point = s->find('.');
    if (point == std::string::npos)
        return;
    std::size_t last = s->size() - 1;
    while (last > point + 1 && (*s)[last] == '0')
        --last;
    s->erase(last + 1);
}

long long big_atoi64(std::string const& s) {
    if (s.size() > 19)
        BIG_FAIL("The input time is too big. It is over 64 bits.");
    unsigned long long sum = 0; // wraps above 2^64, as callers rely on
    for (std::size_t i = 0; i < s.size() && s[i] != '.'; ++i) {
        // The power counts from the end of the whole text, a point included.
        long long const power = BIG_TIME::get_power_table(s.size() - 1 - i);
        sum += static_cast<unsigned long long>(s[i] - '0') * static_cast<unsigned long long>(power);
    }
    return static_cast<long long>(sum);
}

void big_rounding(std::string* str) {
    BIG_REQUIRE(!str->empty());
    std::string& s = *str;
    big_trim_begin_blankspace(s);
    big_trim_end_blankspace(s);
    if (s.empty())
        return;
    std::size_t grown = s.find_last_not_of("9.-+"); // the digit that takes the carry
    if (grown == std::string::npos) {
        grown = s.front() == '+' || s.front() == '-' ? 1 : 0;
        s.insert(grown, 1, '1');
    } else {
        ++s[grown];
    }
    std::replace_if(s.begin() + static_cast<std::ptrdiff_t>(grown) + 1, s.end(), big_is_digit, '0');
}

void big_round_to_precision(std::string* s, unsigned int precision, bool trim_trailing_zeros) {
    bool const rounds_up = big_need_rounding(s, precision);
    big_truncate_to_precision(s, precision);
    if (rounds_up)
        big_rounding(s);
    if (trim_trailing_zeros)
        big_trim_end_zero(s);
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

    constexpr int decimal_places = 9;
    char text[40]; // 29 digits (2^31 x 2^63), a point and 9 decimal places are 39 characters
    char* end = std::to_chars(text, text + sizeof text, delay_in_current, std::chars_format::fixed,
                              decimal_places)
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
constexpr std::size_t widest_field = 23;

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
    return error == std::errc() && stop == end && field.width <= widest_field;
}

/// How a radix writes a number.
struct CONVERSION {
    int base;
    std::string_view alternate_prefix; ///< tells the base of a number other than 0
};

constexpr CONVERSION conversions[] = {
    {10, ""},   // BIG_64_SIGNED_DEC
    {10, ""},   // BIG_64_UNSIGNED_DEC
    {8, "0"},   // BIG_64_OCT
    {16, "0x"}, // BIG_64_HEX_LOWER
    {16, "0X"}, // BIG_64_HEX_UPPER
};
static_assert(std::size(conversions) == BIG_64_HEX_UPPER + 1);

/// What stands in front of the digits.
std::string_view prefix_of(long long value, BIG_64_RADIX radix, FIELD const& field) {
    if (radix == BIG_64_SIGNED_DEC)
        return value < 0 ? "-" : field.plus ? "+" : field.blank ? " " : "";
    return field.alternate && value != 0 ? conversions[radix].alternate_prefix : "";
}

/// Writes the digits into a buffer of widest_field characters.
std::string_view digits_of(long long value, BIG_64_RADIX radix, char* buffer) {
    ULONG64 const number =
        radix == BIG_64_SIGNED_DEC ? big_magnitude(value) : static_cast<ULONG64>(value);
    char* const end =
        std::to_chars(buffer, buffer + widest_field, number, conversions[radix].base).ptr;
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

    char buffer[widest_field];
    std::string_view const digits = digits_of(value, radix, buffer);
    std::string_view const prefix = prefix_of(value, radix, field);
    std::size_t const length = prefix.size() + digits.size();
    std::size_t const padding = field.width > length ? field.width - length : 0;

    char text[widest_field];
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

// ------------------------------------------------------------------------------------------------
// Tokens and numbers of a time text
// ------------------------------------------------------------------------------------------------

namespace {

/// The tokens of a text: its runs of characters other than space, tab and line feed.
std::vector<std::string> tokens_of(std::string const& text) {
    std::string const none;
    KTL_TOKENIZER tokenizer(" \t\n", false, none, none, none, false);
    std::vector<std::string> tokens;
    tokenizer.tokenize(text, tokens);
    return tokens;
}

#define ENUMERATOR(unit, text, power) BIG_TIME::unit,
/// The unit that stands at each index of the unit strings.
constexpr int big_time_unit_array[] = {BIG_UNIT_ROWS(ENUMERATOR)};
#undef ENUMERATOR

} // namespace

bool big_is_no_token(std::string const& s) {
    return tokens_of(s).empty();
}

bool big_is_one_token(std::string& s) {
    std::vector<std::string> tokens = tokens_of(s);
    s.clear();
    if (tokens.size() != 1)
        return false;
    s.swap(tokens.front());
    return true;
}

BIG_TIME::TIME_UNIT big_get_time_unit(std::string const& s) {
    if (BIG_TIME::TIME_UNIT const unit = big_plain_unit(s); unit != BIG_TIME::MAX_TIME_UNIT)
        return unit;
    if (big_is_no_token(s))
        return BIG_TIME::UNIT_NONE;
    std::string token = s;
    if (!big_is_one_token(token))
        return BIG_TIME::MAX_TIME_UNIT;
    for (int unit = BIG_TIME::UNIT_FS; unit < BIG_TIME::MAX_TIME_UNIT; ++unit)
        if (gen_stricmp(token.c_str(), BIG_TIME::get_unit_name(unit)) == 0)
            return static_cast<BIG_TIME::TIME_UNIT>(big_time_unit_array[unit]);
    return BIG_TIME::MAX_TIME_UNIT;
}

namespace {

/// Whether a text without white space around it is
///
///     number = ["+" | "-"] digits ["." [digits]] | ["+" | "-"] "." digits | "+."
///
/// The lone "+." is let through, as callers rely on.
bool is_decimal_number(std::string const& text) {
    if (text.empty() || text == "-." || text == ".")
        return false;
    std::size_t const sign_length = text.front() == '+' || text.front() == '-' ? 1 : 0;
    return text.size() > sign_length
           && text.find_first_not_of("0123456789.", sign_length) == std::string::npos
           && std::count(text.begin(), text.end(), '.') <= 1;
}

/// Removes leading zeros, all but one digit before the point.
void strip_leading_zeros(std::string& number) {
    std::size_t const first_digit = number.find_first_of("0123456789");
    if (first_digit == std::string::npos)
        return;
    std::size_t const zeros_end =
        std::min(number.find_first_not_of('0', first_digit), number.size());
    std::size_t const point = std::min(number.find('.'), number.size());
    // Behind a point that comes first every zero goes, so that .05 becomes .5: a loss of value on
    // which callers rely. A sign in front prevents it.
    std::size_t const removed_at_most = point == 0 ? number.size() : point - first_digit - 1;
    bool const has_digit_before_point = point == 0 || point > first_digit;
    if (has_digit_before_point)
        number.erase(first_digit, std::min(zeros_end - first_digit, removed_at_most));
}

} // namespace

std::string big_get_time_value(std::string const& s) {
    std::string number = gen_remove_leading_and_trailing_white_spaces(s);
    if (!is_decimal_number(number)) {
        mem_msg_vdebug("Illegal input \"%s\" in big_get_time_value()", s.c_str());
        return std::string();
    }
    big_trim_end_zero(&number);
    strip_leading_zeros(number);
    return number;
}
