// The reader of value change dumps: every construct, every refusal, in pieces of every size.

#include "vcd_reader.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

namespace {

// ------------------------------------------------------------------------------------------------
// What a dump says, as text
// ------------------------------------------------------------------------------------------------

/// A dump in memory that comes in pieces.
class TEXT_SOURCE : public VCD_SOURCE {
public:
    TEXT_SOURCE(std::string_view text, std::size_t piece) : m_rest(text), m_piece(piece) {}

    std::size_t read(char* to, std::size_t size) override {
        std::size_t const count = m_rest.copy(to, std::min(size, m_piece));
        m_rest.remove_prefix(count);
        return count;
    }

private:
    std::string_view m_rest;
    std::size_t m_piece;
};

constexpr std::size_t WHOLE = static_cast<std::size_t>(-1);

enum class SELECTION { ALL, NONE };

/// The changes of a dump: "0 bit=1; 10 byte=00000101", each with the names of its variables. A
/// refusal ends them with its text.
std::string changes_of(std::string_view text, SELECTION selection = SELECTION::ALL,
                       std::size_t piece = WHOLE, std::size_t buffer_size = 4096) {
    TEXT_SOURCE source(text, piece);
    std::ostringstream out;
    try {
        VCD_READER reader(source, "dump", buffer_size);
        std::vector<std::string> names(reader.signal_count());
        for (VCD_VARIABLE const& variable : reader.variables()) {
            std::string& name = names[variable.signal];
            name += (name.empty() ? "" : ",") + variable.name;
            if (selection == SELECTION::ALL) {
                reader.select(variable.signal);
            }
        }
        VCD_CHANGE change;
        char const* separator = "";
        while (reader.next(change)) {
            out << separator << change.time << ' ' << names[change.signal] << '=' << change.value;
            separator = "; ";
        }
    } catch (VCD_ERROR const& error) {
        out << '!' << error.what();
    }
    return out.str();
}

/// The variables of a dump: "wire 8 tb.total[7:0] 0", the last number being that of the signal.
std::string variables_of(std::string_view text, std::size_t piece = WHOLE,
                         std::size_t buffer_size = 4096) {
    TEXT_SOURCE source(text, piece);
    std::ostringstream out;
    try {
        VCD_READER reader(source, "dump", buffer_size);
        char const* separator = "";
        for (VCD_VARIABLE const& variable : reader.variables()) {
            out << separator << variable.type << ' ' << variable.width << ' ' << variable.name
                << variable.range << ' ' << variable.signal;
            separator = "; ";
        }
    } catch (VCD_ERROR const& error) {
        out << '!' << error.what();
    }
    return out.str();
}

/// Expects the same from a reading in pieces of many sizes, single bytes among them, through
/// buffers that have to grow and through one that does not.
template <typename READING>
void expect_in_pieces(std::string const& expected, READING const& reading) {
    for (std::size_t const buffer_size : {1u, 16u, 4096u}) {
        for (std::size_t piece = 1; piece <= 24; ++piece) {
            ASSERT_EQ(reading(piece, buffer_size), expected)
                << "in pieces of " << piece << " bytes, through a buffer of " << buffer_size;
        }
    }
}

struct CASE {
    char const* why;
    std::string text;
    std::string expected;
};

/// Line 1 of the dumps below.
std::string const HEADER =
    "$timescale 1 ns $end $scope module t $end $var wire 1 ! bit $end $var reg 8 \" byte [7:0] "
    "$end "
    "$var real 64 # number $end $var event 1 $ happening $end $var string 1 % text $end "
    "$upscope $end $enddefinitions $end\n";

// ------------------------------------------------------------------------------------------------
// Declarations
// ------------------------------------------------------------------------------------------------

/// A dump without changes whose declarations, beside a timescale, are these.
std::string declaring(std::string const& declarations) {
    return "$timescale 1ns $end\n" + declarations + "\n$enddefinitions $end\n";
}

TEST(VcdReader, DeclarationsBecomeVariables) {
    // clang-format off
    CASE const cases[] = {
        // why                               declarations                              variables
        {"nothing is declared",              "", ""},
        {"a bit",                            "$var wire 1 ! clock $end",               "wire 1 clock 0"},
        {"a vector",                         "$var reg 8 ! total [7:0] $end",          "reg 8 total[7:0] 0"},
        {"the range is part of the name",    "$var reg 8 ! total[7:0] $end",           "reg 8 total[7:0] 0"},
        {"the range has blanks in it",       "$var reg 8 ! total [ 7 : 0 ] $end",      "reg 8 total[7:0] 0"},
        {"the range ascends, below zero",    "$var reg 3 ! x [-1:1] $end",             "reg 3 x[-1:1] 0"},
        {"one bit of a vector",              "$var wire 1 ! total [3] $end",           "wire 1 total[3] 0"},
        {"a word of an array",               "$var reg 4 ! memory[2] [3:0] $end",      "reg 4 memory[2][3:0] 0"},
        {"several dimensions",               "$var reg 4 ! memory [2] [3:0] $end",     "reg 4 memory[2][3:0] 0"},
        {"an escaped name with a bracket",   "$var reg 1 ! \\a[7:0] $end",             "reg 1 \\a[7:0] 0"},
        {"an escaped name with operators",   "$var reg 4 ! \\a+b$(c) [3:0] $end",      "reg 4 \\a+b$(c)[3:0] 0"},
        {"a name of other bytes",            "$var wire 1 ! h\xC3\xB6he $end",         "wire 1 h\xC3\xB6he 0"},

        {"scopes are joined with points",
         "$scope module tb $end $scope begin loop[1] $end $var wire 1 ! x $end $upscope $end $upscope $end",
         "wire 1 tb.loop[1].x 0"},
        {"a scope is left",
         "$scope module tb $end $scope task a $end $upscope $end $scope function b $end $var wire 1 ! x $end "
         "$upscope $end $upscope $end $var wire 1 \" y $end",
         "wire 1 tb.b.x 0; wire 1 y 1"},
        {"a scope is entered twice",
         "$scope module a $end $var wire 1 ! x $end $upscope $end $scope module a $end $var wire 1 \" y $end $upscope $end",
         "wire 1 a.x 0; wire 1 a.y 1"},
        {"scopes may stay open",             "$scope fork a $end $var wire 1 ! x $end", "wire 1 a.x 0"},
        {"any kind of scope will do",        "$scope interface a $end $var wire 1 ! x $end", "wire 1 a.x 0"},

        {"one code for two names",
         "$var wire 1 ! a $end $var reg 1 ! b $end $var wire 1 \" c $end",
         "wire 1 a 0; reg 1 b 0; wire 1 c 1"},
        {"codes of any printable characters",
         "$var wire 1 $ a $end $var wire 1 ~~ b $end $var wire 1 # c $end $var wire 1 \\ d $end $var wire 1 $var e $end",
         "wire 1 a 0; wire 1 b 1; wire 1 c 2; wire 1 d 3; wire 1 e 4"},
        {"long codes that differ at the end",
         "$var wire 1 top.a.b.c a $end $var wire 1 top.a.b.d b $end $var wire 1 top.a.b.c c $end",
         "wire 1 a 0; wire 1 b 1; wire 1 c 0"},
        {"codes of eight and nine characters",
         "$var wire 1 12345678 a $end $var wire 1 912345678 b $end $var wire 1 12345678 c $end",
         "wire 1 a 0; wire 1 b 1; wire 1 c 0"},

        {"the widest variable",              "$var reg 8388608 ! x $end",              "reg 8388608 x 0"},
        {"a width that means nothing",       "$var string 0 ! x $end $var real 0 \" y $end $var event 0 # z $end",
         "string 0 x 0; real 0 y 1; event 0 z 2"},

        {"remarks",
         "$comment of any words, $var and $ end $end $version $end $date $enddefinitions $end $var wire 1 ! x $end",
         "wire 1 x 0"},
        {"a command over several lines",     "$var\n\twire\r\n1\v!\fx\n[0:0]\n\n$end",   "wire 1 x[0:0] 0"},
    };
    // clang-format on
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        std::string const text = declaring(c.text);
        EXPECT_EQ(variables_of(text), c.expected);
        expect_in_pieces(c.expected, [&](std::size_t piece, std::size_t buffer_size) {
            return variables_of(text, piece, buffer_size);
        });
    }
}

