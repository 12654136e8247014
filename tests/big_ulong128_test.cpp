// BIG_ULONG128: its cells, its arithmetic and what it reports.
//
// Results are checked against the machine's 128-bit integer, and cell for cell against the rules
// written out in support/ulong128_by_cells.h. A value is written here as the cells that it uses,
// least significant first; without any it is erased.

#include "printing.h"
#include "recording_platform.h"
#include "ulong128_by_cells.h"
#include "ulong128_inspector.h"

#include "big_sys.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace {

__extension__ typedef unsigned __int128 WIDE;

using CELLS = BIG_ULONG128_INSPECTOR::CELLS;
using USED = std::vector<unsigned int>;

constexpr char PATH[] = "big/big_ulong128";
constexpr char CARRY_OUT[] = "(m_length+1) <= BIG_ULONG128::MAX_CELL";
constexpr char BELOW_CELL_0[] = "i < BIG_ULONG128::MAX_CELL";
constexpr unsigned int F = 0xFFFFFFFFu; // a full cell

#ifdef NDEBUG
constexpr int FEWER = 1;
constexpr int QUICK_ROUNDS = 1000000; // of properties whose round takes a fraction of a microsecond
#else
constexpr int FEWER = 20; // random operands for a build that is slow
constexpr int QUICK_ROUNDS = 10000;
#endif

// ------------------------------------------------------------------------------------------------
// Values
// ------------------------------------------------------------------------------------------------

/// What lies above the cells in use, to see whether it is read or touched.
constexpr CELLS LEFTOVERS = {0xA0A0A0A0u, 0xB1B1B1B1u, 0xC2C2C2C2u, 0xD3D3D3D3u};

/// Gives a value its cells, with leftovers above them.
void fill(BIG_ULONG128& value, USED const& used) {
    CELLS cells = LEFTOVERS;
    std::copy(used.begin(), used.end(), cells.begin());
    BIG_ULONG128_INSPECTOR::set(value, static_cast<int>(used.size()), cells);
}

BIG_ULONG128 value_of(USED const& used) {
    BIG_ULONG128 value;
    fill(value, used);
    return value;
}

/// The rules' view of what fill() makes.
by_cells::VALUE rule_value_of(USED const& used) {
    by_cells::VALUE value{static_cast<int>(used.size()), {}};
    std::copy(LEFTOVERS.begin(), LEFTOVERS.end(), value.cells.begin());
    std::copy(used.begin(), used.end(), value.cells.begin());
    return value;
}

/// Whether a value has the length and every cell that is determined.
testing::AssertionResult same(BIG_ULONG128 const& value, by_cells::VALUE const& expected) {
    CELLS const cells = BIG_ULONG128_INSPECTOR::cells(value);
    bool equal = BIG_ULONG128_INSPECTOR::length(value) == expected.length;
    for (std::size_t i = 0; i < cells.size(); ++i)
        equal = equal && expected.cells[i].value_or(cells[i]) == cells[i];
    if (equal)
        return testing::AssertionSuccess();
    testing::AssertionResult failure = testing::AssertionFailure();
    failure << testing::PrintToString(value) << "; expected length " << expected.length << ", cells"
            << std::hex;
    for (std::optional<unsigned int> const& cell : expected.cells)
        if (cell)
            failure << " 0x" << *cell;
        else
            failure << " any";
    return failure;
}

/// Whether a value has the length and the cells in use; those above do not matter.
testing::AssertionResult is(USED const& expected, BIG_ULONG128 const& value) {
    by_cells::VALUE determined{static_cast<int>(expected.size()), {}};
    std::copy(expected.begin(), expected.end(), determined.cells.begin());
    return same(value, determined);
}

/// The cells that a number uses.
USED cells_of(WIDE number) {
    USED used{static_cast<unsigned int>(number)};
    while (number >>= 32)
        used.push_back(static_cast<unsigned int>(number));
    return used;
}

WIDE number_of(USED const& used) {
    WIDE number = 0;
    for (std::size_t i = used.size(); i-- > 0;)
        number = number << 32 | used[i];
    return number;
}

std::string text_of(USED const& used) {
    return testing::PrintToString(value_of(used));
}

// ------------------------------------------------------------------------------------------------
// Operators
// ------------------------------------------------------------------------------------------------

using VALUE = BIG_ULONG128;

struct OPERATOR {
    char const* symbol;
    VALUE (*plain)(VALUE const& a, VALUE const& b);
    void (*compound)(VALUE& a, VALUE const& b);
    by_cells::VALUE (*rule)(by_cells::VALUE const& a, by_cells::VALUE const& b);
};

// clang-format off
OPERATOR const OPERATORS[] = {
    {"+", [](VALUE const& a, VALUE const& b) { return a + b; }, [](VALUE& a, VALUE const& b) { a += b; }, by_cells::sum},
    {"-", [](VALUE const& a, VALUE const& b) { return a - b; }, [](VALUE& a, VALUE const& b) { a -= b; }, by_cells::difference},
    {"*", [](VALUE const& a, VALUE const& b) { return a * b; }, [](VALUE& a, VALUE const& b) { a *= b; }, by_cells::product},
    {"/", [](VALUE const& a, VALUE const& b) { return a / b; }, [](VALUE& a, VALUE const& b) { a /= b; }, by_cells::quotient},
    {"%", [](VALUE const& a, VALUE const& b) { return a % b; }, [](VALUE& a, VALUE const& b) { a %= b; }, by_cells::remainder},
};
// clang-format on

