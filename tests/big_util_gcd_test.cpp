// Common divisors: three algorithms for three types, and the reduction of a pair.

#include "recording_platform.h"
#include "ulong128_by_cells.h"

#include "big_sys.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>

namespace {

__extension__ using UINT128 = unsigned __int128;
__extension__ using INT128 = __int128;
using ULONG64 = unsigned long long;

constexpr long long MAX = std::numeric_limits<long long>::max();
constexpr long long MIN = std::numeric_limits<long long>::min();

#ifdef NDEBUG
constexpr int ROUNDS = 20000;
#else
constexpr int ROUNDS = 2000;
#endif

// --- 128-bit values ---

BIG_ULONG128 wide(UINT128 value) {
    BIG_ULONG128 result(static_cast<ULONG64>(value));
    if (value >> 64 != 0)
        result.partial_add(2, BIG_ULONG128(static_cast<ULONG64>(value >> 64)));
    return result;
}

UINT128 narrow(BIG_ULONG128 value) {
    return UINT128{value.get_high_qword()} << 64 | value.get_low_qword();
}

BIG_ULONG128 erased() {
    BIG_ULONG128 value;
    value.erase();
    return value;
}

std::string hex(UINT128 value) {
    std::ostringstream text;
    text << std::hex << "0x" << static_cast<ULONG64>(value >> 64) << ':'
         << static_cast<ULONG64>(value);
    return text.str();
}

/// Whether a 128-bit result is this number, and equal to it as BIG_ULONG128 compares.
testing::AssertionResult is(BIG_ULONG128 const& result, UINT128 expected) {
    if (result == wide(expected))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << hex(narrow(result)) << " instead of " << hex(expected);
}

// --- Every algorithm on every type ---

/// Expects every algorithm to give `expected` for every type that holds the operands.
void expect_gcd(UINT128 a, UINT128 b, UINT128 expected, bool with_subtraction) {
    SCOPED_TRACE("divisor of " + hex(a) + " and " + hex(b));
    if (a <= 0xFFFFFFFF && b <= 0xFFFFFFFF) {
        auto const x = static_cast<unsigned int>(a);
        auto const y = static_cast<unsigned int>(b);
        EXPECT_EQ(big_gcd_modulo(x, y), expected);
        EXPECT_EQ(big_gcd_binary(x, y), expected);
        if (with_subtraction) {
            EXPECT_EQ(big_gcd_additive(x, y), expected);
        }
    }
    if (a <= ULONG64{MAX} && b <= ULONG64{MAX}) {
        auto const x = static_cast<long long>(a);
        auto const y = static_cast<long long>(b);
        auto const divisor = static_cast<long long>(expected);
        for (long long const s : {1, -1}) {
            for (long long const t : {1, -1}) {
                EXPECT_EQ(big_gcd_modulo(s * x, t * y), divisor);
                EXPECT_EQ(big_gcd_binary(s * x, t * y), divisor);
                if (with_subtraction) {
                    EXPECT_EQ(big_gcd_additive(s * x, t * y), divisor);
                }
            }
        }
    }
    EXPECT_TRUE(is(big_gcd_modulo(wide(a), wide(b)), expected));
    EXPECT_TRUE(is(big_gcd_binary(wide(a), wide(b)), expected));
    if (with_subtraction) {
        EXPECT_TRUE(is(big_gcd_additive(wide(a), wide(b)), expected));
    }
}

TEST(BigUtilGcd, ThreeAlgorithmsAgreeInEveryType) {
    struct CASE {
        const char* why;
        ULONG64 a;
        ULONG64 b;
        ULONG64 divisor;
    };
    static const CASE cases[] = {
        {"a common divisor", 12, 18, 6},
        {"the other way round", 18, 12, 6},
        {"none", 17, 5, 1},
        {"equal operands", 48, 48, 48},
        {"three common halvings", 40, 24, 8},
        {"one divides the other", 7, 21, 7},
        {"one", 1, 1000000, 1},
        {"two zeros", 0, 0, 0},
        {"powers of two", 1024, 4096, 1024},
        {"the largest 32-bit number and its third", 4294967295, 1431655765, 1431655765},
        {"consecutive Fibonacci numbers", 2971215073, 1836311903, 1},
        {"the largest 64-bit Fibonacci numbers", 7540113804746346429, 4660046610375530309, 1},
        {"2^63 - 1 and a seventh of it", ULONG64{MAX}, 1317624576693539401, 1317624576693539401},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.why);
        expect_gcd(c.a, c.b, c.divisor, true);
    }
}