TEST(VcdReader, EveryTypeOfVariableIsKnown) {
    struct ROW {
        VCD_KIND kind;
        char const* types;
    };
    ROW const rows[] = {
        {VCD_KIND::BITS, "wire reg integer parameter time supply0 supply1 tri tri0 tri1 triand "
                         "trior trireg wand wor logic bit byte shortint int longint enum"},
        {VCD_KIND::REAL, "real realtime shortreal real_parameter"},
        {VCD_KIND::EVENT, "event"},
        {VCD_KIND::TEXT, "string"},
    };
    for (ROW const& row : rows) {
        std::istringstream types(row.types);
        for (std::string type; types >> type;) {
            SCOPED_TRACE(type);
            std::string const text = declaring("$var " + type + " 1 ! x $end");
            TEXT_SOURCE source(text, WHOLE);
            VCD_READER const reader(source, "dump");
            EXPECT_EQ(reader.variables()[0].type, type);
            EXPECT_EQ(reader.variables()[0].kind, row.kind);
        }
    }
}

TEST(VcdReader, TimescaleGivesTheTimes) {
    struct ROW {
        char const* why;
        char const* text;
        long long count;
        char const* time;    // as the library prints it
        long long max_count; // 2^63 - 1 in picoseconds or femtoseconds
    };
    ROW const rows[] = {
        // why               text         count  time               largest count
        {"one word", "1ns", 5, "5.0 ns", 9223372036854775},
        {"two words", "1 ns", 5, "5.0 ns", 9223372036854775},
        {"two lines", "10\nps", 5, "50 ps", 922337203685477580},
        {"a hundred", "100 us", 7, "700.0 us", 92233720368},
        {"milliseconds", "1ms", 3, "3.0 ms", 9223372036},
        {"seconds", "100s", 3, "300.0 s", 92233},
        {"picoseconds", "1ps", 9223372036854775807, "9223372036854775807 ps", 9223372036854775807},
        {"capitals", "1 NS", 5, "5.0 ns", 9223372036854775},
        {"femtoseconds", "1 fs", 2500000, "2500000 fs", 9223372036854775807},
        {"ten of them", "10 fs", 250000, "2500000 fs", 922337203685477580},
        {"femtoseconds are cut", "100fs", 25009, "2500000 fs", 92233720368547758},
    };
    for (ROW const& row : rows) {
        SCOPED_TRACE(row.why);
        std::string const text =
            std::string("$timescale ") + row.text + " $end $enddefinitions $end\n";
        TEXT_SOURCE source(text, WHOLE);
        VCD_READER const reader(source, "dump");
        EXPECT_EQ(reader.timescale().time_of(row.count).to_raw_string(), row.time);
        EXPECT_EQ(reader.timescale().max_count(), row.max_count);
        EXPECT_GT(reader.timescale().time_of(row.max_count).get_time_value(), 0);
    }
}