OPERATOR const& operator_of(std::string const& symbol) {
    return *std::find_if(std::begin(OPERATORS), std::end(OPERATORS),
                         [&](OPERATOR const& each) { return each.symbol == symbol; });
}

/// What the compound form reports where the plain one reports `text`.
std::string compound_text(std::string const& symbol, std::string const& text) {
    return symbol == "%" && text == "Division by Zero" ? "Modulo by Zero" : text;
}

/// The text of the internal error that a statement reports; empty when it reports none.
template <typename STATEMENT>
std::string report_of(STATEMENT statement) {
    try {
        statement();
    } catch (recording::INTERNAL_ERROR const& error) {
        return error.text;
    } catch (by_cells::REPORT const& report) {
        return report.text;
    }
    return {};
}

// ------------------------------------------------------------------------------------------------
// Layout
// ------------------------------------------------------------------------------------------------

static_assert(sizeof(BIG_ULONG128) == 20, "a length and four cells");
static_assert(alignof(BIG_ULONG128) == 4);
static_assert(std::is_standard_layout_v<BIG_ULONG128>);
static_assert(!std::is_polymorphic_v<BIG_ULONG128>);
static_assert(BIG_ULONG128::MAX_CELL == 4);
static_assert(std::is_same_v<decltype(BIG_ULONG128::MAX_CELL), int const>);

TEST(BigUlong128, LiesInMemoryAsItsLengthThenItsCells) {
    unsigned int const expected[] = {3, 7, 8, 9, LEFTOVERS[3]};
    BIG_ULONG128 value;
    fill(value, {7, 8, 9});
    EXPECT_EQ(std::memcmp(&value, expected, sizeof expected), 0);
}

// ------------------------------------------------------------------------------------------------
// Construction and assignment
// ------------------------------------------------------------------------------------------------

TEST(BigUlong128, IsConstructedInAsFewCellsAsItNeeds) {
    EXPECT_TRUE(is({0}, BIG_ULONG128()));
    EXPECT_TRUE(is({0}, BIG_ULONG128(0)));
    EXPECT_TRUE(is({5}, BIG_ULONG128(5)));
    EXPECT_TRUE(is({0x7FFFFFFF}, BIG_ULONG128(INT_MAX)));
    EXPECT_TRUE(is({0}, BIG_ULONG128(0u)));
    EXPECT_TRUE(is({F}, BIG_ULONG128(F)));
    EXPECT_TRUE(is({0}, BIG_ULONG128(0ull)));
    EXPECT_TRUE(is({F}, BIG_ULONG128(0xFFFFFFFFull)));
    EXPECT_TRUE(is({0, 1}, BIG_ULONG128(0x100000000ull)));
    EXPECT_TRUE(is({F, F}, BIG_ULONG128(~0ull)));
}

TEST(BigUlong128, TakesANegativeIntForZeroAndSaysSo) {
    for (int const value : {-1, -5, INT_MIN}) {
        recording::clear();
        EXPECT_TRUE(is({0}, BIG_ULONG128(value)));
        EXPECT_EQ(recording::reports(),
                  std::vector<recording::CALL>{recording::debug(
                      "Error: Negative number in BIG_ULONG128::BIG_ULONG128(int) ")});
    }
}

TEST(BigUlong128, SaysNothingOfOtherInts) {
    recording::clear();
    EXPECT_TRUE(is({0}, BIG_ULONG128(0)));
    EXPECT_TRUE(is({1}, BIG_ULONG128(1)));
    EXPECT_EQ(recording::reports(), std::vector<recording::CALL>());
}

TEST(BigUlong128, CopyClearsTheCellsAboveItsLength) {
    for (USED const& used : {USED{}, {0}, {1}, {1, 2}, {1, 2, 3}, {1, 2, 3, 4}}) {
        BIG_ULONG128 original;
        fill(original, used);
        BIG_ULONG128 const copy = original;
        EXPECT_TRUE(same(copy, by_cells::copy(rule_value_of(used))));
    }
}

TEST(BigUlong128, AssignmentLeavesTheCellsAboveItsLength) {
    USED const values[] = {{}, {0}, {1}, {1, 2}, {1, 2, 3}, {1, 2, 3, 4}};
    for (USED const& from : values) {
        for (USED const& to : values) {
            BIG_ULONG128 const source = value_of(from);
            BIG_ULONG128 target;
            fill(target, to);
            by_cells::VALUE expected = rule_value_of(to);
            by_cells::assign(expected, rule_value_of(from));
            EXPECT_EQ(&(target = source), &target);
            EXPECT_TRUE(same(target, expected)) << text_of(from) << " over " << text_of(to);
        }
    }
}

TEST(BigUlong128, AssignmentToItselfChangesNothing) {
    for (USED const& used : {USED{}, {0}, {1, 2}, {1, 2, 3, 4}}) {
        BIG_ULONG128 value;
        fill(value, used);
        BIG_ULONG128& same_value = value;
        value = same_value;
        EXPECT_TRUE(same(value, rule_value_of(used)));
    }
}

TEST(BigUlong128, AssignmentOfAWordTouchesTheFirstCellAlone) {
    for (unsigned int const word : {0u, 7u, F}) {
        BIG_ULONG128 value;
        fill(value, {1, 2, 3, 4});
        EXPECT_EQ(&(value = word), &value);
        EXPECT_TRUE(same(value, {1, {word, 2u, 3u, 4u}}));
    }
}