TEST(BigUtilGcd, NeighboursHaveNoDivisor) {
    // Subtraction would take as many steps as the numbers count.
    for (UINT128 const value : {UINT128{0xFFFFFFFF}, UINT128{1} << 32, UINT128{MAX},
                                UINT128{1} << 63, UINT128{1} << 64, ~UINT128{0}})
        expect_gcd(value, value - 1, 1, false);
}

TEST(BigUtilGcd, OneZeroGivesTheOtherOperand) {
    for (UINT128 const value : {UINT128{1}, UINT128{7}, UINT128{0xFFFFFFFF}, UINT128{1} << 32,
                                UINT128{MAX}, UINT128{1} << 64, UINT128{1} << 100, ~UINT128{0}}) {
        expect_gcd(0, value, value, false); // subtraction would never end
        expect_gcd(value, 0, value, false);
    }
}

TEST(BigUtilGcd, SmallOperandsAgreeWithTrialDivision) {
    unsigned int const limit = ROUNDS > 10000 ? 120 : 50;
    for (unsigned int a = 1; a <= limit; ++a) {
        for (unsigned int b = 1; b <= limit; ++b) {
            unsigned int divisor = std::min(a, b);
            while (a % divisor != 0 || b % divisor != 0)
                --divisor;
            expect_gcd(a, b, divisor, true);
        }
    }
}

TEST(BigUtilGcd, PowersOfTwoAndTheirNeighbours) {
    // gcd(2^i, 2^j) is the smaller; a neighbour of a power of two is odd.
    for (int i = 0; i<128; i += ROUNDS> 10000 ? 1 : 5) {
        for (int j = 0; j < 128; ++j) {
            UINT128 const a = UINT128{1} << i;
            UINT128 const b = UINT128{1} << j;
            expect_gcd(a, b, std::min(a, b), i - j < 10 && j - i < 10);
            if (i > 0) {
                expect_gcd(a - 1, b, 1, false);
                expect_gcd(b, a + 1, 1, false);
            }
        }
    }
}

/// Two operands with a known divisor: starting from (divisor, 0), the larger becomes the smaller
/// one and the sum of the smaller and a multiple of the larger. No step changes the divisor.
struct OPERANDS {
    UINT128 a;
    UINT128 b;
    UINT128 divisor;
};

OPERANDS make_operands(std::mt19937_64& random, UINT128 limit, unsigned int largest_quotient) {
    UINT128 const seed = UINT128{random()} << 64 | random();
    UINT128 const divisor = std::max<UINT128>(1, (seed & limit) >> (random() % 128));
    OPERANDS operands{divisor, 0, divisor};
    for (;;) {
        UINT128 const quotient = 1 + random() % largest_quotient;
        if (operands.a > (limit - operands.b) / quotient)
            break;
        operands = {operands.a * quotient + operands.b, operands.a, divisor};
        if (random() % 64 == 0)
            break;
    }
    if (operands.b == 0)
        operands.b = operands.a;
    if (random() % 2 == 0)
        std::swap(operands.a, operands.b);
    return operands;
}

TEST(BigUtilGcd, OperandsWithAKnownDivisorGiveIt) {
    constexpr unsigned long long seed = 20260104;
    std::mt19937_64 random(seed);
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    for (int round = 0; round < ROUNDS && !testing::Test::HasFailure(); ++round) {
        for (UINT128 const limit : {UINT128{0xFFFFFFFF}, UINT128{MAX}, ~UINT128{0}}) {
            OPERANDS const few = make_operands(random, limit, 20); // few subtractions
            expect_gcd(few.a, few.b, few.divisor, true);
            OPERANDS const any = make_operands(random, limit, 0xFFFFFFFF);
            expect_gcd(any.a, any.b, any.divisor, false);
        }
    }
}

/// The divisor by the remainders, written out.
UINT128 euclid(UINT128 x, UINT128 y) {
    while (y != 0) {
        UINT128 const remainder = x - x / y * y;
        x = y;
        y = remainder;
    }
    return x;
}