TEST(VcdReader, OnlyFemtosecondsMayBeInexact) {
    struct ROW {
        int number;
        BIG_TIME::TIME_UNIT unit;
        long long count;
        bool is_exact;
        char const* text;
    };
    ROW const rows[] = {
        // number, unit             count  exact  text
        {1, BIG_TIME::UNIT_FS, 999, false, "999 fs"},
        {1, BIG_TIME::UNIT_FS, 1000, true, "1000 fs"},
        {10, BIG_TIME::UNIT_FS, 150, false, "1500 fs"},
        {10, BIG_TIME::UNIT_FS, 200, true, "2000 fs"},
        {100, BIG_TIME::UNIT_FS, 0, true, "0 fs"},
        {1, BIG_TIME::UNIT_PS, 1, true, "1 ps"},
        {100, BIG_TIME::UNIT_NS, 3, true, "300 ns"},
    };
    for (ROW const& row : rows) {
        SCOPED_TRACE(row.text);
        VCD_TIMESCALE const scale(row.number, row.unit);
        EXPECT_EQ(scale.is_exact(row.count), row.is_exact);
        EXPECT_EQ(scale.text_of(row.count), row.text);
    }
}

// ------------------------------------------------------------------------------------------------
// Value changes
// ------------------------------------------------------------------------------------------------

TEST(VcdReader, RecordsBecomeChanges) {
    // clang-format off
    CASE const cases[] = {
        // why                                records                          changes
        {"no records",                        "",                              ""},
        {"bits",                              "#0 0! #10 1! #20 x! #30 Z!",    "0 t.bit=0; 10 t.bit=1; 20 t.bit=x; 30 t.bit=Z"},
        {"the values of other languages",     "#1 u! w! h! l! -! U!",          "1 t.bit=u; 1 t.bit=w; 1 t.bit=h; 1 t.bit=l; 1 t.bit=-; 1 t.bit=U"},
        {"a vector of full width",            "#1 b10xz10xz \"",               "1 t.byte=10xz10xz"},
        {"a capital B",                       "#1 B11110000 \"",               "1 t.byte=11110000"},
        {"a bit as a vector",                 "#1 b1 !",                       "1 t.bit=1"},
        {"a vector as a bit",                 "#1 x\" 1\"",                    "1 t.byte=xxxxxxxx; 1 t.byte=00000001"},

        {"0 and 1 are extended with 0",       "#1 b0 \" b1 \" b101 \"",        "1 t.byte=00000000; 1 t.byte=00000001; 1 t.byte=00000101"},
        {"x and z with themselves",           "#1 bx \" bz1 \" bX0 \" bZ \"",  "1 t.byte=xxxxxxxx; 1 t.byte=zzzzzzz1; 1 t.byte=XXXXXXX0; 1 t.byte=ZZZZZZZZ"},
        {"0 in front of x counts",            "#1 b0x \" b0z1 \"",             "1 t.byte=0000000x; 1 t.byte=000000z1"},
        {"u, w and - with themselves",        "#1 bu \" bW0 \" b-1 \"",        "1 t.byte=uuuuuuuu; 1 t.byte=WWWWWWW0; 1 t.byte=-------1"},
        {"h and l with 0",                    "#1 bh \" bL \"",                "1 t.byte=0000000h; 1 t.byte=0000000L"},

        {"real numbers",                      "#1 r1.5 # r-0 # R1e-9 # rNaN # r-inf #",
         "1 t.number=1.5; 1 t.number=-0; 1 t.number=1e-9; 1 t.number=NaN; 1 t.number=-inf"},
        {"a real number beyond a double",     "#1 r1e999 #",                   "1 t.number=1e999"},
        {"texts",                             "#1 sIDLE % s % s\\040 %",       "1 t.text=IDLE; 1 t.text=; 1 t.text=\\040"},
        {"events",                            "#1 1$ #2 1$ 1$",                "1 t.happening=; 2 t.happening=; 2 t.happening="},
        {"an event that is only listed",      "#0 $dumpvars 1$ $end #1 1$",    "1 t.happening="},

        {"a change before any time",          "1! #5 0!",                      "0 t.bit=1; 5 t.bit=0"},
        {"one time twice",                    "#5 0! #5 1!",                   "5 t.bit=0; 5 t.bit=1"},
        {"times without changes",             "#5 #6 #7 0! #8",                "7 t.bit=0"},
        {"the latest time",                   "#9223372036854775 0!",          "9223372036854775 t.bit=0"},
        {"leading zeros of a time",           "#007 0!",                       "7 t.bit=0"},

        {"lists of values",
         "#0 $dumpvars 0! b1 \" $end #1 $dumpoff x! $end #2 $dumpon 1! $end #3 $dumpall 1! $end",
         "0 t.bit=0; 0 t.byte=00000001; 1 t.bit=x; 2 t.bit=1; 3 t.bit=1"},
        {"empty lists",                       "#0 $dumpvars $end $dumpoff $end", ""},
        {"a time inside a list",              "$dumpvars #0 0! $end #1 1!",    "0 t.bit=0; 1 t.bit=1"},
        {"remarks between and in lists",      "$comment #9 1! $end #1 0! $dumpall $comment x $end 1! $end", "1 t.bit=0; 1 t.bit=1"},

        {"other white space",                 "#1\r\n0!\r\nb1\t\"\v1!\f#2\n\n\n0!", "1 t.bit=0; 1 t.byte=00000001; 1 t.bit=1; 2 t.bit=0"},
        {"a value and its code on two lines", "#1\nb1\n\n\n\"\n",              "1 t.byte=00000001"},
    };
    // clang-format on
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        std::string const text = HEADER + c.text + "\n";
        EXPECT_EQ(changes_of(text), c.expected);
        EXPECT_EQ(changes_of(text, SELECTION::NONE), "");
        expect_in_pieces(c.expected, [&](std::size_t piece, std::size_t buffer_size) {
            return changes_of(text, SELECTION::ALL, piece, buffer_size);
        });
    }
}