TEST(BigUlong128, AssignmentOfTwoWordsTouchesTheFirstTwoCells) {
    BIG_ULONG128 value;
    fill(value, {1, 2, 3, 4});
    EXPECT_EQ(&(value = 0x0000000900000008ull), &value);
    EXPECT_TRUE(same(value, {2, {8u, 9u, 3u, 4u}}));
    value = 5ull;
    EXPECT_TRUE(same(value, {1, {5u, 0u, 3u, 4u}}));
    value = 0x100000000ull;
    EXPECT_TRUE(same(value, {2, {0u, 1u, 3u, 4u}}));
}

// ------------------------------------------------------------------------------------------------
// Every type of integer
// ------------------------------------------------------------------------------------------------

template <typename INTEGER>
class BigUlong128OfType : public testing::Test {
protected:
    using LIMITS = std::numeric_limits<INTEGER>;

    /// Numbers at the edges of the type, and around 2^32 where it has them.
    static std::vector<INTEGER> numbers() {
        std::vector<INTEGER> all = {LIMITS::min(), INTEGER(0), INTEGER(1), LIMITS::max(),
                                    INTEGER(LIMITS::max() / 2)};
        if (LIMITS::is_signed)
            all.push_back(INTEGER(-1));
        for (unsigned long long const number :
             {2ull, 10ull, 0xFFFFFFFFull, 0x100000000ull, 0x100000003ull, 10000000000ull})
            if (number <= static_cast<unsigned long long>(LIMITS::max()))
                all.push_back(static_cast<INTEGER>(number));
        return all;
    }

    /// Expects a statement to say that a number is negative, if it is, and nothing else.
    template <typename STATEMENT>
    static void expect_report(INTEGER number, std::string const& text, STATEMENT statement) {
        recording::clear();
        EXPECT_EQ(report_of(statement), text);
        std::vector<recording::CALL> expected;
        if (number < INTEGER(0))
            expected.push_back(
                recording::debug("Error: Negative number in BIG_ULONG128::BIG_ULONG128(int) "));
        std::vector<recording::CALL> reports = recording::reports();
        if (!text.empty())
            reports.pop_back(); // the internal error itself
        EXPECT_EQ(reports, expected);
    }
};

using INTEGERS = testing::Types<bool, char, signed char, unsigned char, wchar_t, char16_t, char32_t,
                                short, unsigned short, int, unsigned int, long, unsigned long,
                                long long, unsigned long long>;
TYPED_TEST_SUITE(BigUlong128OfType, INTEGERS);

TYPED_TEST(BigUlong128OfType, IsConstructedAndAssigned) {
    for (TypeParam const number : TestFixture::numbers()) {
        USED const expected = cells_of(number < TypeParam(0) ? 0 : static_cast<WIDE>(number));
        SCOPED_TRACE(text_of(expected));
        TestFixture::expect_report(number, "",
                                   [&] { EXPECT_TRUE(is(expected, BIG_ULONG128(number))); });
        TestFixture::expect_report(number, "", [&] {
            BIG_ULONG128 const value = number;
            EXPECT_TRUE(is(expected, value));
        });
        TestFixture::expect_report(number, "", [&] {
            BIG_ULONG128 value = value_of({1, 2, 3, 4});
            EXPECT_EQ(&(value = number), &value);
            EXPECT_TRUE(is(expected, value));
        });
    }
}

TYPED_TEST(BigUlong128OfType, DividesByTheWholeNumber) {
    for (TypeParam const divisor : TestFixture::numbers()) {
        WIDE const number = divisor < TypeParam(0) ? 0 : static_cast<WIDE>(divisor);
        char const* const failure = number == 0 ? "Division by Zero" : "";
        WIDE const some = number == 0 ? 1 : number; // so that the machine can divide by it
        for (WIDE const dividend : {WIDE(0), WIDE(7), WIDE(1000000000000000000), ~WIDE(0)}) {
            BIG_ULONG128 const value = value_of(cells_of(dividend));
            SCOPED_TRACE(testing::PrintToString(value) + " by " + text_of(cells_of(number)));
            USED const quotient = cells_of(dividend / some);
            USED const remainder = cells_of(dividend % some);
            TestFixture::expect_report(divisor, failure,
                                       [&] { EXPECT_TRUE(is(quotient, value / divisor)); });
            TestFixture::expect_report(divisor, failure, [&] {
                BIG_ULONG128 target = value;
                EXPECT_TRUE(is(quotient, target /= divisor));
            });
            TestFixture::expect_report(divisor, failure,
                                       [&] { EXPECT_TRUE(is(remainder, value % divisor)); });
            TestFixture::expect_report(divisor, compound_text("%", failure), [&] {
                BIG_ULONG128 target = value;
                EXPECT_TRUE(is(remainder, target %= divisor));
            });
        }
    }
}

enum BITS : unsigned long long { BIT_40 = 1ull << 40 };

TEST(BigUlong128, DividesByAnEnumerator) {
    EXPECT_TRUE(is({1}, value_of(cells_of(BIT_40)) / BIT_40));
}

// What is not an integer up to 64 bits neither becomes a value nor is cut to a divisor.
template <typename NUMBER>
constexpr bool IS_TAKEN =
    std::is_constructible_v<
        BIG_ULONG128,
        NUMBER> || std::is_assignable_v<BIG_ULONG128&, NUMBER> || std::is_invocable_v<std::divides<>, BIG_ULONG128, NUMBER>;
static_assert(!IS_TAKEN<float> && !IS_TAKEN<double> && !IS_TAKEN<long double>);
static_assert(!IS_TAKEN<WIDE> && !IS_TAKEN<char const*> && !IS_TAKEN<std::nullptr_t>);
static_assert(IS_TAKEN<int>);

