// What the documents show is what happens: the README's code, the examples of docs/big_radix.md,
// and the texts of docs/errors.md.

#include "run_program.h"

#include "big_sys.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::filesystem::path const ROOT = BIG_SOURCE_ROOT;

std::string content_of(std::filesystem::path const& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path << " cannot be read";
    return {std::istreambuf_iterator<char>(file), {}};
}

// --- The README ---

/// What the README's first fenced block of a language holds.
std::string shown(std::string const& language) {
    std::string const page = content_of(ROOT / "README.md");
    std::string const opening = "\n```" + language + "\n";
    std::size_t const begin = page.find(opening);
    EXPECT_NE(begin, std::string::npos) << "README.md has no block of " << language;
    if (begin == std::string::npos)
        return "";
    std::size_t const content = begin + opening.size();
    return page.substr(content, page.find("```\n", content) - content);
}

TEST(Readme, CodeIsThatOfTheExample) {
    EXPECT_EQ(shown("cpp"), content_of(ROOT / "examples/quickstart.cpp"));
}

TEST(Readme, CodePrintsWhatIsShown) {
    EXPECT_EQ(run_shell(QUICKSTART).out, shown("text"));
}

// --- docs/big_radix.md ---

/// The lines of the page from the first that begins with a text up to the end of its block.
std::vector<std::string> radix_page_from(std::string const& beginning) {
    std::istringstream page(content_of(ROOT / "docs/big_radix.md"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(page, line);) {
        if (!lines.empty() && (line.empty() || line == "```"))
            break;
        if (!lines.empty() || line.starts_with(beginning))
            lines.push_back(line);
    }
    EXPECT_GT(lines.size(), 1u) << "docs/big_radix.md has no block that begins with " << beginning;
    return lines;
}

/// What a line holds in the places of a pattern's groups.
std::smatch parts_of(std::string const& line, std::string const& pattern) {
    std::smatch parts;
    EXPECT_TRUE(std::regex_match(line, parts, std::regex(pattern))) << line;
    return parts;
}

std::map<std::string, BIG_RADIX> const RADIXES = {
    {"BIG_BIN", BIG_BIN},
    {"BIG_OCT", BIG_OCT},
    {"BIG_HEX", BIG_HEX},
    {"BIG_SIGNED_DEC", BIG_SIGNED_DEC},
    {"BIG_UNSIGNED_DEC", BIG_UNSIGNED_DEC},
    {"BIG_FRAC_FIX_POINT", BIG_FRAC_FIX_POINT},
    {"BIG_ASCII", BIG_ASCII},
};

/// Expects a conversion to give a text, and to return a status.
void expect_conversion(std::string const& source, BIG_RADIX from, BIG_RADIX to, unsigned int width,
                       std::string const& result, unsigned int status = 0) {
    std::string text;
    EXPECT_EQ(big_radix_conversion(source, &text, from, to, width), status) << source;
    EXPECT_EQ(text, result) << source;
}

unsigned int number_in(std::string const& text) {
    return static_cast<unsigned int>(std::stoul(text));
}

TEST(RadixPage, CallsGiveWhatIsShown) {
    for (std::string const& line : radix_page_from("big_radix_conversion(")) {
        std::smatch const call =
            parts_of(line, R"re(big_radix_conversion\("(.*)", &text, (\w+), (\w+), (\d+)\); +)re"
                           R"re(// (\d), text is "(.*)"(: .*)?)re");
        if (!call.empty())
            expect_conversion(call[1], RADIXES.at(call[2]), RADIXES.at(call[3]), number_in(call[4]),
                              call[6], number_in(call[5]));
    }
}

TEST(RadixPage, AsciiTextsAreWrongAsIsSaid) {
    for (std::string const& line : radix_page_from("| 0 `BIG_ASCII_OK`")) {
        std::smatch const row = parts_of(line, R"(\| (\d) `\w+` \| .* \| `(.*)` \|)");
        if (row.empty())
            continue;
        std::string result;
        BIG_ASCII_CHECK_RESULT check = BIG_ASCII_OK;
        big_validate_ascii_string(row[2], &result, &check);
        EXPECT_EQ(check, number_in(row[1])) << row[2];
    }
}

TEST(RadixPage, GroupsOfLogicValuesGiveTheDigitsBelowThem) {
    std::vector<std::string> const lines = radix_page_from("binary digits ");
    ASSERT_EQ(lines.size(), 2u);
    std::regex const column(R"(\S+( \S+)*)"); // one blank parts groups, more part columns
    std::string const& above = lines[0];
    std::size_t columns = 0;
    for (std::sregex_iterator each(above.begin(), above.end(), column), end; each != end;) {
        auto const begin = static_cast<std::size_t>(each->position());
        std::string const groups = each->str();
        ++each;
        std::size_t const length =
            each == end ? std::string::npos : static_cast<std::size_t>(each->position()) - begin;
        if (columns++ == 0)
            continue; // the captions
        std::regex const blank(" ");
        std::string const bits = std::regex_replace(groups, blank, "");
        expect_conversion(bits, BIG_BIN, BIG_HEX, static_cast<unsigned int>(bits.size()),
                          std::regex_replace(lines[1].substr(begin, length), blank, ""));
    }
    EXPECT_EQ(columns, 5u);
}

TEST(RadixPage, DigitsAreFittedToAWidthAsIsShown) {
    std::vector<std::string> lines = radix_page_from("                           digits ");
    lines.erase(lines.begin());
    for (std::string const& line : lines) {
        //                     caption   digits  (their number) width   fitted  (its number) status
        std::smatch const row =
            parts_of(line, R"((\w.*?)  +([^ ]+)( +\((.*?)\))? +(\d+) +([^ ]+)( +\((.*)\))? +(\d))");
        if (row.empty())
            continue;
        bool const is_signed = row.str(1).find("signed") != std::string::npos;
        BIG_RADIX const decimal = is_signed ? BIG_SIGNED_DEC : BIG_UNSIGNED_DEC;
        unsigned int const width = number_in(row[5]);
        unsigned int const status = number_in(row[9]);
        if (row[4].matched) {
            expect_conversion(row[4], decimal, BIG_BIN, 0, row[2]);
            expect_conversion(row[4], decimal, BIG_BIN, width, row[6], status);
        } else {
            expect_conversion(row[2], BIG_BIN, BIG_BIN, width, row[6], status);
        }
        if (row[8].matched)
            expect_conversion(row[6], BIG_BIN, decimal, width, row[8]);
    }
}

TEST(RadixPage, FixedPointNumbersHaveTheBitsShown) {
    std::vector<std::string> const lines = radix_page_from("width 4 ");
    std::regex const pair("([01]{4}) +([-.0-9]+)");
    std::size_t pairs = 0;
    for (std::string const& line : lines) {
        for (std::sregex_iterator each(line.begin(), line.end(), pair), end; each != end; ++each) {
            expect_conversion((*each)[1], BIG_BIN, BIG_FRAC_FIX_POINT, 4, (*each)[2]);
            expect_conversion((*each)[2], BIG_FRAC_FIX_POINT, BIG_BIN, 4, (*each)[1]);
            ++pairs;
        }
    }
    EXPECT_EQ(pairs, 2 * lines.size());
}

// --- docs/errors.md ---

/// A source text without its comments and preprocessor lines, with the literals left whole.
std::string code_of(std::string const& source) {
    std::string code;
    bool line_is_blank = true;
    for (std::size_t i = 0; i < source.size(); ++i) {
        if (source.compare(i, 2, "//") == 0) {
            i = source.find('\n', i);
        } else if (source[i] == '#' && line_is_blank) {
            for (i = source.find('\n', i); source[i - 1] == '\\';)
                i = source.find('\n', i + 1);
        } else if (source[i] == '"' || (source[i] == '\'' && !std::isalnum(source[i - 1]))) {
            std::size_t const begin = i;
            for (++i; source[i] != source[begin]; ++i)
                if (source[i] == '\\')
                    ++i;
            code.append(source, begin, i - begin);
        }
        code += source[i];
        line_is_blank = source[i] == '\n' || (line_is_blank && source[i] == ' ');
    }
    return code;
}

/// The end of a call's argument that starts at `begin`: its comma or closing parenthesis.
std::size_t end_of_argument(std::string const& code, std::size_t begin) {
    int depth = 0;
    std::size_t i = begin;
    for (; depth > 0 || (code[i] != ',' && code[i] != ')'); ++i) {
        if (code[i] == '(')
            ++depth;
        else if (code[i] == ')')
            --depth;
        else if (code[i] == '"')
            for (++i; code[i] != '"'; ++i)
                if (code[i] == '\\')
                    ++i;
    }
    return i;
}

/// A condition as the preprocessor writes it as text: each run of white space is one blank.
std::string condition_text(std::string const& condition) {
    std::string text;
    for (char const c : condition)
        if (!std::isspace(static_cast<unsigned char>(c)))
            text += c;
        else if (!text.empty() && text.back() != ' ')
            text += ' ';
    return text;
}

/// The text that an expression of string literals builds, with %s for what stands between them;
/// empty when there is no literal.
std::string literal_text(std::string const& expression) {
    std::string text;
    std::string between;
    for (std::size_t i = 0; i < expression.size(); ++i) {
        if (expression[i] != '"') {
            if (std::isalpha(static_cast<unsigned char>(expression[i])))
                between = "%s";
            continue;
        }
        if (!text.empty())
            text += between;
        between.clear();
        for (++i; expression[i] != '"'; ++i) {
            if (expression[i] == '\\')
                ++i;
            text += expression[i];
        }
    }
    return text;
}

/// Every text that the library's files report, as an internal error or a debug message.
std::set<std::string> reported_texts() {
    std::set<std::string> texts;
    for (char const* const folder : {"big", "h"}) {
        for (auto const& entry : std::filesystem::directory_iterator(ROOT / folder)) {
            if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h")
                continue;
            std::string const code = code_of(content_of(entry.path()));
            for (std::string const report :
                 {"BIG_REQUIRE(", "BIG_FAIL(", "mem_msg_vdebug(", "err_report_internal_error("}) {
                for (std::size_t i = code.find(report); i != std::string::npos;
                     i = code.find(report, i + 1)) {
                    std::size_t const begin = i + report.size();
                    std::string const argument =
                        code.substr(begin, end_of_argument(code, begin) - begin);
                    std::string const text = report == "BIG_REQUIRE(" ? condition_text(argument)
                                                                      : literal_text(argument);
                    if (!text.empty()) // a declaration has no text
                        texts.insert(text);
                }
            }
        }
    }
    return texts;
}

/// The texts that docs/errors.md explains, each in a heading of its own.
std::set<std::string> explained_texts() {
    std::set<std::string> texts;
    std::ifstream page(ROOT / "docs/errors.md");
    std::string const opening = "### `";
    for (std::string line; std::getline(page, line);)
        if (line.starts_with(opening) && line.back() == '`')
            texts.insert(line.substr(opening.size(), line.size() - opening.size() - 1));
    return texts;
}

TEST(ErrorsPage, ExplainsEveryTextThatTheLibraryReports) {
    std::set<std::string> const explained = explained_texts();
    for (std::string const& text : reported_texts())
        EXPECT_TRUE(explained.contains(text))
            << "docs/errors.md has no heading ### `" << text << "`";
}

TEST(ErrorsPage, ExplainsNoTextThatTheLibraryDoesNotReport) {
    std::set<std::string> const reported = reported_texts();
    for (std::string const& text : explained_texts())
        EXPECT_TRUE(reported.contains(text)) << "nothing reports \"" << text << '"';
}

} // namespace