TEST(BigUtilGcd, AlgorithmsAgreeOnRandomOperands) {
    constexpr unsigned long long seed = 20260105;
    std::mt19937_64 random(seed);
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    for (int round = 0; round < ROUNDS && !testing::Test::HasFailure(); ++round) {
        UINT128 const a = (UINT128{random()} << 64 | random()) >> (random() % 128);
        UINT128 const b = (UINT128{random()} << 64 | random()) >> (random() % 128);
        expect_gcd(a, b, euclid(a, b), false);
    }
}

TEST(BigUtilGcd, OperandsWhoseDifferencesEndInZeros) {
    // Halving takes all zeros at the end of a difference at once, a whole word of them too.
    constexpr unsigned long long seed = 20260106;
    std::mt19937_64 random(seed);
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    for (int zeros = 0; zeros < 128; ++zeros) {
        for (int round = 0; round < 20; ++round) {
            UINT128 const a = (UINT128{random()} << 64 | random()) >> (random() % 128);
            UINT128 const difference = (UINT128{random()} << 64 | random()) << zeros;
            UINT128 const b = a ^ difference; // their lowest bits are the same
            expect_gcd(a, b, euclid(a, b), false);
        }
    }
}

// --- Signed operands ---

TEST(BigUtilGcd, SignedFormsTakeMagnitudes) {
    struct CASE {
        long long a;
        long long b;
        long long divisor;
    };
    static const CASE cases[] = {
        {-12, 18, 6},
        {12, -18, 6},
        {-12, -18, 6},
        {-7, -7, 7},
        // The magnitude of -2^63 is 2^63, which comes back as -2^63 when it is the divisor.
        {MIN, MIN, MIN},
        {MIN, MIN / 2, 1LL << 62},
        {MIN / 4 * 3, MIN, 1LL << 61},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(testing::Message() << c.a << " and " << c.b);
        EXPECT_EQ(big_gcd_modulo(c.a, c.b), c.divisor);
        EXPECT_EQ(big_gcd_binary(c.a, c.b), c.divisor);
        EXPECT_EQ(big_gcd_additive(c.a, c.b), c.divisor);
    }
}

TEST(BigUtilGcd, TheSmallestNumberHasAMagnitude) {
    EXPECT_EQ(big_gcd_modulo(MIN, MAX), 1);
    EXPECT_EQ(big_gcd_binary(MIN, MAX), 1);
    EXPECT_EQ(big_gcd_modulo(MIN, 0LL), MIN);
    EXPECT_EQ(big_gcd_modulo(0LL, MIN), MIN);
    EXPECT_EQ(big_gcd_binary(MIN, 0LL), MIN);
    EXPECT_EQ(big_gcd_binary(0LL, MIN), MIN);
    EXPECT_EQ(big_gcd_modulo(-5LL, 0LL), 5);
    EXPECT_EQ(big_gcd_binary(0LL, -5LL), 5);
}

// --- Other types of integers ---

TEST(BigUtilGcd, ShortIntAndLongAreTakenAsLongLong) {
    auto const expect = [](auto a, auto b, long long divisor) {
        static_assert(std::is_same_v<decltype(big_gcd_additive(a, b)), long long>);
        static_assert(std::is_same_v<decltype(big_gcd_modulo(a, b)), long long>);
        static_assert(std::is_same_v<decltype(big_gcd_binary(a, b)), long long>);
        EXPECT_EQ(big_gcd_additive(a, b), divisor);
        EXPECT_EQ(big_gcd_modulo(a, b), divisor);
        EXPECT_EQ(big_gcd_binary(a, b), divisor);
    };
    expect(12, 18, 6);
    expect(-12, 18, 6);
    expect(12L, -18L, 6);
    expect(12, 18L, 6);
    expect(-12L, 18, 6);
    expect(short{12}, static_cast<unsigned char>(18), 6);
    expect(static_cast<long>(MAX), static_cast<long>(MAX), MAX);
    expect(std::numeric_limits<int>::min(), std::numeric_limits<int>::min(), 1LL << 31);
    expect(static_cast<long>(MIN), static_cast<long>(MIN), MIN); // as of long long
    EXPECT_EQ(big_gcd_modulo(0, 7), 7);
    EXPECT_EQ(big_gcd_binary(7, 0), 7);
}

