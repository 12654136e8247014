// The checksum of records, pages, journals and dumps.
//
// Bytes are taken as a polynomial over two elements. Their checksum is the remainder of that, times
// x^64, on division by ECMA-182's polynomial. Polynomials are reflected: of a word the lowest bit
// is the coefficient of the highest power, x^63.

#include "checksum.h"

#include <array>
#include <cstring>

#if defined(__x86_64__) && !defined(BIG_PORTABLE)
#define BIG_PRODUCTS 1
#include <immintrin.h>
#else
#define BIG_PRODUCTS 0
#endif

namespace {

using WORD = std::uint64_t;
using STATE = CHECKSUM::STATE;

/// ECMA-182's polynomial without its x^64, which is the remainder of x^64.
constexpr WORD POLYNOMIAL = 0xc96c5795d7870f42;

/// The remainder of a polynomial times x.
constexpr WORD times_x(WORD polynomial) {
    return (polynomial >> 1) ^ ((polynomial & 1) != 0 ? POLYNOMIAL : 0);
}

/// What times_x() makes this remainder of.
constexpr WORD divided_by_x(WORD remainder) {
    WORD const carry = remainder >> 63; // the polynomial's own highest bit is set
    return (remainder ^ (carry != 0 ? POLYNOMIAL : 0)) << 1 | carry;
}

/// What stands in front of the first byte, so that the checksum begins with all bits inverted.
constexpr WORD BEGIN = [] {
    WORD word = ~WORD{0};
    for (int bit = 0; bit < 64; ++bit)
        word = divided_by_x(word);
    return word;
}();

WORD load_word(char const* bytes) {
    WORD word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Up to seven bytes, the first of them lowest.
WORD load_part(char const* bytes, std::size_t size) {
    WORD word = 0;
    for (std::size_t k = size; k-- > 0;)
        word = word << 8 | static_cast<unsigned char>(bytes[k]);
    return word;
}

// ------------------------------------------------------------------------------------------------
// With tables, one for each byte of a word (Kounavis and Berry, "A Systematic Approach to Building
// High Performance Software-Based CRC Generators", 2005)
// ------------------------------------------------------------------------------------------------

namespace by_tables {

using TABLES = std::array<std::array<WORD, 256>, 8>;

/// TABLE[k][b]: the remainder of x^64 times the word with the byte b at place k and zeros else.
constexpr TABLES TABLE = [] {
    TABLES tables{};
    for (std::size_t byte = 0; byte < 256; ++byte) {
        WORD word = byte;
        for (std::size_t k = 8; k-- > 0;) { // a place further down is eight powers of x more
            for (int bit = 0; bit < 8; ++bit)
                word = times_x(word);
            tables[k][byte] = word;
        }
    }
    return tables;
}();

WORD times_x64(WORD word) {
    WORD remainder = 0;
#pragma GCC unroll 8
    for (std::size_t k = 0; k < 8; ++k)
        remainder ^= TABLE[k][word >> 8 * k & 255];
    return remainder;
}

// The high word of the state is not used.

void add_bytes(STATE& state, char const* bytes, std::size_t size) {
    for (; size >= 8; size -= 8, bytes += 8)
        state.low = times_x64(state.low) ^ load_word(bytes);
    if (size > 0) {
        std::size_t const rest = 64 - 8 * size;
        state.low = times_x64(state.low << rest)
                    ^ (state.low >> (64 - rest) | load_part(bytes, size) << rest);
    }
}

void add_numbers(STATE& state, WORD const* numbers, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        state.low = times_x64(state.low) ^ highest_byte_first(numbers[i]);
}

WORD checksum(STATE const& state) {
    return ~times_x64(state.low);
}

} // namespace by_tables

// ------------------------------------------------------------------------------------------------
// With products of polynomials (Gopal and others, "Fast CRC Computation for Generic Polynomials
// Using PCLMULQDQ Instruction", 2009)
// ------------------------------------------------------------------------------------------------

#if BIG_PRODUCTS
#define BIG_TARGET __attribute__((target("pclmul")))

namespace by_products {

/// A polynomial of two words, the one of the higher powers first.
using WORDS = __m128i;

/// The remainder of x^N.
template <int N>
constexpr WORD POWER_OF_X = [] {
    WORD remainder = WORD{1} << 63; // of x^0
    for (int n = 0; n < N; ++n)
        remainder = times_x(remainder);
    return remainder;
}();

/// The quotient of x^128 by ECMA-182's polynomial, without its x^64.
constexpr WORD QUOTIENT_OF_X128 = [] {
    WORD quotient = 0;
    WORD remainder = POLYNOMIAL;
    for (int bit = 0; bit < 64; ++bit) {
        quotient |= (remainder & 1) << bit;
        remainder = times_x(remainder);
    }
    return quotient;
}();

BIG_TARGET inline WORDS words_of(WORD high, WORD low) {
    return _mm_set_epi64x(static_cast<long long>(low), static_cast<long long>(high));
}

BIG_TARGET inline WORDS load_words(char const* bytes) {
    return _mm_loadu_si128(reinterpret_cast<WORDS const*>(bytes));
}

// A product of two words lacks a bit that two words have: read as two words it is the polynomials'
// product times x.

/// Two words times x^N, as two words that have the same remainder.
template <int N>
BIG_TARGET inline WORDS times_power(WORDS words) {
    WORDS const powers = words_of(POWER_OF_X<N + 63>, POWER_OF_X<N - 1>);
    return _mm_xor_si128(_mm_clmulepi64_si128(words, powers, 0x00),
                         _mm_clmulepi64_si128(words, powers, 0x11));
}

/// The same with x^64: the low word becomes the high one.
BIG_TARGET inline WORDS times_x64(WORDS words) {
    WORDS const power = words_of(POWER_OF_X<127>, 0);
    return _mm_xor_si128(_mm_clmulepi64_si128(words, power, 0x00), _mm_srli_si128(words, 8));
}

/// The remainder of two words: the quotient follows from that of x^128 (Barrett), and what its
/// product with the divisor leaves is the remainder.
BIG_TARGET inline WORD remainder(WORDS words) {
    WORDS const constants = words_of(QUOTIENT_OF_X128, POLYNOMIAL);
    WORDS const quotient =
        _mm_xor_si128(words, _mm_slli_epi64(_mm_clmulepi64_si128(words, constants, 0x00), 1));
    WORDS const multiple = _mm_clmulepi64_si128(quotient, constants, 0x10);
    // The product's low word, with that x taken out
    WORDS const low =
        _mm_or_si128(_mm_slli_epi64(multiple, 1), _mm_slli_si128(_mm_srli_epi64(multiple, 63), 8));
    WORDS const difference = _mm_xor_si128(words, low);
    return static_cast<WORD>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(difference, difference)));
}

BIG_TARGET inline WORDS load(STATE const& state) {
    return words_of(state.high, state.low);
}

BIG_TARGET inline void store(WORDS words, STATE& state) {
    std::memcpy(&state, &words, sizeof state);
}

/// Adds eight bytes.
BIG_TARGET inline WORDS add_word(WORDS words, WORD word) {
    return _mm_xor_si128(times_x64(words), words_of(0, word));
}

/// Adds sixteen bytes.
template <int N = 128>
BIG_TARGET inline WORDS add_block(WORDS words, char const* bytes) {
    return _mm_xor_si128(times_power<N>(words), load_words(bytes));
}

/// Adds whole groups of 64 bytes in four chains, as one product takes as long as several at once.
BIG_TARGET WORDS add_groups(WORDS words, char const* bytes, std::size_t groups) {
    WORDS first = _mm_setzero_si128();
    WORDS second = first;
    WORDS third = first;
    for (; groups > 0; --groups, bytes += 64) {
        first = add_block<512>(first, bytes);
        second = add_block<512>(second, bytes + 16);
        third = add_block<512>(third, bytes + 32);
        words = add_block<512>(words, bytes + 48);
    }
    second = _mm_xor_si128(times_power<128>(first), second);
    third = _mm_xor_si128(times_power<128>(second), third);
    return _mm_xor_si128(times_power<128>(third), words);
}

BIG_TARGET void add_bytes(STATE& state, char const* bytes, std::size_t size) {
    WORDS words = load(state);
    if (size >= 128) {
        words = add_groups(words, bytes, size / 64);
        bytes += size / 64 * 64;
        size %= 64;
    }
    for (; size >= 16; size -= 16, bytes += 16)
        words = add_block(words, bytes);
    if (size >= 8) {
        words = add_word(words, load_word(bytes));
        size -= 8;
        bytes += 8;
    }
    store(words, state);
    if (size == 0)
        return;
    // As many bytes of the high word are pushed out above x^127: a high word times x^64.
    std::size_t const rest = 64 - 8 * size;
    WORD const part = load_part(bytes, size);
    WORDS const shifted = words_of(state.high >> (64 - rest) | state.low << rest,
                                   state.low >> (64 - rest) | part << rest);
    WORDS const pushed_out = words_of(state.high << rest, 0);
    store(_mm_xor_si128(shifted, times_x64(pushed_out)), state);
}

BIG_TARGET void add_numbers(STATE& state, WORD const* numbers, std::size_t count) {
    WORDS words = load(state);
    for (std::size_t i = 0; i < count; ++i)
        words = add_word(words, highest_byte_first(numbers[i]));
    store(words, state);
}

BIG_TARGET WORD checksum(STATE const& state) {
    return ~remainder(times_x64(load(state)));
}

} // namespace by_products