// ------------------------------------------------------------------------------------------------
// Results and reports
// ------------------------------------------------------------------------------------------------

struct RESULT_CASE {
    char const* why;
    USED a;
    char const* symbol;
    USED b;
    USED result;
};

// clang-format off
RESULT_CASE const RESULT_CASES[] = {
    // why                                          a                                        op   b                         result
    {"zero is one cell",                            {0},                                     "+", {0},                      {0}},
    {"a carry makes a cell",                        {F},                                     "+", {1},                      {0, 1}},
    {"a carry goes all the way up",                 {F, F, F},                               "+", {1},                      {0, 0, 0, 1}},
    {"the shorter operand may be the first",        {1},                                     "+", {F, F},                   {0, 0, 1}},
    {"the largest sum",                             {F, F, F, F},                            "+", {0},                      {F, F, F, F}},

    {"a borrow goes all the way down",              {0, 0, 1},                               "-", {1},                      {F, F}},
    {"cells that become 0 are given up",            {5, 7, 9, 1},                            "-", {4, 7, 9, 1},             {1}},
    {"zero keeps one cell",                         {0, 1},                                  "-", {0, 1},                   {0}},
    {"nothing from nothing",                        {0},                                     "-", {0},                      {0}},

    {"zero times anything",                         {0},                                     "*", {F, F, F, F},             {0}},
    {"anything times zero",                         {F, F, F, F},                            "*", {0},                      {0}},
    {"2^64 x 2^32",                                 {0, 0, 1},                               "*", {0, 1},                   {0, 0, 0, 1}},
    {"two words at their largest",                  {F, F},                                  "*", {F, F},                   {1, 0, F - 1, F}},
    {"every cell full",                             {1, 1, 1, 1},                            "*", {F},                      {F, F, F, F}},

    {"less by more",                                {5},                                     "/", {0, 0, 0, 1},             {0}},
    {"a value by itself",                           {5, 6, 7, 8},                            "/", {5, 6, 7, 8},             {1}},
    {"10^38 / 10^19",                               {0, 0x098A2240, 0x5A86C47A, 0x4B3B4CA8}, "/", {0x89E80000, 0x8AC72304}, {0x89E80000, 0x8AC72304}},
    {"(2^128 - 1) / (2^64 + 1)",                    {F, F, F, F},                            "/", {1, 0, 1},                {F, F}},
    {"a quotient of four cells",                    {F, F, F, F},                            "/", {1},                      {F, F, F, F}},
    {"a divisor of two cells, a quotient of three", {0, 0, 0, 8},                            "/", {0, 2},                   {0, 0, 4}},

    {"7 % 3",                                       {7},                                     "%", {3},                      {1}},
    {"less by more",                                {5},                                     "%", {0, 0, 0, 1},             {5}},
    {"no rest",                                     {0, 0, 0, 8},                            "%", {0, 2},                   {0}},
    {"a rest of four cells",                        {F, F, F, F - 1},                        "%", {0, 0, 0, F},             {F, F, F, F - 1}},

    // Erased values: 0 where a number is needed, and erased only of two erased ones.
    {"erased and erased",                           {},                                      "+", {},                       {}},
    {"erased and a value",                          {},                                      "+", {1, 2},                   {1, 2}},
    {"a value and erased",                          {1, 2},                                  "+", {},                       {1, 2}},
    {"zero and erased",                             {0},                                     "+", {},                       {0}},
    {"erased from erased",                          {},                                      "-", {},                       {0}},
    {"erased from a value",                         {1, 2},                                  "-", {},                       {1, 2}},
    {"erased times a value",                        {},                                      "*", {1, 2},                   {0}},
    {"a value times erased",                        {1, 2},                                  "*", {},                       {0}},
    {"erased times erased",                         {},                                      "*", {},                       {0}},
    {"erased by a value",                           {},                                      "/", {7},                      {0}},
    {"erased by a long value",                      {},                                      "/", {7, 8, 9},                {0}},
};
// clang-format on

TEST(BigUlong128, OperatorsGiveWhatTheyShould) {
    for (RESULT_CASE const& c : RESULT_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": " + text_of(c.a) + " " + c.symbol + " "
                     + text_of(c.b));
        OPERATOR const& op = operator_of(c.symbol);
        recording::clear();
        EXPECT_TRUE(is(c.result, op.plain(value_of(c.a), value_of(c.b))));

        BIG_ULONG128 target;
        fill(target, c.a);
        op.compound(target, value_of(c.b));
        by_cells::VALUE expected = rule_value_of(c.a);
        by_cells::assign(expected, rule_value_of(c.result));
        EXPECT_TRUE(same(target, expected));
        EXPECT_EQ(recording::reports(), std::vector<recording::CALL>());
    }
}

struct REPORT_CASE {
    char const* why;
    USED a;
    char const* symbol;
    USED b;
    char const* text;
};