TEST(BigUtilGcd, OneOperandOfAFormsTypeChoosesTheForm) {
    auto const expect = [](auto a, auto b, auto divisor) {
        static_assert(std::is_same_v<decltype(big_gcd_modulo(a, b)), decltype(divisor)>);
        EXPECT_EQ(big_gcd_modulo(a, b), divisor);
        EXPECT_EQ(big_gcd_modulo(b, a), divisor);
    };
    expect(12, 18LL, 6LL);
    expect(12L, 18LL, 6LL);
    static_assert(std::is_same_v<decltype(big_gcd_modulo(12, 18u)), unsigned int>);
    EXPECT_EQ(big_gcd_modulo(12, 18u), 6u);
    EXPECT_TRUE(is(big_gcd_modulo(BIG_ULONG128(12), 18L), 6));
}

// A 64-bit unsigned operand has no form that holds it, except that of 128 bits.
template <typename A, typename B>
concept HAS_DIVISOR = requires(A a, B b) {
    big_gcd_modulo(a, b);
};
static_assert(!HAS_DIVISOR<unsigned long, unsigned long> && !HAS_DIVISOR<double, double>);
static_assert(HAS_DIVISOR<unsigned long, BIG_ULONG128> && HAS_DIVISOR<int, int>);

// --- 128-bit operands ---

TEST(BigUtilGcd, WideOperandsReachPast64Bits) {
    UINT128 const two_to_100 = UINT128{1} << 100;
    UINT128 const three_times_two_to_64 = UINT128{3} << 64;
    expect_gcd(two_to_100, three_times_two_to_64, UINT128{1} << 64, false);
    expect_gcd(~UINT128{0}, ~UINT128{0}, ~UINT128{0}, true);
    expect_gcd(~UINT128{0}, ~UINT128{0} / 3, ~UINT128{0} / 3, true);
    expect_gcd(~UINT128{0}, ~UINT128{0} - 1, 1, false);
    // 2^128 - 1 is (2^64 - 1)(2^64 + 1), whose factors are odd neighbours.
    expect_gcd(~UINT128{0}, (UINT128{1} << 64) + 1, (UINT128{1} << 64) + 1, false);
    expect_gcd((UINT128{1} << 64) + 1, (UINT128{1} << 64) - 1, 1, false);
}

TEST(BigUtilGcd, ErasedOperandComesBackFromZeroAndFromAnotherOne) {
    for (auto const gcd :
         {static_cast<BIG_ULONG128 (*)(BIG_ULONG128, BIG_ULONG128)>(big_gcd_additive),
          static_cast<BIG_ULONG128 (*)(BIG_ULONG128, BIG_ULONG128)>(big_gcd_modulo),
          static_cast<BIG_ULONG128 (*)(BIG_ULONG128, BIG_ULONG128)>(big_gcd_binary)}) {
        EXPECT_FALSE(gcd(erased(), erased()).is_defined());
        EXPECT_FALSE(gcd(erased(), BIG_ULONG128()).is_defined());
        EXPECT_FALSE(gcd(BIG_ULONG128(), erased()).is_defined());
    }
}

TEST(BigUtilGcd, ErasedOperandWithANumberIsAnInternalError) {
    for (UINT128 const value : {UINT128{1}, UINT128{2}, UINT128{15}, ~UINT128{0}}) {
        SCOPED_TRACE(hex(value));
        BIG_ULONG128 const number = wide(value);
        BIG_ULONG128 const none = erased();
        EXPECT_INTERNAL_ERROR(big_gcd_additive(none, number), "Underflow", "2", "big/big_ulong128");
        EXPECT_INTERNAL_ERROR(big_gcd_additive(number, none), "Underflow", "2", "big/big_ulong128");
        EXPECT_INTERNAL_ERROR(big_gcd_modulo(none, number), "Underflow", "2", "big/big_ulong128");
        EXPECT_INTERNAL_ERROR(big_gcd_modulo(number, none), "Underflow", "2", "big/big_ulong128");
        EXPECT_INTERNAL_ERROR(big_gcd_binary(none, number), "Underflow", "2", "big/big_ulong128");
        EXPECT_INTERNAL_ERROR(big_gcd_binary(number, none), "Underflow", "2", "big/big_ulong128");
    }
}

