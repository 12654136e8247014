#include "big_frame.h"

#define BIG_SOURCE_PATH "big/big_radix"

static MEM_INITIALIZER s_mem_initializer("BIG");

// Bit vectors in every radix.
//
// A conversion reads its source into binary digits, most significant first, fits these to the
// width, and writes them in the target radix:
//
//     source      radix   binary digits   width 8      hexadecimal   unsigned   ASCII
//     1F          hex     00011111        00011111     1F            31         [31]
//     -1          signed  11              11111111     FF            255        [255]
//     300         uns.    100101100       00101100     2C            44         ,
//     1z          oct     001ZZZ          00001ZZZ     X             X
//     A           ASCII   01000001        01000001     41            65         A
//
// A binary digit may be a logic value (X, Z, U, W, -, H, L), which is why digits are characters.
// Most vectors have none. The short ones among these, and those that are or become decimal, go
// through machine words (convert_number below), never becoming digits at all; but digits that fit
// their width as they are need neither.

#include "big_radix.h"

#include "big_number.h"
#include "big_radix_digits.h"
#include "gen_sys.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <numeric>
#include <string_view>

#include <locale.h>

using big_natural::make_room;
using big_natural::NUMBER;
using big_natural::SHORT_NUMBER;
using big_natural::WORD;

// ------------------------------------------------------------------------------------------------
// Tables
// ------------------------------------------------------------------------------------------------

namespace {
constexpr char HEX_DIGITS[] = "0123456789ABCDEF";
}

char const* BIG_BINMAP = "01";
char const* BIG_OCTMAP = "01234567";
char const* BIG_HEXMAP = HEX_DIGITS;
char const* BIG_SIGNED_DECMAP = "0123456789-";
char const* BIG_UNSIGNED_DECMAP = "0123456789";
char const* BIG_FRAC_FIX_POINTMAP = "0123456789-.E";

constexpr char const* const big_oct_string[9] = {"000", "001", "010", "011", "100",
                                                 "101", "110", "111", "XXX"};

constexpr char const* const big_hex_string[17] = {"0000", "0001", "0010", "0011", "0100", "0101",
                                                  "0110", "0111", "1000", "1001", "1010", "1011",
                                                  "1100", "1101", "1110", "1111", "XXXX"};

