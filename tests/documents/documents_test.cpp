// What the documents show is what happens: the README's code, and the texts of docs/errors.md.

#include "run_program.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
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
