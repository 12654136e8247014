// Bit vectors between radixes: rows 9 to 12, those with logic values (rows 13 and 14), and the
// other pairs of radixes for the plots of cost against width.

#include "bench.h"
#include "inputs.h"

#include <big_sys.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <optional>

#ifdef BIG_BENCH_GMP
#include <gmp.h>
#endif
#ifdef BIG_BENCH_SYSTEMC
#include <sysc/datatypes/bit/sc_lv.h>
#endif

#ifdef BIG_BENCH_SYSTEMC
// SystemC asks every program for this function; the benchmarks need no simulation.
extern "C" __attribute__((visibility("default"))) int sc_main(int, char**) {
    return 0;
}
#endif

namespace {

using bench::below;
using bench::RANDOM;

/// Bits of the vectors.
constexpr std::array<unsigned, 11> WIDTHS = {8,    16,    32,    64,     128,    1024,
                                             4096, 16384, 65536, 262144, 1048576};

struct RADIX {
    char const* name;
    BIG_RADIX radix;
    int base;             ///< for GMP; 0 where it has none
    unsigned widest_from; ///< the widths to which it is converted from and to
    unsigned widest_to;
};

constexpr std::array<RADIX, 7> RADIXES = {{
    {"bin", BIG_BIN, 2, WIDTHS.back(), WIDTHS.back()},
    {"oct", BIG_OCT, 8, WIDTHS.back(), WIDTHS.back()},
    {"hex", BIG_HEX, 16, WIDTHS.back(), WIDTHS.back()},
    {"dec", BIG_UNSIGNED_DEC, 10, WIDTHS.back(), WIDTHS.back()},
    {"signed", BIG_SIGNED_DEC, 10, WIDTHS.back(), WIDTHS.back()},
    {"fix", BIG_FRAC_FIX_POINT, 0, 64, 1024},
    {"ascii", BIG_ASCII, 0, WIDTHS.back(), WIDTHS.back()},
}};

/// The row of the table that a pair of radixes belongs to, or "curve".
std::string row_of(RADIX const& from, RADIX const& to) {
    if (from.radix == BIG_HEX && to.radix == BIG_BIN)
        return "9";
    if (from.radix == BIG_BIN && to.radix == BIG_HEX)
        return "10";
    if (from.radix == BIG_HEX && to.radix == BIG_UNSIGNED_DEC)
        return "11";
    if (from.radix == BIG_UNSIGNED_DEC && to.radix == BIG_HEX)
        return "12";
    return "curve";
}

/// As many vectors as keep within the caches, and enough that none is learnt by heart.
std::size_t count_for(unsigned width) {
    return std::clamp<std::size_t>((1u << 20) / width, 2, bench::INPUT_COUNT);
}

/// A vector whose highest bit is set; with `skewed`, seven of eight are short numbers in it.
std::string bits_of(RANDOM& random, unsigned width, bool skewed) {
    unsigned const zeros =
        skewed && below(random, 8) != 0 ? width - 1 - below(random, width / 4) : 0;
    std::string bits(zeros, '0');
    bits += '1';
    while (bits.size() < width)
        bits += static_cast<char>('0' + (random() >> 63));
    return bits;
}

std::string converted(std::string const& source, BIG_RADIX from, BIG_RADIX to, unsigned width) {
    std::string result;
    big_radix_conversion(source, &result, from, to, width);
    return result;
}

/// A number without the zeros in front that some write and others do not, in lower case.
std::string bare(std::string text) {
    bool const is_negative = text[0] == '-';
    std::size_t const first = std::min(text.find_first_not_of("-0"), text.size() - 1);
    text.erase(0, first);
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return is_negative ? '-' + text : text;
}

auto as_it_is = [](std::string const& text) { return text; };

/// What this library does in each of these comparisons.
auto conversion(BIG_RADIX from, BIG_RADIX to, unsigned width) {
    return [=, result = std::string()](std::string const& source) mutable -> std::string const& {
        big_radix_conversion(source, &result, from, to, width);
        return result;
    };
}

/// GMP reads a number and writes it, into memory that is large enough.
void add_gmp([[maybe_unused]] bench::COMPARISON<std::string, std::string>& comparison,
             [[maybe_unused]] int from, [[maybe_unused]] int to, [[maybe_unused]] unsigned width,
             [[maybe_unused]] std::string (*prepare)(std::string const&)) {
#ifdef BIG_BENCH_GMP
    struct NUMBER {
        NUMBER() { mpz_init(value); }
        ~NUMBER() { mpz_clear(value); }
        mpz_t value;
    };
    auto const number = std::make_shared<NUMBER>();
    auto const buffer = std::make_shared<std::vector<char>>(width + 3);
    comparison.add(
        "gmp", prepare,
        [=](std::string const& source) {
            mpz_set_str(number->value, source.c_str(), from);
            return mpz_get_str(buffer->data(), to, number->value);
        },
        [](char const* text) { return bare(text); });
#endif
}

/// Rows 9 to 12 and the curves.
void add_pair(RADIX const& from, RADIX const& to, unsigned width, bool skewed) {
    bench::COMPARISON<std::string, std::string> comparison(
        row_of(from, to) + '/' + from.name + "_to_" + to.name + '/' + std::to_string(width)
            + (skewed ? "_skewed" : ""),
        [=] {
            return bench::many(
                [=](RANDOM& random) {
                    return converted(bits_of(random, width, skewed), BIG_BIN, from.radix, width);
                },
                count_for(width));
        });
    bool const is_number = from.base != 0 && to.base != 0;
    comparison.add("ours", as_it_is, conversion(from.radix, to.radix, width),
                   [=](std::string const& text) { return is_number ? bare(text) : text; });
    // GMP knows no two's complement, so it cannot tell a vector's sign.
    bool const is_signed = from.radix == BIG_SIGNED_DEC || to.radix == BIG_SIGNED_DEC;
    if (is_number && !is_signed)
        add_gmp(comparison, from.base, to.base, width, as_it_is);
}

/// A vector of hexadecimal digits, of which one in four is X or Z; as bits, one group in eight
/// mixes them.
std::string logic_digits(RANDOM& random, unsigned width, BIG_RADIX radix) {
    std::string text;
    for (unsigned digit = 0; digit < width / 4; ++digit) {
        unsigned const value = below(random, 16);
        bool const is_logic = below(random, 4) == 0;
        char const logic = below(random, 2) != 0 ? 'X' : 'Z';
        if (radix == BIG_HEX) {
            text += is_logic ? logic : "0123456789ABCDEF"[value];
        } else if (is_logic && below(random, 2) != 0) {
            text += std::string(4, logic);
        } else {
            for (int bit = 3; bit >= 0; --bit)
                text += static_cast<char>('0' + (value >> bit & 1));
            if (is_logic)
                text[text.size() - 1 - below(random, 4)] = logic;
        }
    }
    if (text[0] == '0')
        text[0] = '1'; // SystemC would take 0X for a prefix
    return text;
}

/// The same vector with a number in place of each logic value.
std::string without_logic(std::string const& text) {
    std::string number = text;
    std::replace(number.begin(), number.end(), 'X', '5');
    std::replace(number.begin(), number.end(), 'Z', 'A');
    return number;
}

/// The hexadecimal digits of bits: X for a group that mixes X or Z with anything else.
std::string hex_digits_of(std::string const& bits) {
    std::string digits;
    for (std::size_t i = 0; i < bits.size(); i += 4) {
        std::string const group = bits.substr(i, 4);
        if (group.find_first_not_of("01") == std::string::npos)
            digits += "0123456789ABCDEF"[std::stoi(group, nullptr, 2)];
        else
            digits += group == "ZZZZ" ? 'Z' : 'X';
    }
    return digits;
}

/// Row 13: bits to hexadecimal digits, beside a vector of SystemC.
template <int WIDTH>
void add_logic_to_hex() {
    bench::COMPARISON<std::string, std::string> comparison(
        "13/logic_to_hex/" + std::to_string(WIDTH), [] {
            return bench::many([](RANDOM& random) { return logic_digits(random, WIDTH, BIG_BIN); },
                               count_for(WIDTH));
        });
    comparison.add("ours", as_it_is, conversion(BIG_BIN, BIG_HEX, WIDTH));
#ifdef BIG_BENCH_SYSTEMC
    // It prints bits: printing X and Z in hexadecimal is an error of its own.
    comparison.add(
        "sc_lv", as_it_is,
        [vector = sc_dt::sc_lv<WIDTH>()](std::string const& text) mutable {
            vector = text.c_str();
            return vector.to_string();
        },
        hex_digits_of);
#endif
}

/// Row 14: hexadecimal digits to bits, beside GMP's conversion of a number.
void add_logic_to_bin(unsigned width) {
    bench::COMPARISON<std::string, std::string> comparison(
        "14/logic_to_bin/" + std::to_string(width),
        [=] {
            return bench::many([=](RANDOM& random) { return logic_digits(random, width, BIG_HEX); },
                               count_for(width));
        },
        [](std::string const& ours, std::string const& theirs) {
            // The bits of the numbers are the same, those of the logic values are not.
            std::size_t const extra = ours.size() - theirs.size();
            for (std::size_t i = 0; i < theirs.size(); ++i) {
                char const bit = ours[i + extra];
                if ((bit == '0' || bit == '1') && bit != theirs[i])
                    return false;
            }
            return true;
        });
    comparison.add("ours", as_it_is, conversion(BIG_HEX, BIG_BIN, width));
    add_gmp(comparison, 16, 2, width, without_logic);
}

} // namespace

void bench::add_comparisons() {
    for (RADIX const& from : RADIXES) {
        for (RADIX const& to : RADIXES) {
            for (unsigned const width : WIDTHS) {
                if (width > from.widest_from || width > to.widest_to)
                    continue;
                if (&from != &to)
                    add_pair(from, to, width, false);
                if (row_of(from, to) != "curve" && (width == 64 || width == 128))
                    add_pair(from, to, width, true);
            }
        }
    }
    add_logic_to_hex<64>();
    add_logic_to_hex<1024>();
    add_logic_to_bin(64);
    add_logic_to_bin(1024);
}