// The rules of the 128-bit forms, step by step in the slow operations of the tests' own integer.

by_cells::VALUE modulo_by_cells(by_cells::VALUE a, by_cells::VALUE b) {
    while (!equal(b, by_cells::zero())) {
        by_cells::VALUE const before = a;
        a = b;
        b = remainder(before, a);
    }
    return a;
}

by_cells::VALUE binary_by_cells(by_cells::VALUE a, by_cells::VALUE b) {
    by_cells::VALUE const zero = by_cells::zero();
    by_cells::VALUE const one = by_cells::of_word(1);
    by_cells::VALUE const two = by_cells::of_word(2);
    by_cells::VALUE factor = one;
    if (equal(a, zero))
        return b;
    if (equal(b, zero))
        return a;
    while (!equal(a, b)) {
        if (!equal(remainder(a, two), zero) && !equal(remainder(b, two), zero)) {
            if (greater(a, b))
                a = quotient(difference(a, b), two);
            else
                b = quotient(difference(b, a), two);
        } else if (equal(remainder(a, two), zero) && equal(remainder(b, two), zero)) {
            factor = product(factor, two);
            a = quotient(a, two);
            b = quotient(b, two);
        } else if (equal(remainder(a, two), one)) {
            b = quotient(b, two);
        } else {
            a = quotient(a, two);
        }
    }
    return greater(factor, one) ? product(a, factor) : a;
}

by_cells::VALUE cells_of(BIG_ULONG128 value) {
    if (!value.is_defined())
        return {0, {}};
    by_cells::VALUE cells = by_cells::of_two_words(value.get_low_qword());
    if (value.get_high_qword() != 0)
        partial_add(cells, 2, by_cells::of_two_words(value.get_high_qword()));
    return cells;
}

/// What a form gives: its result, or the internal error that it reports.
template <typename RUN>
std::string outcome(RUN run) {
    try {
        BIG_ULONG128 result = run();
        return result.is_defined() ? hex(narrow(result)) : "erased";
    } catch (recording::INTERNAL_ERROR const& error) {
        return error.text;
    }
}

template <typename RUN>
std::string outcome_by_cells(RUN run) {
    try {
        by_cells::VALUE const result = run();
        UINT128 value = 0;
        for (int i = result.length - 1; i >= 0; --i)
            value = value << 32 | result.cells[static_cast<std::size_t>(i)].value();
        return result.length == 0 ? "erased" : hex(value);
    } catch (by_cells::REPORT const& report) {
        return report.text;
    }
}

TEST(BigUtilGcd, WideFormsAgreeWithTheirRulesStepByStep) {
    constexpr unsigned long long seed = 20260112;
    std::mt19937_64 random(seed);
    auto const operand = [&random] {
        if (random() % 8 == 0)
            return random() % 2 == 0 ? erased() : BIG_ULONG128();
        return wide((UINT128{random()} << 64 | random()) >> (random() % 128));
    };
    for (int round = 0; round < ROUNDS / 20; ++round) {
        BIG_ULONG128 a = operand();
        BIG_ULONG128 b = operand();
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", " << testing::PrintToString(a)
                                        << " and " << testing::PrintToString(b));
        by_cells::VALUE const x = cells_of(a);
        by_cells::VALUE const y = cells_of(b);
        ASSERT_EQ(outcome([&] { return big_gcd_binary(a, b); }),
                  outcome_by_cells([&] { return binary_by_cells(x, y); }));
        if (b.is_defined()) { // division by an erased value has no rule
            ASSERT_EQ(outcome([&] { return big_gcd_modulo(a, b); }),
                      outcome_by_cells([&] { return modulo_by_cells(x, y); }));
        }
    }
}

// --- The precondition ---