// clang-format off
REPORT_CASE const REPORT_CASES[] = {
    // why                                 a                   op   b             text
    {"(2^128 - 1) + 1",                    {F, F, F, F},       "+", {1},          CARRY_OUT},
    {"the largest with itself",            {F, F, F, F},       "+", {F, F, F, F}, CARRY_OUT},
    {"0 - 1",                              {0},                "-", {1},          "Underflow"},
    {"one below",                          {4, 3, 2, 1},       "-", {5, 3, 2, 1}, "Underflow"},
    {"2^64 x 2^64",                        {0, 0, 1},          "*", {0, 0, 1},    "Overflow"},
    {"five cells",                         {0, 0, 0, 1},       "*", {0, 1},       "Overflow"},
    {"a top product of two cells",         {0, 0, 0, 0x10000}, "*", {0x10000},    "Overflow"},
    {"a carry from below the top",         {F, F, F, F},       "*", {2},          "Overflow"},
    {"a carry out of the top",             {0, 0, F, 1},       "*", {F},          CARRY_OUT},
    {"by zero",                            {5},                "/", {0},          "Division by Zero"},
    {"zero by zero",                       {0},                "/", {0},          "Division by Zero"},
    {"rest by zero",                       {5, 6, 7, 8},       "%", {0},          "Division by Zero"},

    {"a value from erased",                {},                 "-", {1},          "Underflow"},
    {"zero from erased, which is less",    {},                 "-", {0},          "Underflow"},
    {"the rest of erased is erased - 0",   {},                 "%", {7},          "Underflow"},
    {"erased by zero",                     {},                 "/", {0},          "Division by Zero"},
    {"rest of erased by zero",             {},                 "%", {0},          "Division by Zero"},
    {"by erased, which callers do not do", {5, 6, 7},          "/", {},           "Division by Zero"},
    {"rest by erased",                     {5},                "%", {},           "Division by Zero"},
};
// clang-format on

TEST(BigUlong128, OperatorsReportWhatTheyCannotHold) {
    for (REPORT_CASE const& c : REPORT_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": " + text_of(c.a) + " " + c.symbol + " "
                     + text_of(c.b));
        OPERATOR const& op = operator_of(c.symbol);
        BIG_ULONG128 const a = value_of(c.a);
        BIG_ULONG128 const b = value_of(c.b);
        EXPECT_INTERNAL_ERROR(op.plain(a, b), c.text, "2", PATH);

        BIG_ULONG128 target;
        fill(target, c.a);
        EXPECT_INTERNAL_ERROR(op.compound(target, b),
                              c.b.empty() ? c.text : compound_text(c.symbol, c.text), "2", PATH);
        EXPECT_TRUE(same(target, rule_value_of(c.a))) << "the old value must stay";
    }
}

TEST(BigUlong128, StepsByOne) {
    BIG_ULONG128 value;
    fill(value, {F, F});
    EXPECT_TRUE(is({F, F}, value++));
    EXPECT_TRUE(same(value, {3, {0u, 0u, 1u, LEFTOVERS[3]}}));
    EXPECT_EQ(&++value, &value);
    EXPECT_TRUE(is({1, 0, 1}, value));
    EXPECT_TRUE(is({1, 0, 1}, value--));
    EXPECT_EQ(&--value, &value);
    EXPECT_TRUE(same(value, {2, {F, F, 1u, LEFTOVERS[3]}})) << "cell 2 is left over";
}

TEST(BigUlong128, StepsFromErasedToOneAndNotBack) {
    BIG_ULONG128 value;
    fill(value, {});
    EXPECT_TRUE(is({}, value++));
    EXPECT_TRUE(is({1}, value));
    value.erase();
    EXPECT_INTERNAL_ERROR(--value, "Underflow", "2", PATH);
    EXPECT_TRUE(is({}, value));
}

TEST(BigUlong128, DoesNotStepPastItsEnds) {
    BIG_ULONG128 zero;
    EXPECT_INTERNAL_ERROR(--zero, "Underflow", "2", PATH);
    EXPECT_INTERNAL_ERROR(zero--, "Underflow", "2", PATH);
    EXPECT_TRUE(is({0}, zero));
    BIG_ULONG128 largest = value_of({F, F, F, F});
    EXPECT_INTERNAL_ERROR(++largest, CARRY_OUT, "2", PATH);
    EXPECT_INTERNAL_ERROR(largest++, CARRY_OUT, "2", PATH);
    EXPECT_TRUE(is({F, F, F, F}, largest));
}

TEST(BigUlong128, DividesByOneCell) {
    EXPECT_TRUE(is({2}, value_of({7}) / 3u));
    EXPECT_TRUE(is({0}, value_of({7}) / 8u));
    EXPECT_TRUE(is({0, 0x80000000u}, value_of({0, 0, 1}) / 2u));
    EXPECT_TRUE(is({F, F, F, F}, value_of({F, F, F, F}) / 1u));
    EXPECT_TRUE(is({1, 1, 1, 1}, value_of({F, F, F, F}) / F));
    EXPECT_TRUE(is({0}, value_of({}) / 3u));
    EXPECT_INTERNAL_ERROR(value_of({7}) / 0u, "Division by Zero", "2", PATH);
    EXPECT_INTERNAL_ERROR(value_of({}) / 0u, "Division by Zero", "2", PATH);
}