TEST(VcdReader, NamesWithOneCodeChangeTogether) {
    std::string const text =
        declaring("$var wire 1 ! a $end $var wire 1 ! b $end $var wire 1 !! c $end")
        + "#1 1! 0!!\n";
    EXPECT_EQ(changes_of(text), "1 a,b=1; 1 c=0");
}

TEST(VcdReader, OnlySelectedSignalsAreReported) {
    std::string const text =
        declaring("$var wire 1 ! a $end $var wire 1 \" b $end") + "#1 1! 0\" #2 0! 1\"\n";
    TEXT_SOURCE source(text, WHOLE);
    VCD_READER reader(source, "dump");
    reader.select(1);
    VCD_CHANGE change;
    ASSERT_TRUE(reader.next(change));
    EXPECT_EQ(change.time, 1);
    EXPECT_EQ(change.signal, 1u);
    EXPECT_EQ(change.value, "0");
    ASSERT_TRUE(reader.next(change));
    EXPECT_EQ(change.time, 2);
    EXPECT_FALSE(reader.next(change));
}

TEST(VcdReader, PlaceIsThatOfTheChange) {
    std::string const text = HEADER + "#1\n\n0!\nb1\n\"\n";
    TEXT_SOURCE source(text, 5);
    VCD_READER reader(source, "dump", 4);
    reader.select(0);
    reader.select(1);
    VCD_CHANGE change;
    ASSERT_TRUE(reader.next(change));
    EXPECT_EQ(reader.place(), "dump:4");
    ASSERT_TRUE(reader.next(change));
    EXPECT_EQ(reader.place(), "dump:5");
}

TEST(VcdReader, WidestValuesAreReadWhole) {
    constexpr std::size_t WIDTH = VCD_READER::WIDEST_VARIABLE;
    std::string value(WIDTH, 'x');
    value.front() = '1';
    value.back() = '0';
    std::string const text =
        declaring("$var wire " + std::to_string(WIDTH) + " ! a $end") + "b" + value + " !\nbz1 !\n";
    TEXT_SOURCE source(text, WHOLE);
    VCD_READER reader(source, "dump");
    reader.select(0);
    VCD_CHANGE change;
    ASSERT_TRUE(reader.next(change));
    EXPECT_TRUE(change.value == value);
    ASSERT_TRUE(reader.next(change));
    EXPECT_TRUE(change.value == std::string(WIDTH - 1, 'z') + "1");
}

// ------------------------------------------------------------------------------------------------
// Refusals
// ------------------------------------------------------------------------------------------------