namespace {

constexpr char upper_case(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

constexpr std::size_t index_of(char c) {
    return static_cast<unsigned char>(c);
}

/// What a character is as a binary digit: a set, so that the sets of a group's digits, intersected,
/// say what they have in common. An illegal character is nothing.
enum DIGIT_KIND : unsigned short {
    LOGIC_DIGIT = 1,    ///< times 2^i, for LOGIC_VALUES[i]
    NUMBER_DIGIT = 128, ///< 0 and 1
    LEGAL_DIGIT = 256,  ///< both
};
constexpr std::string_view LOGIC_VALUES = "Z-UWHLX";

static_assert(
    [] {
        for (int c = CHAR_MIN; c <= CHAR_MAX; ++c) {
            bool const is_listed =
                LOGIC_VALUES.find(static_cast<char>(c)) != std::string_view::npos;
            if (is_listed != big_digits::is_logic_value(static_cast<char>(c)))
                return false;
        }
        return true;
    }(),
    "the list and the arithmetic are of the same logic values");

constexpr std::array<unsigned short, 256> DIGIT_KINDS = [] {
    std::array<unsigned short, 256> kinds{};
    for (std::size_t c = 0; c < kinds.size(); ++c) {
        std::size_t const i = LOGIC_VALUES.find(upper_case(static_cast<char>(c)));
        if (i != std::string_view::npos)
            kinds[c] = static_cast<unsigned short>(LEGAL_DIGIT | LOGIC_DIGIT << i);
    }
    kinds['0'] = kinds['1'] = LEGAL_DIGIT | NUMBER_DIGIT;
    return kinds;
}();

/// The digit of a group by what its binary digits have in common, unless they form a number: the
/// one logic value that all of them are, or X.
constexpr std::array<char, NUMBER_DIGIT> COMMON_VALUE = [] {
    std::array<char, NUMBER_DIGIT> values{};
    values.fill('X');
    for (std::size_t i = 0; i < LOGIC_VALUES.size(); ++i)
        values[std::size_t{LOGIC_DIGIT} << i] = LOGIC_VALUES[i];
    return values;
}();

} // namespace

// ------------------------------------------------------------------------------------------------
// Legality and characters
// ------------------------------------------------------------------------------------------------

namespace {

/// Whether a text, in upper case, has only the given characters.
bool has_only(std::string const& source, char const* characters) {
    std::array<bool, 256> allowed{};
    for (; *characters != '\0'; ++characters)
        allowed[index_of(*characters)] = true;
    return std::all_of(source.begin(), source.end(),
                       [&](char c) { return allowed[index_of(upper_case(c))]; });
}

} // namespace

bool big_string_is_legal(std::string const& source, BIG_RADIX radix) {
    BIG_REQUIRE(source.size() > 0);
    switch (radix) {
    case BIG_BIN: return has_only(source, BIG_BINMAP);
    case BIG_OCT: return has_only(source, BIG_OCTMAP);
    case BIG_HEX: return has_only(source, BIG_HEXMAP);
    case BIG_SIGNED_DEC: return has_only(source, BIG_SIGNED_DECMAP);
    case BIG_UNSIGNED_DEC: return has_only(source, BIG_UNSIGNED_DECMAP);
    case BIG_FRAC_FIX_POINT: return has_only(source, BIG_FRAC_FIX_POINTMAP);
    case BIG_ASCII: return std::all_of(source.begin(), source.end(), big_char_is_printable);
    }
    BIG_FAIL("Invalid radix.");
}

bool big_char_is_printable(char c) {
    return static_cast<unsigned char>(c - 32) < 95;
}

std::string big_get_ascii_char_value(char c) {
    std::string digits(8, '0');
    big_digits::store_characters(big_digits::eight_bit_characters(index_of(c)), digits.data());
    return digits;
}

bool value_is_fractional_readable(std::string value) {
    stl_toupper(value);
    return value.find_first_of("XZHL") == std::string::npos;
}

void big_complement(std::string* bits) {
    std::size_t const lowest = bits->rfind('1');
    if (lowest == std::string::npos)
        return;
    for (std::size_t i = 0; i < lowest; ++i)
        (*bits)[i] = (*bits)[i] == '1' ? '0' : '1';
}

// ------------------------------------------------------------------------------------------------
// Into binary digits
// ------------------------------------------------------------------------------------------------

namespace {

/// The binary digits of each character of a radix, up to four, as they stand in memory. Those of an
/// illegal character are marked in their top bits.
using PATTERN = std::uint32_t;
using PATTERNS = std::array<PATTERN, 256>;
constexpr PATTERN MARKS = 0x80808080;

template <std::size_t WIDTH>
constexpr PATTERNS patterns_of(std::string_view radix_digits, char const* const* digit_strings) {
    PATTERNS patterns{};
    for (std::size_t c = 0; c < patterns.size(); ++c) {
        char const folded = upper_case(static_cast<char>(c));
        std::size_t const digit = std::min(radix_digits.find(folded), radix_digits.size());
        bool const is_logic_value = LOGIC_VALUES.find(folded) != std::string_view::npos;
        bool const is_illegal = digit == radix_digits.size() && !is_logic_value;
        std::array<char, sizeof(PATTERN)> pattern{};
        for (std::size_t i = 0; i < WIDTH; ++i)
            pattern[i] = is_logic_value ? folded : digit_strings[digit][i];
        patterns[c] = std::bit_cast<PATTERN>(pattern) | (is_illegal ? MARKS : 0);
    }
    return patterns;
}

constexpr char const* const BIN_STRING[3] = {"0", "1", "X"};
constexpr PATTERNS BIN_PATTERNS = patterns_of<1>("01", BIN_STRING);
constexpr PATTERNS OCT_PATTERNS = patterns_of<3>("01234567", big_oct_string);
constexpr PATTERNS HEX_PATTERNS = patterns_of<4>(HEX_DIGITS, big_hex_string);

[[gnu::noinline]] void clear_marks(char* begin, char const* end) {
    for (; begin != end; ++begin)
        *begin = static_cast<char>(*begin & 0x7F);
}

/// Writes the pattern of each character. Returns the marks that they have.
template <std::size_t WIDTH>
PATTERN write_each(char const* in, std::size_t count, char* out, PATTERNS const& patterns) {
    PATTERN seen = 0;
#pragma GCC unroll 4
    for (std::size_t i = 0; i < count; ++i) {
        PATTERN const pattern = patterns[index_of(in[i])];
        std::memcpy(out + WIDTH * i, &pattern, WIDTH);
        seen |= pattern;
    }
    return seen & MARKS;
}

/// How many characters of a number are written at once: eight binary digits, which stay as they
/// are, or 16 hexadecimal ones.
template <std::size_t WIDTH>
constexpr std::size_t BLOCK = WIDTH == 1 ? 8 : 16;

/// Writes the digits of a block. Returns false, with nothing written, when it is not a number.
template <std::size_t WIDTH>
bool write_number_block(char const* in, char* out) {
    if (WIDTH == 4)
        return big_digits::write_16_hex_digits_as_bits(in, out);
    WORD const characters = big_digits::load_characters(in);
    if (!big_digits::are_bits(characters))
        return false;
    big_digits::store_characters(characters, out);
    return true;
}

/// write_each() for whole blocks.
template <std::size_t WIDTH>
[[gnu::noinline]] PATTERN write_blocks(char const* in, std::size_t count, char* out,
                                       PATTERNS const& patterns) {
    PATTERN marks = 0;
    for (; count != 0; count -= BLOCK<WIDTH>, in += BLOCK<WIDTH>, out += WIDTH * BLOCK<WIDTH>)
        if (!write_number_block<WIDTH>(in, out))
            marks |= write_each<WIDTH>(in, BLOCK<WIDTH>, out, patterns);
    return marks;
}

/// Writes the digits of every character into *result from a place on, which ends the result.
/// Returns whether all were legal.
template <std::size_t WIDTH>
[[gnu::always_inline]] inline bool write_patterns(std::string const& source, std::string* result,
                                                  std::size_t at, PATTERNS const& patterns) {
    std::size_t const count = source.size();
    make_room(result, at + WIDTH * count);
    char const* const in = source.data(); // the source may be the same string
    char* const out = result->data() + at;
    std::size_t const in_blocks = WIDTH == 3 ? 0 : count - count % BLOCK<WIDTH>;
    PATTERN marks =
        write_each<WIDTH>(in + in_blocks, count - in_blocks, out + WIDTH * in_blocks, patterns);
    if (in_blocks != 0)
        marks |= write_blocks<WIDTH>(in, in_blocks, out, patterns);
    if (marks == 0) [[likely]]
        return true;
    clear_marks(out, out + WIDTH * count);
    return false;
}

} // namespace

bool big_bin_to_binary(std::string const& source, std::string* result) {
    return write_patterns<1>(source, result, result->size(), BIN_PATTERNS);
}

bool big_oct_to_binary(std::string const& source, std::string* result) {
    return write_patterns<3>(source, result, result->size(), OCT_PATTERNS);
}

bool big_hex_to_binary(std::string const& source, std::string* result) {
    return write_patterns<4>(source, result, result->size(), HEX_PATTERNS);
}

namespace {

/// What a decimal text, without its sign, stands for.
enum DECIMAL_KIND { NOT_DECIMAL, DECIMAL_NUMBER, DECIMAL_UNKNOWN, DECIMAL_HIGH_IMPEDANCE };

DECIMAL_KIND decimal_kind(std::string_view digits) {
    std::size_t unknown = 0;
    std::size_t high_impedance = 0;
    for (char const c : digits) {
        switch (upper_case(c)) {
        case 'X':
        case 'U':
        case 'W':
        case '-': ++unknown; break;
        case 'Z': ++high_impedance; break;
        case 'H':
        case 'L': break;
        default:
            if (c < '0' || c > '9')
                return NOT_DECIMAL;
        }
    }
    if (high_impedance == digits.size())
        return DECIMAL_HIGH_IMPEDANCE;
    return unknown + high_impedance == 0 ? DECIMAL_NUMBER : DECIMAL_UNKNOWN;
}

/// A decimal text with its H and L as the digits 1 and 0.
std::string with_levels_as_digits(std::string_view digits) {
    std::string plain(digits);
    for (char& c : plain) {
        char const folded = upper_case(c);
        c = folded == 'H' ? '1' : folded == 'L' ? '0' : c;
    }
    return plain;
}

/// Takes the sign off a decimal text. Only a signed one has any.
bool take_sign(std::string_view& digits, bool is_signed) {
    bool const is_negative = is_signed && !digits.empty() && digits.front() == '-';
    digits.remove_prefix(is_negative);
    return is_negative;
}

} // namespace

bool big_dec_to_binary(std::string const& source, std::string* result, bool is_signed) {
    std::string_view digits = source;
    bool const is_negative = take_sign(digits, is_signed);
    NUMBER number;
    if (digits.empty() || !read_decimal(digits, number)) {
        switch (decimal_kind(digits)) {
        case NOT_DECIMAL: return false;
        case DECIMAL_UNKNOWN: result->push_back('X'); return true;
        case DECIMAL_HIGH_IMPEDANCE: result->push_back('Z'); return true;
        case DECIMAL_NUMBER: read_decimal(with_levels_as_digits(digits), number); break;
        }
    }

    std::size_t const count = std::max<std::size_t>(number.bit_length(), 1) + is_signed;
    if (is_negative && number.used() != 0)
        number.complement(count);
    std::size_t const begin = result->size();
    result->resize(begin + count);
    big_digits::write_bits(number.words(), number.used(), count, result->data() + begin);
    return true;
}

namespace {

/// A code between brackets in an ASCII text: the byte it stands for.
struct ASCII_CODE {
    BIG_ASCII_CHECK_RESULT check;
    WORD number;
};

/// Reads a code: decimal digits, or one blank of any kind, which is a space.
ASCII_CODE read_ascii_code(std::string_view code) {
    if (code.size() == 1 && (code[0] == ' ' || (code[0] >= '\t' && code[0] <= '\r')))
        return {BIG_ASCII_OK, ' '};
    if (!std::all_of(code.begin(), code.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return {BIG_ASCII_BAD_CODE, 0};
    // Only the lower 32 bits of the number, which stays at the largest one when it is too large,
    // are compared with 255: 4294967361 = 2^32 + 65 is accepted, with all its digits.
    long long number = std::numeric_limits<long long>::max();
    std::from_chars(code.data(), code.data() + code.size(), number);
    bool const fits = static_cast<unsigned int>(number) <= 255;
    return {fits ? BIG_ASCII_OK : BIG_ASCII_CODE_TOO_LARGE, static_cast<WORD>(number)};
}

} // namespace

// The text is a sequence of
//
//     \[  \\  \]         the character after the backslash
//     [ digits ]         the byte of that number
//     [ blank ]          a space
//     a printable one    itself; not [ or ], but ] after an escaped backslash, which counts as
//     escaped any other byte     NUL, with a debug message
bool big_ascii_to_binary(std::string const& source, std::string* result,
                         BIG_ASCII_CHECK_RESULT* check, bool emit) {
    *check = BIG_ASCII_OK;
    std::size_t const count = source.size();
    std::size_t size = result->size();
    if (emit)
        result->resize(size + 8 * count); // no character and no code gives more than 8 digits each
    std::string_view const text(source.data(), count);

    auto const append = [&](WORD number) {
        std::size_t const digits = std::max<std::size_t>(8, std::bit_width(number));
        if (emit)
            big_digits::write_bits(&number, 1, digits, result->data() + size);
        size += emit ? digits : 0;
    };
    auto const stop = [&](BIG_ASCII_CHECK_RESULT why) {
        *check = why;
        result->resize(size);
        return why == BIG_ASCII_OK;
    };

    for (std::size_t i = 0; i < count; ++i) {
        char const c = text[i];
        if (!big_char_is_printable(c)) {
            mem_msg_vdebug("Default non printable character to NULL");
            append(0);
        } else if (c == '\\') {
            ++i;
            if (i == count || (text[i] != '[' && text[i] != '\\' && text[i] != ']'))
                return stop(BIG_ASCII_BAD_ESCAPE);
            append(index_of(text[i]));
        } else if (c == '[') {
            std::size_t const end = text.find(']', i);
            if (end == std::string_view::npos)
                return stop(BIG_ASCII_UNTERMINATED_CODE);
            if (end == i + 1)
                return stop(BIG_ASCII_EMPTY_CODE);
            std::string_view const code = text.substr(i + 1, end - i - 1);
            ASCII_CODE const read = read_ascii_code(code);
            if (read.check != BIG_ASCII_OK) {
                *result = std::string(code);
                size = result->size();
                return stop(read.check);
            }
            append(read.number);
            i = end;
        } else if (c == ']' && (i == 0 || text[i - 1] != '\\')) {
            return stop(BIG_ASCII_UNMATCHED_BRACKET);
        } else {
            append(index_of(c));
        }
    }
    return stop(BIG_ASCII_OK);
}

bool big_validate_ascii_string(std::string const& source, std::string* result,
                               BIG_ASCII_CHECK_RESULT* check) {
    return big_ascii_to_binary(source, result, check, false);
}

namespace {

/// Reads a number as strtod() does in the "C" locale, whatever the process locale: leading blanks,
/// what follows the number, hexadecimal numbers and the names of infinity included.
double read_double(std::string const& text) {
    static locale_t const c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text.c_str(), nullptr, c_locale);
}

/// The weight of the highest bit of a fixed-point number; a width of 0 has one binary place less
/// than none.
double fixed_point_scale(unsigned int width) {
    return std::pow(2.0, static_cast<int>(width - 1));
}

/// Converts a fixed-point number. Returns false when it does not fit 64 bits.
bool fixed_point_to_binary(std::string const& source, std::string* result, unsigned int width) {
    double const scaled = read_double(source) * fixed_point_scale(width);
    if (!(scaled >= -0x1p63 && scaled < 0x1p63)) // not a number compares false
        return false;
    std::string text;
    MEM_DETAIL::stl_raw_sprintf(&text, "%lli", static_cast<long long>(scaled));
    return big_dec_to_binary(text, result, true);
}

/// How many digits in front say nothing: zeros above the first other digit, and repetitions of any
/// other first digit but 1. A string of one such digit throughout keeps two of them, on which
/// callers rely.
std::size_t redundant_digits(std::string const& digits) {
    std::size_t const count = digits.size();
    if (count < 2 || digits[0] == '1')
        return 0;
    std::size_t const run = std::min(digits.find_first_not_of(digits[0]), count);
    if (digits[0] == '0')
        return std::min(run, count - 1);
    return run == count ? count - 2 : run - 1;
}

/// The digit that fills the front of a number: its sign, an unknown digit, or 0.
char filling_digit(std::string const& digits, bool is_signed) {
    char const first = digits.empty() ? '0' : digits[0];
    if (is_signed && first == '1')
        return '1';
    return std::string_view("-UWXZ").find(first) != std::string_view::npos ? first : '0';
}

/// Whether a signed number is the lowest one of its width, written with one digit more: 110..0. The
/// last digit is not looked at, which cannot matter.
bool is_lowest_of_width(std::string const& digits, unsigned int width) {
    return digits.size() == std::size_t{width} + 1 && digits[0] == '1' && digits[1] == '1'
           && digits.find_first_not_of('0', 2) >= digits.size() - 1;
}

/// Fits binary digits to a width, at the most significant end:
///
///                      shorter                        longer
///     signed           filled with the first digit    cut off
///     ASCII            filled with 0                  cut off
///     others           filled with the first digit    redundant digits go first,
///                      if -, U, W, X or Z, else 0     then cut off
///
/// Returns 2 when digits were cut off, else 0.
unsigned int fit_to_width(std::string* digits, BIG_RADIX radix, unsigned int width) {
    bool const is_signed = radix == BIG_SIGNED_DEC || radix == BIG_FRAC_FIX_POINT;
    if (digits->size() == width)
        return 0;
    if (!is_signed && radix != BIG_ASCII)
        digits->erase(0, redundant_digits(*digits));
    if (width == 0 || digits->size() == width)
        return 0;
    if (digits->size() < width) {
        digits->insert(0, width - digits->size(), filling_digit(*digits, is_signed));
        return 0;
    }
    bool const is_exact = is_signed && is_lowest_of_width(*digits, width);
    digits->erase(0, digits->size() - width);
    return is_exact ? 0 : 2;
}

} // namespace

unsigned int big_convert_to_binary(std::string const& source, std::string* result, BIG_RADIX radix,
                                   unsigned int width) {
    bool is_legal = false;
    switch (radix) {
    case BIG_BIN: is_legal = big_bin_to_binary(source, result); break;
    case BIG_OCT: is_legal = big_oct_to_binary(source, result); break;
    case BIG_HEX: is_legal = big_hex_to_binary(source, result); break;
    case BIG_SIGNED_DEC: is_legal = big_dec_to_binary(source, result, true); break;
    case BIG_UNSIGNED_DEC: is_legal = big_dec_to_binary(source, result, false); break;
    case BIG_FRAC_FIX_POINT: is_legal = fixed_point_to_binary(source, result, width); break;
    case BIG_ASCII: {
        BIG_ASCII_CHECK_RESULT check = BIG_ASCII_OK;
        is_legal = big_ascii_to_binary(source, result, &check, true);
        break;
    }
    default: BIG_FAIL("Invalid radix.");
    }
    return is_legal ? fit_to_width(result, radix, width) : 1;
}

// ------------------------------------------------------------------------------------------------
// Arithmetic on vectors of decimal digits
// ------------------------------------------------------------------------------------------------

int big_divide_dec_by_two(std::vector<int>* digits) {
    bool quotient_is_not_zero = false;
    int remainder = 0;
    for (int& digit : *digits) {
        int const dividend = digit + 10 * remainder;
        digit = dividend / 2;
        remainder = dividend % 2;
        quotient_is_not_zero = quotient_is_not_zero || digit != 0;
    }
    return quotient_is_not_zero;
}

namespace {

/// Brings a digit of a sum below 10 and returns the carry.
int carry_of(int& digit) {
    int const carry = digit > 9;
    digit -= 10 * carry;
    return carry;
}

} // namespace

void big_multiply_dec_by_two(std::vector<int>* digits) {
    int carry = 0;
    for (int& digit : *digits) {
        digit = 2 * digit + carry;
        carry = carry_of(digit);
    }
    if (carry != 0)
        digits->push_back(1);
}

void big_add_vectors(std::vector<int>* sum, std::vector<int>* addend) {
    if (sum->size() < addend->size())
        sum->resize(addend->size(), 0);
    int carry = 0;
    for (std::size_t i = 0; i < sum->size(); ++i) {
        int& digit = (*sum)[i];
        digit += (*addend)[i] + carry;
        carry = carry_of(digit);
    }
    if (carry != 0)
        sum->push_back(1);
}

// ------------------------------------------------------------------------------------------------
// Out of binary digits
// ------------------------------------------------------------------------------------------------

namespace {

/// Whether the digits that numbers are written with are the usual ones.
bool has_standard_digits() {
    return BIG_HEXMAP == HEX_DIGITS;
}

/// The digit of a group: its number, the logic value of all its digits, or X. There is no branch,
/// as none could be predicted where numbers and logic values take turns. Notes what all binary
/// digits have in common.
char digit_of(char const* group, std::size_t bits, unsigned& common) {
    unsigned kinds = LEGAL_DIGIT | (LEGAL_DIGIT - 1);
    unsigned number = 0;
    for (std::size_t i = 0; i < bits; ++i) {
        kinds &= DIGIT_KINDS[index_of(group[i])];
        number = number << 1 | (index_of(group[i]) & 1);
    }
    common &= kinds;
    char const candidates[] = {COMMON_VALUE[kinds % NUMBER_DIGIT], BIG_HEXMAP[number]};
    return candidates[(kinds & NUMBER_DIGIT) != 0];
}

constexpr std::size_t groups_of(std::size_t count, std::size_t bits) {
    return (count + bits - 1) / bits;
}

/// Writes the digits of a few groups, the first of which may be shorter. Returns whether all binary
/// digits were legal.
template <std::size_t BITS>
[[gnu::noinline]] bool write_each_group(char const* binary, std::size_t count, char* out) {
    unsigned common = LEGAL_DIGIT;
    if (std::size_t const first = count % BITS; first != 0) {
        *out++ = digit_of(binary, first, common);
        binary += first;
        count -= first;
    }
    for (; count != 0; count -= BITS, binary += BITS)
        *out++ = digit_of(binary, BITS, common);
    return (common & LEGAL_DIGIT) != 0;
}

/// The binary digits that are written in one step: whole groups in words of eight.
template <std::size_t BITS>
constexpr std::size_t STEP = std::lcm(BITS, std::size_t{8});

/// Writes the digits of a step. Returns false, with nothing written, when it is not a number.
template <std::size_t BITS>
bool write_step(char const* binary, char* out) {
    WORD number = 0;
    for (std::size_t i = 0; i < STEP<BITS>; i += 8) {
        WORD const characters = big_digits::load_characters(binary + i);
        if (!big_digits::are_bits(characters))
            return false;
        number = number << 8 | big_digits::number_of_bits(characters);
    }
    if (BITS == 1)
        big_digits::store_characters(big_digits::eight_bit_characters(number), out);
    else if (BITS == 3)
        big_digits::store_characters(big_digits::eight_octal_characters(number), out);
    else
        std::memcpy(out, big_digits::HEX_PAIRS[number].data(), 2);
    return true;
}

/// Writes the digit of each group, the first of which may be shorter. They may be written over the
/// binary digits themselves. Returns whether all of these were legal.
template <std::size_t BITS>
[[gnu::always_inline]] inline bool write_groups(char const* binary, std::size_t count, char* out) {
    if (!has_standard_digits())
        return write_each_group<BITS>(binary, count, out);
    bool is_legal = true;
    if (std::size_t const first = count % STEP<BITS>; first != 0) {
        is_legal = write_each_group<BITS>(binary, first, out);
        binary += first;
        out += groups_of(first, BITS);
        count -= first;
    }
    if constexpr (BITS == 4)
        for (; count >= 64; count -= 64, binary += 64, out += 16)
            if (!big_digits::write_64_bits_as_hex(binary, out)
                && !big_digits::write_64_logic_values_as_hex(binary, out))
                is_legal = write_each_group<BITS>(binary, 64, out) && is_legal;
    for (; count != 0; count -= STEP<BITS>, binary += STEP<BITS>, out += STEP<BITS> / BITS)
        if (!write_step<BITS>(binary, out))
            is_legal = write_each_group<BITS>(binary, STEP<BITS>, out) && is_legal;
    return is_legal;
}

} // namespace

bool big_binary_to_number(std::string* binary, std::string* result, int group_bits) {
    auto const bits = static_cast<std::size_t>(group_bits);
    std::size_t const count = binary->size();
    std::size_t const at = result->size();
    make_room(result, at + groups_of(count, bits));
    char const* const digits = binary->data();
    char* const out = result->data() + at;
    if (bits == 1)
        write_groups<1>(digits, count, out);
    else if (bits == 3)
        write_groups<3>(digits, count, out);
    else
        write_groups<4>(digits, count, out);
    return true;
}

bool big_binary_to_dec(std::string* binary, std::string* result, bool is_signed) {
    if (binary->empty())
        return true;
    NUMBER number;
    if (!read_bits(*binary, number)) {
        char const last = binary->back();
        result->push_back(last == 'Z' || last == 'H' || last == 'L' ? last : 'X');
        return true;
    }
    bool const is_negative = is_signed && binary->front() == '1';
    if (is_negative)
        number.complement(binary->size());
    write_decimal(number, is_negative, result, result->size());
    return true;
}

namespace {

/// Writes a fixed-point number in at most 17 significant digits, like printf's "%.17g" in the "C"
/// locale, as the whole of *result. A text that is no number is appended.
void write_fixed_point(std::string* binary, std::string* result, unsigned int width) {
    std::string number;
    big_binary_to_dec(binary, &number, true);
    if (!value_is_fractional_readable(number)) {
        result->append(number);
        return;
    }
    double const value = read_double(number) / fixed_point_scale(width);
    char text[32]; // sign, 17 digits, point, e-308
    char* const end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, 17).ptr;
    result->assign(text, end);
}

/// Writes a byte for every eight binary digits, in the notation of big_ascii_to_binary(). A digit
/// other than 1 is a zero bit.
void write_ascii(std::string const& binary, std::string* result) {
    result->reserve(result->size() + groups_of(binary.size(), 8));
    std::string code;
    unsigned byte = 0;
    for (std::size_t left = binary.size(); left-- > 0;) {
        byte = (byte << 1 | (binary[binary.size() - 1 - left] == '1')) & 0xFF;
        if (left % 8 != 0)
            continue;
        char const c = static_cast<char>(byte);
        if (c == ' ') {
            result->append("[ ]");
        } else if (!big_char_is_printable(c)) {
            gen_itoa(static_cast<int>(byte), code, 10);
            result->append(1, '[').append(code).append(1, ']');
        } else {
            if (c == '[' || c == '\\' || c == ']')
                result->push_back('\\');
            result->push_back(c);
        }
        byte = 0;
    }
}

} // namespace

bool big_convert_from_binary(std::string* binary, std::string* result, BIG_RADIX radix,
                             unsigned int width) {
    switch (radix) {
    case BIG_BIN: return big_binary_to_number(binary, result, 1);
    case BIG_OCT: return big_binary_to_number(binary, result, 3);
    case BIG_HEX: return big_binary_to_number(binary, result, 4);
    case BIG_SIGNED_DEC: return big_binary_to_dec(binary, result, true);
    case BIG_UNSIGNED_DEC: return big_binary_to_dec(binary, result, false);
    case BIG_FRAC_FIX_POINT: write_fixed_point(binary, result, width); return true;
    case BIG_ASCII: write_ascii(*binary, result); return true;
    }
    BIG_FAIL("Invalid radix.");
}

// ------------------------------------------------------------------------------------------------
// The conversion
// ------------------------------------------------------------------------------------------------

namespace {

/// Reads a source without logic values.
///
/// @param count receives the binary digits that it has, in two's complement if it is signed
template <class VALUE>
bool read_number(std::string_view source, BIG_RADIX radix, VALUE& value, bool& is_negative,
                 std::size_t& count) {
    bool const is_signed = radix == BIG_SIGNED_DEC;
    is_negative = take_sign(source, is_signed);
    if (source.empty())
        return false;
    bool const is_number = radix == BIG_BIN   ? read_bits(source, value)
                           : radix == BIG_OCT ? read_octal(source, value)
                           : radix == BIG_HEX ? read_hex(source, value)
                                              : read_decimal(source, value);
    count = std::max<std::size_t>(value.bit_length(), 1) + is_signed;
    return is_number;
}

constexpr unsigned int NOT_A_NUMBER = 3;

/// Converts a number, for which binary digits as characters are not needed: a number fitted to a
/// width is the number modulo 2^width. Returns the status, or NOT_A_NUMBER, with nothing changed,
/// when the source has other digits than numbers have or the value is too short for it.
template <class VALUE>
unsigned int convert_value(std::string_view source, std::string* result, BIG_RADIX from,
                           BIG_RADIX to, unsigned int width) {
    VALUE value;
    bool is_negative = false;
    std::size_t count = 0;
    if (!read_number(source, from, value, is_negative, count))
        return NOT_A_NUMBER;
    std::size_t const bits = width == 0 ? count : width;
    if (bits > VALUE::LARGEST_WIDTH && is_negative) // whose complement needs all of them
        return NOT_A_NUMBER;

    unsigned int status = 0;
    if (count > bits) {
        // Only -2^(width - 1) fits with a binary digit more than the width.
        bool const is_lowest = is_negative && count == bits + 1 && value.is_power_of_two();
        status = is_lowest ? 0 : 2;
        value.truncate(bits);
    }

    bool has_minus = false;
    if ((is_negative || to == BIG_SIGNED_DEC) && value.used() != 0) {
        // In two's complement of that many bits, a number with the highest bit set is negative; and
        // so is the magnitude of a negative one, unless it exceeds 2^(bits - 1).
        bool const has_top_bit = value.has_bit(bits - 1);
        bool const is_below_zero =
            is_negative ? !has_top_bit || value.is_power_of_two() : has_top_bit;
        has_minus = to == BIG_SIGNED_DEC && is_below_zero;
        if (is_negative != has_minus)
            value.complement(bits);
    }

    switch (to) {
    case BIG_BIN: write_bits(value, bits, result); break;
    case BIG_OCT: write_octal(value, groups_of(bits, 3), result); break;
    case BIG_HEX: write_hex(value, groups_of(bits, 4), result); break;
    default: write_decimal(value, has_minus, result, 0); break;
    }
    return status;
}

/// What a source that cannot be converted gives.
[[gnu::noinline]] unsigned int not_convertible(std::string* result) {
    *result = 'X';
    return 1;
}

/// Converts binary, octal or hexadecimal digits into binary ones.
template <std::size_t WIDTH>
[[gnu::noinline]] unsigned int convert_patterns(std::string const& source, std::string* result,
                                                BIG_RADIX from, unsigned int width,
                                                PATTERNS const& patterns) {
    if (!write_patterns<WIDTH>(source, result, 0, patterns))
        return not_convertible(result);
    return result->size() == width ? 0 : fit_to_width(result, from, width);
}

/// Converts into binary digits.
unsigned int convert_to_bits(std::string const& source, std::string* result, BIG_RADIX from,
                             unsigned int width) {
    switch (from) {
    case BIG_BIN: return convert_patterns<1>(source, result, from, width, BIN_PATTERNS);
    case BIG_OCT: return convert_patterns<3>(source, result, from, width, OCT_PATTERNS);
    case BIG_HEX: return convert_patterns<4>(source, result, from, width, HEX_PATTERNS);
    default: break;
    }
    result->clear();
    unsigned int const status = big_convert_to_binary(source, result, from, width);
    return status == 1 ? not_convertible(result) : status;
}

/// Converts binary digits that have the right width already into octal or hexadecimal ones.
template <std::size_t BITS>
[[gnu::noinline]] unsigned int convert_groups(std::string const& source, std::string* result) {
    make_room(result, groups_of(source.size(), BITS));
    return write_groups<BITS>(source.data(), source.size(), result->data())
               ? 0
               : not_convertible(result);
}

/// Converts into octal or hexadecimal digits, which are written over the binary ones.
template <std::size_t BITS>
[[gnu::noinline]] unsigned int convert_to_groups(std::string const& source, std::string* result,
                                                 BIG_RADIX from, unsigned int width) {
    unsigned int const status = convert_to_bits(source, result, from, width);
    if (status != 1) {
        std::size_t const count = result->size();
        write_groups<BITS>(result->data(), count, result->data());
        result->resize(groups_of(count, BITS));
    }
    return status;
}

/// Converts into binary, octal or hexadecimal digits.
unsigned int convert_to_digits(std::string const& source, std::string* result, BIG_RADIX from,
                               BIG_RADIX to, unsigned int width) {
    switch (to) {
    case BIG_OCT: return convert_to_groups<3>(source, result, from, width);
    case BIG_HEX: return convert_to_groups<4>(source, result, from, width);
    default: return convert_to_bits(source, result, from, width);
    }
}

/// Converts by way of a string of binary digits.
[[gnu::noinline]] unsigned int convert_by_bits(std::string const& source, std::string* result,
                                               BIG_RADIX from, BIG_RADIX to, unsigned int width) {
    std::string binary;
    unsigned int const status = big_convert_to_binary(source, &binary, from, width);
    result->clear();
    if (status == 1)
        result->push_back('X');
    else
        big_convert_from_binary(&binary, result, to, width);
    return status;
}

/// Converts what neither fits as it is nor is a number.
[[gnu::noinline]] unsigned int convert_otherwise(std::string const& source, std::string* result,
                                                 BIG_RADIX from, BIG_RADIX to, unsigned int width) {
    if (from <= BIG_ASCII && to <= BIG_HEX)
        return convert_to_digits(source, result, from, to, width);
    return convert_by_bits(source, result, from, to, width);
}

bool is_decimal(BIG_RADIX radix) {
    return radix == BIG_SIGNED_DEC || radix == BIG_UNSIGNED_DEC;
}

/// Whether a number between the two radixes can go through machine words.
bool converts_as_number(BIG_RADIX from, BIG_RADIX to) {
    return from <= BIG_UNSIGNED_DEC && to <= BIG_UNSIGNED_DEC
           && ((to != BIG_OCT && to != BIG_HEX) || has_standard_digits());
}

/// Takes zeros in front off a number, as long as it has more than so many digits, at least eight.
void remove_zeros(std::string_view& digits, std::size_t longest) {
    while (digits.size() >= longest + 8
           && big_digits::load_characters(digits.data()) == big_digits::everywhere('0'))
        digits.remove_prefix(8);
    while (digits.size() > longest && digits.front() == '0')
        digits.remove_prefix(1);
}

/// Converts a number in a single word where one will do, in as many as it needs if it is or becomes
/// decimal, and otherwise as digits, which is faster for long ones; and so what is no number.
[[gnu::noinline]] unsigned int convert_number(std::string const& source, std::string* result,
                                              BIG_RADIX from, BIG_RADIX to, unsigned int width) {
    static constexpr std::size_t LONGEST[] = {64, 21, 16, 21, 20}; // characters for each radix
    std::string_view digits = source;
    if (from != BIG_SIGNED_DEC) // where a sign behind zeros is none
        remove_zeros(digits, LONGEST[from]);
    unsigned int status = NOT_A_NUMBER;
    if (digits.size() <= LONGEST[from])
        status = convert_value<SHORT_NUMBER>(digits, result, from, to, width);
    if (status == NOT_A_NUMBER && (is_decimal(from) || is_decimal(to)))
        status = convert_value<NUMBER>(digits, result, from, to, width);
    return status == NOT_A_NUMBER ? convert_otherwise(source, result, from, to, width) : status;
}

/// What too wide a fixed-point target gives; callers rely on what is in front of the X.
[[gnu::noinline]] unsigned int append_unknown(std::string* result) {
    result->push_back('X');
    return 1;
}

/// Converts a string that is its own source.
[[gnu::noinline]] unsigned int convert_in_place(std::string* text, BIG_RADIX from, BIG_RADIX to,
                                                unsigned int width) {
    std::string const source = *text;
    return big_radix_conversion(source, text, from, to, width);
}

constexpr std::size_t DIGIT_BITS[] = {1, 3, 4}; // of BIG_BIN, BIG_OCT, BIG_HEX

} // namespace

unsigned int big_radix_conversion(std::string const& source, std::string* result, BIG_RADIX from,
                                  BIG_RADIX to, unsigned int width) {
    BIG_REQUIRE(source.size() > 0);
    if (to == BIG_FRAC_FIX_POINT && width > 1024)
        return append_unknown(result);
    if (&source == result)
        return convert_in_place(result, from, to, width);
    // Digits that fit as they are are converted one by one, logic values like numbers.
    if (from <= BIG_HEX && DIGIT_BITS[from] * source.size() == width) {
        if (to == BIG_BIN)
            return convert_to_bits(source, result, from, width);
        if (to == BIG_OCT && from == BIG_BIN)
            return convert_groups<3>(source, result);
        if (to == BIG_HEX && from == BIG_BIN)
            return convert_groups<4>(source, result);
    }
    return converts_as_number(from, to) ? convert_number(source, result, from, to, width)
                                        : convert_otherwise(source, result, from, to, width);
}