TEST(BigUlong128, OperandsMayBeTheSameObject) {
    struct {
        char const* symbol;
        USED a;
        USED result;
    } const cases[] = {
        // of one object with itself
        {"+", {F, F, 5}, {F - 1, F, 11}},
        {"+", {0, 0x80000000u}, {0, 0, 1}},
        {"-", {1, 2, 3, 4}, {0}},
        {"*", {F, F}, {1, 0, F - 1, F}},
        {"/", {1, 2, 3, 4}, {1}},
        {"%", {1, 2, 3, 4}, {0}},
        {"+", {}, {}},
        {"-", {}, {0}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(text_of(c.a) + " " + c.symbol + " itself");
        BIG_ULONG128 value = value_of(c.a);
        EXPECT_TRUE(is(c.result, operator_of(c.symbol).plain(value, value)));
        operator_of(c.symbol).compound(value, value);
        EXPECT_TRUE(is(c.result, value));
    }
    BIG_ULONG128 zero;
    EXPECT_INTERNAL_ERROR(zero /= zero, "Division by Zero", "2", PATH);
    EXPECT_INTERNAL_ERROR(zero %= zero, "Modulo by Zero", "2", PATH);
}

// ------------------------------------------------------------------------------------------------
// partial_add
// ------------------------------------------------------------------------------------------------

struct PARTIAL_ADD_CASE {
    char const* why;
    USED value;
    int shift;
    USED other;
    USED result;
};

// clang-format off
PARTIAL_ADD_CASE const PARTIAL_ADD_CASES[] = {
    // why                                  value      shift  other   result
    {"in place",                            {1, 2, 3}, 0,     {4, 5}, {5, 7, 3}},
    {"shifted",                             {1, 2, 3}, 1,     {4, 5}, {1, 6, 8}},
    {"beyond the top, with zeros between",  {1},       3,     {9},    {1, 0, 0, 9}},
    {"a carry that makes a cell",           {1, F},    1,     {1},    {1, 0, 1}},
    {"a carry past the end of other",       {F, F, F}, 0,     {1},    {0, 0, 0, 1}},
    {"leftovers are no digits",             {1},       0,     {1, 2}, {2, 2}},
    {"to an erased value",                  {},        2,     {5},    {0, 0, 5}},
    {"of an erased value",                  {1, 2},    0,     {},     {1, 2}},
    {"of erased to erased",                 {},        0,     {},     {}},

    // It does not look for the highest cell that is not 0: its callers pass operands that have one.
    {"a zero shifted keeps its cell",       {1},       1,     {0},    {1, 0}},
    {"an erased value shifted makes zeros", {1},       3,     {},     {1, 0, 0}},
};
// clang-format on

TEST(BigUlong128, PartialAddAddsAtAShift) {
    for (PARTIAL_ADD_CASE const& c : PARTIAL_ADD_CASES) {
        SCOPED_TRACE(c.why);
        BIG_ULONG128 value;
        fill(value, c.value);
        value.partial_add(c.shift, value_of(c.other));
        by_cells::VALUE expected = rule_value_of(c.value);
        by_cells::assign(expected, rule_value_of(c.result));
        EXPECT_TRUE(same(value, expected));
    }
}

struct PARTIAL_ADD_REPORT_CASE {
    char const* why;
    USED value;
    int shift;
    USED other;
    char const* text;
};

// clang-format off
PARTIAL_ADD_REPORT_CASE const PARTIAL_ADD_REPORT_CASES[] = {
    // why                               value         shift    other         text
    {"past cell 3",                      {1},          3,       {1, 2},       "Overflow"},
    {"past cell 3 by shift alone",       {1},          5,       {},           "Overflow"},
    {"wholly below cell 0",              {1},          -2,      {1},          "Overflow"},
    {"a shift of any size",              {1},          INT_MAX, {1, 2, 3, 4}, "Overflow"},
    {"a negative one too",               {1},          INT_MIN, {1, 2, 3, 4}, "Overflow"},
    {"partly below cell 0",              {1, 2},       -1,      {3, 4},       BELOW_CELL_0},
    {"up to cell 0",                     {1},          -1,      {1},          BELOW_CELL_0},
    {"partly below, to an erased value", {},           -1,      {3, 4},       BELOW_CELL_0},
    {"a carry out of cell 3",            {1, 2, 3, F}, 3,       {1},          CARRY_OUT},
    {"a carry through all cells",        {F, F, F, F}, 0,       {1},          CARRY_OUT},
};
// clang-format on

TEST(BigUlong128, PartialAddReportsWhatHasNoPlace) {
    for (PARTIAL_ADD_REPORT_CASE const& c : PARTIAL_ADD_REPORT_CASES) {
        SCOPED_TRACE(c.why);
        BIG_ULONG128 value;
        fill(value, c.value);
        EXPECT_INTERNAL_ERROR(value.partial_add(c.shift, value_of(c.other)), c.text, "2", PATH);
        EXPECT_TRUE(same(value, rule_value_of(c.value))) << "the old value must stay";
    }
}

TEST(BigUlong128, PartialAddTakesItsOwnObject) {
    BIG_ULONG128 value = value_of({F, 2});
    value.partial_add(0, value);
    EXPECT_TRUE(is({F - 1, 5}, value));
    value.partial_add(1, value);
    EXPECT_TRUE(is({F - 1, 3, 6}, value));
    EXPECT_INTERNAL_ERROR(value.partial_add(2, value), "Overflow", "2", PATH);
    EXPECT_TRUE(is({F - 1, 3, 6}, value));
}

// ------------------------------------------------------------------------------------------------
// Comparison, logic and access
// ------------------------------------------------------------------------------------------------

TEST(BigUlong128, ComparesLengthsBeforeCells) {
    // In ascending order. Zeros on top make a value longer and therefore greater: values are kept
    // without them, and comparison relies on it.
    USED const ascending[] = {{},        {0},       {1},          {F},          {7, 0},
                              {0, 1},    {1, 1},    {0, 2},       {F, F},       {0, 0, 0},
                              {0, 0, 1}, {F, F, 1}, {0, 0, 0, 1}, {1, 0, 0, 1}, {F, F, F, F}};
    for (std::size_t i = 0; i < std::size(ascending); ++i) {
        for (std::size_t j = 0; j < std::size(ascending); ++j) {
            SCOPED_TRACE(text_of(ascending[i]) + " and " + text_of(ascending[j]));
            BIG_ULONG128 a;
            BIG_ULONG128 b;
            fill(a, ascending[i]);
            fill(b, ascending[j]);
            EXPECT_EQ(a == b, i == j);
            EXPECT_EQ(a != b, i != j);
            EXPECT_EQ(a > b, i > j);
            EXPECT_EQ(a >= b, i >= j);
            EXPECT_EQ(a < b, i < j);
            EXPECT_EQ(a <= b, i <= j);
        }
    }
}

TEST(BigUlong128, ErasedValuesAreEqualWhateverTheyHeld) {
    BIG_ULONG128 a = value_of({1});
    BIG_ULONG128 b = value_of({2, 3, 4});
    a.erase();
    b.erase();
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a == BIG_ULONG128());
}