TEST(VcdReader, BrokenDeclarationsAreRefusedWithPlaceAndReason) {
    // clang-format off
    CASE const cases[] = {
        // why                             dump        refusal
        {"an empty file",                  "",         "1: the file is empty; expected a value change dump"},
        {"a file of white space",          "\n \n",    "3: the file ends in front of $enddefinitions"},
        {"another text",                   "Dear all,\n",
         "1: unexpected \"Dear\" in the declarations; expected a command such as $var or $enddefinitions"},
        {"a compressed file",              "\x1F\x8B\b\n", "1: the byte 0x1F is not text; expected a value change dump, which is plain text"},
        {"a zero byte",                    {"$date\nto\0day $end\n", 18}, "2: the byte 0x00 is not text; expected a value change dump, which is plain text"},
        {"a control character in a name",  "$scope module a\x7F $end\n", "1: the byte 0x7F is not text; expected a value change dump, which is plain text"},

        {"no $enddefinitions",             "$timescale 1 ns $end\n$var wire 1 ! x $end\n",
         "3: the file ends in front of $enddefinitions"},
        {"changes, but no $enddefinitions", "$timescale 1 ns $end\n$var wire 1 ! x $end\n#0\n0!\n",
         "3: unexpected \"#0\" in the declarations; expected a command such as $var or $enddefinitions"},
        {"an unknown command",             "$timescale 1 ns $end\n$vars wire\n",
         "2: unexpected \"$vars\" in the declarations; expected a command such as $var or $enddefinitions"},
        {"a command of the changes",       "$dumpvars $end\n",
         "1: unexpected \"$dumpvars\" in the declarations; expected a command such as $var or $enddefinitions"},
        {"a stray $end",                   "$date $end $end\n",
         "1: unexpected \"$end\" in the declarations; expected a command such as $var or $enddefinitions"},
        {"an open remark",                 "\n$comment\nto be\ncontinued\n",
         "5: the file ends inside the $comment of line 2; expected $end"},
        {"an open $enddefinitions",        "$timescale 1 ns $end\n$enddefinitions\n#0\n",
         "3: unexpected \"#0\" in the $enddefinitions; expected $end"},
        {"the end of the file in $var",    "$var wire 1\n", "2: the file ends inside the $var of line 1; expected $end"},

        {"no timescale",                   "$enddefinitions\n$end\n",
         "2: the declarations have no $timescale; expected one such as $timescale 1 ns $end"},
        {"two timescales",                 "$timescale 1 ns $end\n$timescale 1 ns $end\n",
         "2: a second $timescale; expected one"},
        {"an empty timescale",             "$timescale $end\n",
         "1: the $timescale ends too early; expected a time such as 1 ns"},
        {"a timescale without a unit",     "$timescale 10 $end\n",
         "1: the $timescale ends too early; expected a unit from fs to s"},
        {"a timescale without a number",   "$timescale ns $end\n",
         "1: the timescale \"ns\" is not one; expected 1, 10 or 100 and a unit from fs to s"},
        {"another number",                 "$timescale\n5 ns $end\n",
         "2: the timescale \"5ns\" is not one; expected 1, 10 or 100 and a unit from fs to s"},
        {"a number with zeros in front",   "$timescale 01ns $end\n",
         "1: the timescale \"01ns\" is not one; expected 1, 10 or 100 and a unit from fs to s"},
        {"a fraction",                     "$timescale 1.0 ns $end\n",
         "1: the timescale \"1.0\" is not one; expected 1, 10 or 100 and a unit from fs to s"},
        {"a frequency",                    "$timescale 1 MHz $end\n",
         "1: the timescale \"1MHz\" is not one; expected 1, 10 or 100 and a unit from fs to s"},
        {"another unit",                   "$timescale 1 min $end\n",
         "1: the timescale \"1min\" is not one; expected 1, 10 or 100 and a unit from fs to s"},
        {"an inner unit of the library",   "$timescale 1 ten_th_ns $end\n",
         "1: the timescale \"1ten_th_ns\" is not one; expected 1, 10 or 100 and a unit from fs to s"},
        {"more than a timescale",          "$timescale 1 ns or so $end\n",
         "1: unexpected \"or\" in the $timescale; expected $end"},

        {"a scope without a name",         "$scope module $end\n", "1: the $scope ends too early; expected a scope's name"},
        {"a scope without anything",       "$scope $end\n",        "1: the $scope ends too early; expected a kind of scope"},
        {"a scope with more",              "$scope module a b $end\n", "1: unexpected \"b\" in the $scope; expected $end"},
        {"too many $upscope",              "$scope module a $end\n$upscope $end\n$upscope $end\n",
         "3: $upscope outside every scope; expected a $scope for it"},
        {"$upscope with a name",           "$scope module a $end\n$upscope a $end\n", "2: unexpected \"a\" in the $upscope; expected $end"},

        {"a variable of nothing",          "$var $end\n",               "1: the $var ends too early; expected a variable's type"},
        {"a variable without a width",     "$var wire $end\n",          "1: the $var ends too early; expected a width"},
        {"a variable without a code",      "$var wire 1 $end\n",        "1: the $var ends too early; expected an identifier code"},
        {"a variable without a name",      "$var wire 1 ! $end\n",      "1: the $var ends too early; expected a variable's name"},
        {"an unknown type",                "$var wires 1 ! x $end\n",   "1: unknown type of variable \"wires\"; expected one such as wire, reg or real"},
        {"no bits",                        "$var wire 0 ! x $end\n",    "1: the width \"0\" is not one; expected 1 to 8388608 bits"},
        {"a bit too many",                 "$var wire 8388609 ! x $end\n", "1: the width \"8388609\" is not one; expected 1 to 8388608 bits"},
        {"bits beyond any number",         "$var wire 99999999999 ! x $end\n", "1: the width \"99999999999\" is not one; expected 1 to 8388608 bits"},
        {"a negative width",               "$var wire -1 ! x $end\n",   "1: the width \"-1\" is not one; expected 1 to 8388608 bits"},
        {"a width that is a word",         "$var wire 8bit ! x $end\n", "1: the width \"8bit\" is not one; expected 1 to 8388608 bits"},
        {"a code of other characters",     "$var wire 1 \xC3\xA4 x $end\n",
         "1: the identifier code \"\\xC3\\xA4\" is not one; expected printable ASCII"},
        {"something behind the name",      "$var wire 1 ! x y\n$end\n",
         "1: unexpected \"y\" behind the name \"x\"; expected a range such as [7:0] or $end"},
        {"an open range",                  "$var wire 8 ! x [7:0 $end\n",
         "1: the range \"[7:0\" of \"x\" is open; expected ]"},
        {"a range that closes twice",      "$var wire 8 ! x [7:0] ] $end\n",
         "1: unexpected \"]\" behind the name \"x\"; expected a range such as [7:0] or $end"},
        {"a range without end",            "$var wire 8 ! x [" + std::string(1000, '7') + "\n\n7 $end\n",
         "3: unexpected \"7\" behind the name \"x\"; expected a range such as [7:0] or $end"},
        {"one code for two widths",        "$scope module t $end\n$var wire 1 ! x $end\n$var wire 8 ! y [7:0] $end\n",
         "3: t.y has the identifier code \"!\" of a variable of another type or width; expected equal ones"},
        {"one code for two types",         "$var wire 1 ! x $end\n$var real 1 ! y $end\n",
         "2: y has the identifier code \"!\" of a variable of another type or width; expected equal ones"},
    };
    // clang-format on
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        std::string const expected = "!dump:" + c.expected;
        EXPECT_EQ(variables_of(c.text), expected);
        expect_in_pieces(expected, [&](std::size_t piece, std::size_t buffer_size) {
            return variables_of(c.text, piece, buffer_size);
        });
    }
}