TEST(BigUtilGcd, OperandsOnWhichSubtractionNeverEndsAreDocumented) {
    std::ifstream header(BIG_SOURCE_ROOT "/h/big_sys.h");
    std::vector<std::string> comment; // the lines directly above the declarations
    int declarations = 0;
    for (std::string line; std::getline(header, line);) {
        if (line.find("big_gcd_additive(") != std::string::npos) {
            ++declarations;
            continue;
        }
        if (declarations == 3)
            break;
        if (line.rfind("///", 0) == 0)
            comment.push_back(line);
        else
            comment.clear();
    }
    ASSERT_EQ(declarations, 3);
    EXPECT_EQ(std::count(comment.begin(), comment.end(),
                         "/// @pre not exactly one operand is 0: the loop would never end"),
              1)
        << "the comment above big_gcd_additive names the operands that it cannot take";
}

// --- Reduction of a pair ---

TEST(BigUtilGcd, PairIsDividedByItsDivisor) {
    struct CASE {
        const char* why;
        long long numerator;
        long long denominator;
        long long reduced_numerator;
        long long reduced_denominator;
    };
    static const CASE cases[] = {
        {"a common divisor", 6, 9, 2, 3},
        {"a sign below stays", 6, -9, 2, -3},
        {"a sign above stays", -6, 9, -2, 3},
        {"two signs go", -6, -9, 2, 3},
        {"two signs go without a divisor", -2, -3, 2, 3},
        {"zero above", 0, 5, 0, 1},
        {"zero below", 5, 0, 1, 0},
        {"a negative zero's partner", 0, -5, 0, -1},
        {"a negative over zero", -5, 0, -1, 0},
        {"two zeros stay", 0, 0, 0, 0},
        // -2^63 has no positive counterpart and keeps its sign.
        {"smallest over smallest", MIN, MIN, 1, 1},
        {"smallest over a negative", MIN, -6, MIN / 2, 3},
        {"a negative over smallest", -6, MIN, 3, MIN / 2},
        {"smallest over minus one", MIN, -1, MIN, 1},
        {"minus one over smallest", -1, MIN, 1, MIN},
        {"smallest over a positive", MIN, 6, MIN / 2, 3},
        // The divisor itself is then -2^63.
        {"smallest over zero", MIN, 0, 1, 0},
        {"zero over smallest", 0, MIN, 0, 1},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(testing::Message() << c.why << ": " << c.numerator << " / " << c.denominator);
        long long numerator = c.numerator;
        long long denominator = c.denominator;
        big_suppress_gcd(numerator, denominator);
        EXPECT_EQ(numerator, c.reduced_numerator);
        EXPECT_EQ(denominator, c.reduced_denominator);
        long long_numerator = static_cast<long>(c.numerator);
        long long_denominator = static_cast<long>(c.denominator);
        big_suppress_gcd(long_numerator, long_denominator);
        EXPECT_EQ(long_numerator, c.reduced_numerator);
        EXPECT_EQ(long_denominator, c.reduced_denominator);
    }
}

TEST(BigUtilGcd, PairMayBeOneNumber) {
    for (auto const& [number, reduced] :
         {std::pair{7LL, 1LL}, {-7LL, 1LL}, {0LL, 0LL}, {MIN, 1LL}, {MAX, 1LL}}) {
        long long both = number;
        big_suppress_gcd(both, both);
        EXPECT_EQ(both, reduced) << number;
        long both_long = static_cast<long>(number);
        big_suppress_gcd(both_long, both_long);
        EXPECT_EQ(both_long, reduced) << number;
    }
}

TEST(BigUtilGcd, ReducedPairIsTheSameFractionInLowestTerms) {
    constexpr unsigned long long seed = 20260106;
    std::mt19937_64 random(seed);
    for (int round = 0; round < ROUNDS * 5; ++round) {
        long long const a = static_cast<long long>(random()) >> (random() % 64);
        long long const b = static_cast<long long>(random()) >> (random() % 64);
        if ((a == 0 && b == 0) || (a == MIN && b < 0) || (b == MIN && a < 0))
            continue; // above
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", " << a << " / " << b);
        long long n = a;
        long long d = b;
        big_suppress_gcd(n, d);
        ASSERT_TRUE(INT128{n} * b == INT128{d} * a) << n << " / " << d;
        ASSERT_TRUE(big_gcd_modulo(n, d) == 1) << n << " / " << d;
        ASSERT_EQ(n < 0, a < 0 && b >= 0) << n << " / " << d;
        ASSERT_EQ(d < 0, b < 0 && a >= 0) << n << " / " << d;
    }
}

} // namespace
