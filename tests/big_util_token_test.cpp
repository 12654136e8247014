// The tokens of a time text and the unit that one of them names.

#include "printing.h"
#include "time_library.h"
#include "time_samples.h"

namespace {

std::vector<recording::CALL> const SILENCE;

struct TOKEN_ROW {
    char const* why;
    std::string text;
    bool none;
    bool one;
    std::string left; // in the argument afterwards
    int unit;         // 15: none of them
};

// clang-format off
TOKEN_ROW const TOKENS[] = {
    // why                                text                     none   one    left                     unit
    {"no token",                         "",                      true,  false, "",                      0},
    {"no token",                         " ",                     true,  false, "",                      0},
    {"no token",                         " \t\n \n\t",            true,  false, "",                      0},
    {"one token",                        "ns",                    false, true,  "ns",                    3},
    {"one token",                        "furlong",               false, true,  "furlong",               15},
    {"one token",                        "15",                    false, true,  "15",                    15},
    {"one token with delimiters around", " \t\nms \t\n",          false, true,  "ms",                    5},
    {"two tokens",                       "ns ps",                 false, false, "",                      15},
    {"two tokens",                       "n s",                   false, false, "",                      15},
    {"two tokens",                       "ns\tns",                false, false, "",                      15},
    {"two tokens",                       "n\ns",                  false, false, "",                      15},
    {"three tokens",                     "ten th ns",             false, false, "",                      15},
    // these are blanks elsewhere, but not between tokens
    {"a carriage return is a character", "\r",                    false, true,  "\r",                    15},
    {"a carriage return is a character", "ns\r\n",                false, true,  "ns\r",                  15},
    {"a carriage return is a character", "\r ns",                 false, false, "",                      15},
    {"a vertical tab is a character",    "\vns",                  false, true,  "\vns",                  15},
    {"a form feed is a character",       "n\fs",                  false, true,  "n\fs",                  15},
    {"bytes above 127 are characters",   "\xa0",                  false, true,  "\xa0",                  15},
    {"bytes above 127 are characters",   "\xc2\xb5s",             false, true,  "\xc2\xb5s",             15},
    {"NUL is a character",               std::string("\0", 1),    false, true,  std::string("\0", 1),    15},
    {"NUL is a character",               std::string("a\0b ", 4), false, true,  std::string("a\0b", 3),  15},
    {"a lone S is the second",           "S",                     false, true,  "S",                     6},
    {"a lone S is the second",           "s",                     false, true,  "s",                     6},
    {"a unit within a longer word",      "nss",                   false, true,  "nss",                   15},
    {"a unit within a longer word",      "ns.",                   false, true,  "ns.",                   15},
    {"the beginning of a unit",          "M",                     false, true,  "M",                     15},
    {"the beginning of a unit",          "ten_th_n",              false, true,  "ten_th_n",              15},
    {"almost the tenth of a nanosecond", "ten_th-ns",             false, true,  "ten_th-ns",             15},
    // 0x5f and 0x7f differ by the bit that tells letters' cases apart
    {"almost the tenth of a nanosecond", "ten\x7fth\x7fns",       false, true,  "ten\x7fth\x7fns",       15},
    {"almost picoseconds",               std::string("p\x13", 2), false, true,  std::string("p\x13", 2), 15},
};
// clang-format on

TEST(BigUtilToken, TextsAreSplitOnSpaceTabAndLineFeed) {
    for (TOKEN_ROW const& row : TOKENS) {
        SCOPED_TRACE(words(std::string(row.why), row.text));
        expect_of_both(
            [&](auto& times) {
                std::string left = row.text;
                bool const none = times.is_no_token(row.text);
                bool const one = times.is_one_token(left);
                return words(none, one, left, times.get_time_unit(row.text));
            },
            {words(row.none, row.one, row.left, row.unit), SILENCE});
    }
}

struct UNIT_ROW {
    BIG_TIME::TIME_UNIT unit;
    std::vector<char const*> names;
};

// clang-format off
UNIT_ROW const UNITS[] = {
    // unit                     some of its names
    {BIG_TIME::UNIT_FS,        {"fs", "FS", "Fs", "fS"}},
    {BIG_TIME::UNIT_PS,        {"ps", "PS", "Ps", "pS"}},
    {BIG_TIME::UNIT_NS,        {"ns", "NS", "Ns", "nS"}},
    {BIG_TIME::UNIT_US,        {"us", "US", "Us", "uS"}},
    {BIG_TIME::UNIT_MS,        {"ms", "MS", "Ms", "mS"}},
    {BIG_TIME::UNIT_S,         {"s", "S"}},
    {BIG_TIME::UNIT_HZ,        {"Hz", "HZ", "hz", "hZ"}},
    {BIG_TIME::UNIT_KHZ,       {"kHz", "KHZ", "khz", "Khz", "kHZ"}},
    {BIG_TIME::UNIT_MHZ,       {"MHz", "MHZ", "mhz", "mHz", "Mhz"}},
    {BIG_TIME::UNIT_GHZ,       {"GHz", "GHZ", "ghz", "gHz"}},
    {BIG_TIME::UNIT_TEN_TH_NS, {"ten_th_ns", "TEN_TH_NS", "Ten_Th_Ns", "tEN_tH_nS"}},
    {BIG_TIME::UNIT_BPS,       {"bps", "BPS", "Bps", "bPs"}},
    {BIG_TIME::UNIT_MBPS,      {"Mbps", "MBPS", "mbps", "MbPs"}},
    {BIG_TIME::UNIT_GBPS,      {"Gbps", "GBPS", "gbps", "gBpS"}},
};
// clang-format on

TEST(BigUtilToken, EveryUnitIsFoundByItsNameInAnyLetterCase) {
    recording::clear();
    for (UNIT_ROW const& row : UNITS)
        for (std::string const name : row.names)
            for (std::string const& text : {name, " " + name, name + "\n", "\t" + name + " "})
                EXPECT_EQ(big_get_time_unit(text), row.unit) << in_quotes(text);
    EXPECT_EQ(recording::reports(), SILENCE);
}

// The comparison of names takes C strings, which end at the first NUL.
TEST(BigUtilToken, AUnitNameEndsAtNul) {
    expect_of_both(
        [](auto& times) {
            return words(times.get_time_unit(std::string("ns\0x", 4)),
                         times.get_time_unit(std::string("ns\0", 3)),
                         times.get_time_unit(std::string("\0ns", 3)),
                         times.get_time_unit(std::string("ns\0 x", 5)));
        },
        {"3 3 15 15", SILENCE});
}

// Whenever the library asks the platform's tokenizer, it asks for a plain splitter.
TEST(BigUtilToken, TheTokenizerIsAPlainSplitter) {
    recording::clear();
    big_is_no_token("ns ps");
    std::string s = " a b ";
    big_is_one_token(s);
    big_get_time_unit(" ns \t ps ");
    std::vector<recording::CALL> const made = recording::calls_of("KTL_TOKENIZER");
    EXPECT_FALSE(made.empty());
    for (recording::CALL const& call : made)
        EXPECT_EQ(call,
                  (recording::CALL{"KTL_TOKENIZER", {" \t\n", "false", "", "", "", "false"}}));
}

TEST(BigUtilToken, ALongTextIsOneToken) {
    std::string const word(100000, 'x');
    std::string text = "  " + word + "\n";
    EXPECT_TRUE(big_is_one_token(text));
    EXPECT_EQ(text, word);
    EXPECT_EQ(big_get_time_unit(text), BIG_TIME::MAX_TIME_UNIT);
}

// A name with any byte in any place: nothing but the other letter case is the same name.
TEST(BigUtilToken, NoOtherByteStandsForALetter) {
    for (int unit = 1; unit < 15; ++unit) {
        std::string const name = BIG_TIME::s_unit_strings[unit];
        for (std::size_t place = 0; place < name.size(); ++place) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string text = name;
                text[place] = static_cast<char>(byte);
                ASSERT_TRUE(library_obeys([&](auto& times) {
                    return words(times.get_time_unit(text));
                })) << in_quotes(text);
            }
        }
    }
}

TEST(BigUtilToken, FindsEveryTextOfTwoBytesAsTheOracleDoes) {
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            std::string const text = {static_cast<char>(first), static_cast<char>(second)};
            ASSERT_TRUE(library_obeys([&](auto& times) {
                return words(times.get_time_unit(text));
            })) << in_quotes(text);
        }
    }
}

TEST(BigUtilToken, SplitsAnyTextAsTheOracleDoes) {
    constexpr unsigned int seed = 40401;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(300000); ++i) {
        std::string text = samples.blanks();
        text += samples.unit_text();
        text += samples.blanks();
        if (samples.once_in(3))
            text = samples.damaged(text);
        if (samples.once_in(8))
            text = samples.bytes(6);
        ASSERT_TRUE(library_obeys([&](auto& times) {
            std::string left = text;
            bool const none = times.is_no_token(text);
            bool const one = times.is_one_token(left);
            return words(none, one, left, times.get_time_unit(text));
        })) << in_quotes(text)
            << ", case " << i << " of seed " << seed;
    }
}

} // namespace