TEST(VcdReader, BrokenRecordsAreRefusedWithPlaceAndReason) {
    // clang-format off
    CASE const cases[] = {
        // why                            records                  refusal
        {"cut inside a time",             "#10",                   "2: the file ends inside the word \"#10\"; expected white space behind it: was the dump cut short?"},
        {"cut inside a bit",              "#1\n0",                 "3: the file ends inside the word \"0\"; expected white space behind it: was the dump cut short?"},
        {"cut inside a code",             "#1\n0!",                "3: the file ends inside the word \"0!\"; expected white space behind it: was the dump cut short?"},
        {"cut inside a vector",           "#1\nb10",               "3: the file ends inside the word \"b10\"; expected white space behind it: was the dump cut short?"},
        {"cut behind a vector",           "#1\nb10 ",              "3: the file ends behind the value \"b10\"; expected an identifier code"},
        {"cut behind a vector's line",    "#1\nb10\n",             "4: the file ends behind the value \"b10\"; expected an identifier code"},
        {"cut inside a list",             "#0\n$dumpvars\n0!\n",   "5: the file ends inside the $dumpvars of line 3; expected $end"},
        {"cut inside a remark",           "$comment 0!\n",         "3: the file ends inside the $comment of line 2; expected $end"},

        {"an unknown code",               "#0\n0!\n0&\n",          "4: the identifier code \"&\" is unknown; expected one of a $var"},
        {"an unknown code of a vector",   "b0\n&\n",               "3: the identifier code \"&\" is unknown; expected one of a $var"},
        {"an unknown long code",          "0!!!!!!!!!\n",          "2: the identifier code \"!!!!!!!!!\" is unknown; expected one of a $var"},
        {"a code of other characters",    "0\xFF\n",               "2: the identifier code \"\\xFF\" is unknown; expected one of a $var"},
        {"a bit without a code",          "0\n!\n",                "2: the value \"0\" has no identifier code; expected one directly behind it"},

        {"a character that is no bit",    "2!\n",                  "2: unexpected \"2!\"; expected #time, a $command, or a value: one of 0 1 x z b r s and the rest"},
        {"a word",                        "\ntoday\n",             "3: unexpected \"today\"; expected #time, a $command, or a value: one of 0 1 x z b r s and the rest"},
        {"a value of an extended dump",   "pD 6 6 <0\n",           "2: unexpected \"pD\"; expected #time, a $command, or a value: one of 0 1 x z b r s and the rest"},
        {"a bad digit of a vector",       "b0120 \"\n",            "2: the value \"b0120\" is not one; expected b and digits of 0 1 x z u w h l -"},
        {"a vector without digits",       "b \"\n",                "2: the value \"b\" is not one; expected b and digits of 0 1 x z u w h l -"},
        {"a vector and code in one word", "b01\"\n",               "2: the value \"b01\"\" is not one; expected b and digits of 0 1 x z u w h l -"},
        {"a vector with a bit too many",  "b000000000 \"\n",       "2: a value of 9 bits for a variable of 8; expected no more than that"},
        {"a vector for a bit",            "b10\n!\n",              "2: a value of 2 bits for a variable of 1; expected no more than that"},
        {"a real number that is none",    "r1.5x #\n",             "2: the value \"r1.5x\" is not one; expected r and a decimal number"},
        {"a real number with a comma",    "r1,5 #\n",              "2: the value \"r1,5\" is not one; expected r and a decimal number"},
        {"a real number of nothing",      "r #\n",                 "2: the value \"r\" is not one; expected r and a decimal number"},
        {"a real number with a plus sign", "r+1 #\n",              "2: the value \"r+1\" is not one; expected r and a decimal number"},

        {"bits for a real number",        "0#\n",                  "2: a value of another kind than its variable's: it is bits; expected a real number"},
        {"a vector for a text",           "b0 %\n",                "2: a value of another kind than its variable's: it is bits; expected text"},
        {"a real number for bits",        "r1\n\"\n",              "2: a value of another kind than its variable's: it is a real number; expected bits"},
        {"a real number for an event",    "r1 $\n",                "2: a value of another kind than its variable's: it is a real number; expected an event"},
        {"a text for a bit",              "shigh !\n",             "2: a value of another kind than its variable's: it is text; expected bits"},

        {"a time of nothing",             "#\n",                   "2: the time \"#\" is not one; expected # and decimal digits"},
        {"a negative time",               "#-1\n",                 "2: the time \"#-1\" is not one; expected # and decimal digits"},
        {"a time with a fraction",        "#1.5\n",                "2: the time \"#1.5\" is not one; expected # and decimal digits"},
        {"a time with a sign",            "#+1\n",                 "2: the time \"#+1\" is not one; expected # and decimal digits"},
        {"a time that goes back",         "#5\n#6\n0!\n#5\n",      "5: the time goes back from #6 to #5; expected no earlier time"},
        {"a time of one count too many",  "#9223372036854776\n",   "2: the time \"#9223372036854776\" is too late; expected at most #9223372036854775, as a time must fit 64 bits"},
        {"a time beyond any number",      "#99999999999999999999\n", "2: the time \"#99999999999999999999\" is too late; expected at most #9223372036854775, as a time must fit 64 bits"},

        {"a declaration",                 "$var wire 1 & x $end\n", "2: unexpected \"$var\"; expected a value change, #time, $comment, $dumpvars, $dumpall, $dumpon or $dumpoff"},
        {"an unknown command",            "$dump\n",               "2: unexpected \"$dump\"; expected a value change, #time, $comment, $dumpvars, $dumpall, $dumpon or $dumpoff"},
        {"a stray $end",                  "#0\n$end\n",            "3: unexpected \"$end\"; expected a value change, #time, $comment, $dumpvars, $dumpall, $dumpon or $dumpoff"},
        {"a list inside a list",          "$dumpvars\n$dumpoff\n", "3: unexpected \"$dumpoff\" in the $dumpvars of line 2; expected a value change or $end"},
        {"a declaration inside a list",   "$dumpall\n$scope\n",    "3: unexpected \"$scope\" in the $dumpall of line 2; expected a value change or $end"},

        {"a zero byte",                   {"#0\n\0", 4},           "3: the byte 0x00 is not text; expected a value change dump, which is plain text"},
        {"a zero byte in a word",         {"#0\nb1\0 \"\n", 10},   "3: the byte 0x00 is not text; expected a value change dump, which is plain text"},
        {"a control character",           "#0\n0\x1B!\n",          "3: the byte 0x1B is not text; expected a value change dump, which is plain text"},
        {"a long word",                   std::string(50, '?') + "\n",
         "2: unexpected \"" + std::string(40, '?') + "...\"; expected #time, a $command, or a value: one of 0 1 x z b r s and the rest"},
    };
    // clang-format on
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        std::string const text = HEADER + c.text;
        for (SELECTION const selection : {SELECTION::ALL, SELECTION::NONE}) {
            std::string const changes = changes_of(text, selection);
            // What stands in front of the broken place has been reported.
            EXPECT_EQ(changes.substr(std::min(changes.find('!'), changes.size())),
                      "!dump:" + c.expected);
            expect_in_pieces(changes, [&](std::size_t piece, std::size_t buffer_size) {
                return changes_of(text, selection, piece, buffer_size);
            });
        }
    }
}