#undef BIG_TARGET

bool const has_products = __builtin_cpu_supports("pclmul");
#endif

struct ARITHMETIC {
    void (*add_bytes)(STATE& state, char const* bytes, std::size_t size);
    void (*add_numbers)(STATE& state, WORD const* numbers, std::size_t count);
    WORD (*checksum)(STATE const& state);
};

constexpr ARITHMETIC BY_TABLES = {by_tables::add_bytes, by_tables::add_numbers,
                                  by_tables::checksum};
#if BIG_PRODUCTS
constexpr ARITHMETIC BY_PRODUCTS = {by_products::add_bytes, by_products::add_numbers,
                                    by_products::checksum};
#endif

ARITHMETIC const& arithmetic() {
#if BIG_PRODUCTS
    if (has_products)
        return BY_PRODUCTS;
#endif
    return BY_TABLES;
}

} // namespace

CHECKSUM::CHECKSUM() : m_state{0, BEGIN} {}

CHECKSUM& CHECKSUM::add(std::string_view bytes) {
    arithmetic().add_bytes(m_state, bytes.data(), bytes.size());
    return *this;
}

CHECKSUM& CHECKSUM::add(std::uint64_t const* numbers, std::size_t count) {
    arithmetic().add_numbers(m_state, numbers, count);
    return *this;
}

std::uint64_t CHECKSUM::value() const {
    return arithmetic().checksum(m_state);
}