TEST(BigUlong128, IsFalseOnlyWhenItIsZero) {
    struct {
        USED value;
        bool truth;
    } const cases[] = {{{0}, false}, {{1}, true}, {{0, 1}, true}, {{0, 0, 0, 1}, true}, {{}, true}};
    for (auto const& c : cases) {
        SCOPED_TRACE(text_of(c.value));
        BIG_ULONG128 value = value_of(c.value);
        EXPECT_EQ(!value, !c.truth);
        for (auto const& d : cases) {
            EXPECT_EQ(value && value_of(d.value), c.truth && d.truth);
            EXPECT_EQ(value || value_of(d.value), c.truth || d.truth);
        }
    }
}

TEST(BigUlong128, GivesItsHalves) {
    struct {
        USED value;
        unsigned long long high;
        unsigned long long low;
    } const cases[] = {
        // value              high                   low
        {{}, 0, 0},
        {{0}, 0, 0},
        {{7}, 0, 7},
        {{7, 1}, 0, 0x100000007},
        {{5, 0, 1}, 1, 5},
        {{1, 2, 3, 4}, 0x400000003, 0x200000001},
        {{F, F, F, F}, ~0ull, ~0ull},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(text_of(c.value));
        BIG_ULONG128 value;
        fill(value, c.value);
        EXPECT_EQ(value.get_high_qword(), c.high);
        EXPECT_EQ(value.get_low_qword(), c.low);
    }
}

TEST(BigUlong128, IsDefinedUntilItIsErased) {
    BIG_ULONG128 value;
    fill(value, {1, 2});
    EXPECT_TRUE(value.is_defined());
    value.erase();
    EXPECT_FALSE(value.is_defined());
    EXPECT_TRUE(same(value, {0, {1u, 2u, LEFTOVERS[2], LEFTOVERS[3]}})) << "the cells stay";
    value = 3u;
    EXPECT_TRUE(value.is_defined());
}

// ------------------------------------------------------------------------------------------------
// Properties
// ------------------------------------------------------------------------------------------------

/// Operands of every length whose sums, products and quotients come close to every edge.
class OPERANDS {
public:
    explicit OPERANDS(unsigned int seed) : m_random(seed) {}

    /// A number from 0 to `largest`.
    unsigned int up_to(unsigned int largest) {
        return static_cast<unsigned int>(m_random() % (largest + 1ull));
    }

    WIDE number() {
        switch (up_to(4)) {
        case 0: // of random bits
            return bits(up_to(128));
        case 1: // a power of two and its neighbours
            return (WIDE(1) << up_to(127)) + up_to(4) - 2;
        case 2: // a power of ten and its neighbours
            return power_of_ten(up_to(38)) + up_to(4) - 2;
        case 3: // all ones
            return ~WIDE(0) >> up_to(127);
        default: // of cells that are 0, 1, full or anything
            return number_of({cell(), cell(), cell(), cell()}) >> (32 * up_to(3));
        }
    }

    /// The cells of a number, at times erased.
    USED value() { return up_to(50) == 0 ? USED() : cells_of(number()); }

    /// Cells that may have zeros on top.
    USED any_cells() {
        USED used(up_to(4));
        for (unsigned int& each : used)
            each = cell();
        return used;
    }

private:
    unsigned int cell() {
        unsigned int const shapes[] = {0, 1, 0x80000000u, F, static_cast<unsigned int>(m_random())};
        return shapes[up_to(4)];
    }

    WIDE bits(unsigned int count) {
        WIDE const all = WIDE(m_random()) << 64 | m_random();
        return count == 0 ? 0 : all >> (128 - count);
    }

    static WIDE power_of_ten(unsigned int exponent) {
        WIDE power = 1;
        while (exponent-- > 0)
            power *= 10;
        return power;
    }

    std::mt19937_64 m_random;
};

constexpr unsigned int SEED = 20240229;

TEST(BigUlong128, AgreesWithTheMachine) {
    OPERANDS operands(SEED);
    BIG_ULONG128 x;
    BIG_ULONG128 y;
    for (int round = 0; round < 1500000 / FEWER; ++round) {
        WIDE const a = operands.number();
        WIDE const b = operands.number();
        fill(x, cells_of(a));
        fill(y, cells_of(b));
        std::string wrong;
        auto const check = [&](char const* what, bool agrees) {
            if (!agrees)
                wrong += std::string(what) + " ";
        };
        WIDE product = 0;
        unsigned int const word = static_cast<unsigned int>(b);
        check("+", a + b < a || is(cells_of(a + b), x + y));
        check("-", a < b || is(cells_of(a - b), x - y));
        check("*", __builtin_mul_overflow(a, b, &product) || is(cells_of(product), x * y));
        check("/", b == 0 || is(cells_of(a / b), x / y));
        check("%", b == 0 || is(cells_of(a % b), x % y));
        check("/ word", word == 0 || is(cells_of(a / word), x / word));
        check("==", (x == y) == (a == b) && (x != y) == (a != b));
        check("<", (x < y) == (a < b) && (x >= y) == (a >= b));
        check(">", (x > y) == (a > b) && (x <= y) == (a <= b));
        check("halves", x.get_high_qword() == static_cast<unsigned long long>(a >> 64)
                            && x.get_low_qword() == static_cast<unsigned long long>(a));
        ASSERT_EQ(wrong, "") << "seed " << SEED << ", round " << round << ": "
                             << testing::PrintToString(x) << " and " << testing::PrintToString(y);
    }
}