TEST(VcdReader, WhatNeverEndsIsRefusedBeforeItFillsTheMemory) {
    /// A dump that goes on for ever with one character.
    class ENDLESS_SOURCE : public VCD_SOURCE {
    public:
        ENDLESS_SOURCE(std::string start, char c) : m_start(std::move(start)), m_character(c) {}
        std::size_t read(char* to, std::size_t size) override {
            size = std::min(size, m_start.empty() ? size : m_start.size());
            m_start.empty() ? std::fill_n(to, size, m_character)
                            : std::copy_n(m_start.data(), size, to);
            m_start.erase(0, size);
            m_bytes += size;
            return size;
        }
        std::size_t bytes() const { return m_bytes; }

    private:
        std::string m_start;
        char m_character;
        std::size_t m_bytes = 0;
    };
    struct ROW {
        char const* why;
        char const* start;
        char character;
    };
    ROW const rows[] = {
        {"a value", "b", '0'},
        {"a remark of one word", "$comment ", 'x'},
        {"the code of a value", "b0 ", 'x'},
        {"blanks in front of a code", "b0 ", ' '},
        {"line ends", "\n", '\n'},
    };
    for (ROW const& row : rows) {
        SCOPED_TRACE(row.why);
        ENDLESS_SOURCE source(HEADER + row.start, row.character);
        VCD_READER reader(source, "dump");
        VCD_CHANGE change;
        try {
            reader.next(change);
            ADD_FAILURE() << "nothing was refused";
        } catch (VCD_ERROR const& error) {
            EXPECT_NE(std::string(error.what()).find("a record of more than 16777216 bytes"),
                      std::string::npos)
                << error.what();
        }
        EXPECT_LT(source.bytes(), 40u * 1024 * 1024);
    }
}

// ------------------------------------------------------------------------------------------------
// Simulated dumps
// ------------------------------------------------------------------------------------------------

std::string simulated_dump() {
    std::ifstream file(BIG_SOURCE_ROOT "/examples/accumulator.vcd");
    std::string const text((std::istreambuf_iterator<char>(file)), {});
    EXPECT_GT(text.size(), 1000u);
    return text;
}

TEST(VcdReader, SimulatedDumpReadsTheSameInPiecesOfEverySize) {
    std::string const text = simulated_dump();
    std::string const expected = changes_of(text);
    EXPECT_EQ(expected.find('!'), std::string::npos) << expected;
    for (std::size_t piece = 1; piece < 300; ++piece) {
        ASSERT_EQ(changes_of(text, SELECTION::ALL, piece, 64), expected) << piece;
    }
}

TEST(VcdReader, DumpThatIsCutAnywhereInsideARecordIsRefused) {
    std::string const text = simulated_dump().substr(0, 2000);
    std::size_t const changes_begin = text.find("#0\n");
    std::string const changes = changes_of(text);
    for (std::size_t length = 0; length < text.size(); ++length) {
        std::string_view const cut(text.data(), length);
        std::string const result = changes_of(cut);
        // Only between two records nobody can tell.
        bool const is_between = length >= changes_begin && cut.back() == '\n';
        bool const is_inside_list =
            cut.rfind("$dumpvars\n") != cut.npos && cut.rfind("$end\n") < cut.rfind("$dumpvars\n");
        if (is_between && !is_inside_list) {
            ASSERT_EQ(result, changes.substr(0, result.size())) << "cut at " << length;
        } else {
            ASSERT_NE(result.find('!'), std::string::npos) << "cut at " << length;
        }
    }
}

TEST(VcdReader, DamagedDumpIsReadOrRefused) {
    constexpr unsigned int SEED = 20260418;
    SCOPED_TRACE("seed " + std::to_string(SEED));
    std::mt19937 random(SEED);
    std::string const text = simulated_dump();
    std::set<bool> outcomes;
    for (int round = 0; round < 1000; ++round) {
        std::string damaged = text;
        for (unsigned int i = 0; i <= random() % 3; ++i) {
            damaged[random() % damaged.size()] = static_cast<char>(random());
        }
        outcomes.insert(changes_of(damaged, SELECTION::ALL, 1 + random() % 500, 32).find('!')
                        == std::string::npos);
    }
    EXPECT_EQ(outcomes.size(), 2u); // both happen
}

// ------------------------------------------------------------------------------------------------
// Identifier codes
// ------------------------------------------------------------------------------------------------

/// The code with a number, as simulators count them: ! to ~, then !! and so on.
std::string code_of(std::size_t number) {
    std::string code;
    do {
        code += static_cast<char>('!' + number % 94);
        number = number / 94;
    } while (number-- > 0);
    return code;
}

TEST(VcdCodeTable, EveryCodeFindsItsSignal) {
    constexpr std::size_t COUNT = 100'000;
    VCD_CODE_TABLE table;
    for (std::size_t i = 0; i < COUNT; ++i) {
        ASSERT_EQ(table.find(code_of(i)), VCD_CODE_TABLE::NONE) << code_of(i);
        table.add(code_of(i), i);
    }
    for (std::size_t i = 0; i < COUNT; ++i) {
        ASSERT_EQ(table.find(code_of(i)), i) << code_of(i);
    }
    EXPECT_EQ(table.find(code_of(COUNT)), VCD_CODE_TABLE::NONE);
}

TEST(VcdCodeTable, CodesOfEveryLengthDiffer) {
    VCD_CODE_TABLE table;
    for (std::size_t length = 1; length < 30; ++length) {
        table.add(std::string(length, '!'), length);
        table.add(std::string(length, '~'), 100 + length);
    }
    for (std::size_t length = 1; length < 30; ++length) {
        EXPECT_EQ(table.find(std::string(length, '!')), length);
        EXPECT_EQ(table.find(std::string(length, '~')), 100 + length);
        EXPECT_EQ(table.find(std::string(length, '"')), VCD_CODE_TABLE::NONE);
    }
}

} // namespace