TEST(BigUlong128, FollowsTheRulesCellByCell) {
    OPERANDS operands(SEED + 1);
    std::map<std::string, int> seen;
    for (int round = 0; round < 45000 / FEWER; ++round) {
        USED const a = operands.value();
        USED const b = operands.value();
        for (OPERATOR const& op : OPERATORS) {
            bool const divides = *op.symbol == '/' || *op.symbol == '%';
            if (divides && b.empty())
                continue; // outside the rules
            SCOPED_TRACE("seed " + std::to_string(SEED + 1) + ", round " + std::to_string(round)
                         + ": " + text_of(a) + " " + op.symbol + " " + text_of(b));
            by_cells::VALUE expected = by_cells::zero();
            std::string const text =
                report_of([&] { expected = op.rule(rule_value_of(a), rule_value_of(b)); });
            by_cells::VALUE expected_target = rule_value_of(a);
            if (text.empty())
                by_cells::assign(expected_target, expected);
            ++seen[std::string(op.symbol) + " " + text];

            BIG_ULONG128 x;
            BIG_ULONG128 y;
            fill(x, a);
            fill(y, b);
            ASSERT_EQ(report_of([&] { ASSERT_TRUE(same(op.plain(x, y), expected)); }), text);
            ASSERT_TRUE(same(x, rule_value_of(a)));
            ASSERT_EQ(report_of([&] { op.compound(x, y); }), compound_text(op.symbol, text));
            ASSERT_TRUE(same(x, expected_target));
            ASSERT_TRUE(same(y, rule_value_of(b)));
            if (HasFatalFailure())
                return;
        }
        recording::clear();
    }
    for (char const* const outcome :
         {"+ ", "+ (m_length+1) <= BIG_ULONG128::MAX_CELL", "- ", "- Underflow", "* ", "* Overflow",
          "* (m_length+1) <= BIG_ULONG128::MAX_CELL", "/ ", "/ Division by Zero", "% ",
          "% Underflow", "% Division by Zero"})
        EXPECT_GT(seen[outcome], 0) << "never seen: " << outcome;
}

TEST(BigUlong128, PartialAddFollowsTheRulesCellByCell) {
    OPERANDS operands(SEED + 2);
    for (int round = 0; round < 200000 / FEWER; ++round) {
        USED const a = operands.any_cells();
        USED const b = operands.any_cells();
        int const shift = static_cast<int>(operands.up_to(9)) - 4;
        by_cells::VALUE expected = rule_value_of(a);
        std::string const text =
            report_of([&] { by_cells::partial_add(expected, shift, rule_value_of(b)); });
        if (!text.empty())
            expected = rule_value_of(a);

        BIG_ULONG128 value;
        fill(value, a);
        ASSERT_EQ(report_of([&] { value.partial_add(shift, value_of(b)); }), text)
            << "seed " << SEED + 2 << ", round " << round << ": " << text_of(a) << " shift "
            << shift << " " << text_of(b);
        ASSERT_TRUE(same(value, expected)) << "seed " << SEED + 2 << ", round " << round << ": "
                                           << text_of(a) << " shift " << shift << " " << text_of(b);
        recording::clear();
    }
}

TEST(BigUlong128, SumAndOrderFollowTheRulesForZerosOnTop) {
    OPERANDS operands(SEED + 3);
    for (int round = 0; round < QUICK_ROUNDS; ++round) {
        USED const a = operands.any_cells();
        USED const b = operands.any_cells();
        by_cells::VALUE const rule_a = rule_value_of(a);
        by_cells::VALUE const rule_b = rule_value_of(b);
        BIG_ULONG128 x;
        BIG_ULONG128 y;
        fill(x, a);
        fill(y, b);
        SCOPED_TRACE("seed " + std::to_string(SEED + 3) + ", round " + std::to_string(round));
        by_cells::VALUE expected = by_cells::zero();
        std::string const text = report_of([&] { expected = by_cells::sum(rule_a, rule_b); });
        ASSERT_EQ(report_of([&] { ASSERT_TRUE(same(x + y, expected)); }), text);
        ASSERT_EQ(x == y, by_cells::equal(rule_a, rule_b));
        ASSERT_EQ(x > y, by_cells::greater(rule_a, rule_b));
        if (HasFatalFailure())
            return;
        recording::clear();
    }
}

TEST(BigUlong128, DividesByOneCellAsTheRulesDo) {
    OPERANDS operands(SEED + 4);
    for (int round = 0; round < QUICK_ROUNDS; ++round) {
        USED const a = operands.value();
        unsigned int const divisor = static_cast<unsigned int>(operands.number()) | 1u;
        BIG_ULONG128 x;
        fill(x, a);
        ASSERT_TRUE(same(x / divisor, by_cells::quotient_by_word(rule_value_of(a), divisor)))
            << "seed " << SEED + 4 << ", round " << round << ": " << text_of(a) << " / " << divisor;
    }
}

} // namespace
