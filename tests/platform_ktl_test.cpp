// The tokenizer of the standalone platform.

#include "ktl_sys.h"

#include "support/standalone_error.h"

namespace {

using TOKENS = std::vector<std::string>;

TOKENS tokens_of(std::string const& text, std::string const& delimiters = " \t\n") {
    KTL_TOKENIZER tokenizer(delimiters, false, "", "", "", false);
    TOKENS tokens;
    tokenizer.tokenize(text, tokens);
    return tokens;
}

TEST(PlatformKtl, ATextIsSplitAtItsDelimiters) {
    struct CASE {
        char const* why;
        std::string text;
        TOKENS tokens;
    };
    CASE const cases[] = {
        {"no text", "", {}},
        {"delimiters alone", " \t\n \n", {}},
        {"one token", "ns", {"ns"}},
        {"delimiters around it", "\t ns \n", {"ns"}},
        {"two tokens, in order", "2.5 ns", {"2.5", "ns"}},
        {"several delimiters between", "a \t\n b\nc", {"a", "b", "c"}},
        {"another control byte is no delimiter", "\r\v a\r", {"\r\v", "a\r"}},
        {"quotes mean nothing", "\"a b\" 'c d'", {"\"a", "b\"", "'c", "d'"}},
        {"comments mean nothing", "a # b // c", {"a", "#", "b", "//", "c"}},
        {"a zero byte is a byte", std::string("a\0b c", 5), {std::string("a\0b", 3), "c"}},
        {"bytes above 127", "\xa0 \x85", {"\xa0", "\x85"}},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(tokens_of(c.text), c.tokens);
    }
}

TEST(PlatformKtl, TheDelimitersAreTheCallers) {
    EXPECT_EQ(tokens_of("a,b c;d", ",;"), (TOKENS{"a", "b c", "d"}));
    EXPECT_EQ(tokens_of(" a b ", ""), (TOKENS{" a b "}));
    EXPECT_EQ(tokens_of("", ""), TOKENS{});
    EXPECT_EQ(tokens_of(std::string("a\0b", 3), std::string(1, '\0')), (TOKENS{"a", "b"}));
}

TEST(PlatformKtl, TokensAreAppendedToThoseThatAreThere) {
    KTL_TOKENIZER tokenizer(" ", false, "", "", "", false);
    TOKENS tokens = {"first"};
    tokenizer.tokenize("a b", tokens);
    tokenizer.tokenize("", tokens);
    tokenizer.tokenize("c", tokens);
    EXPECT_EQ(tokens, (TOKENS{"first", "a", "b", "c"}));
}

TEST(PlatformKtl, TheDelimitersAreKept) {
    std::string delimiters = ",";
    KTL_TOKENIZER tokenizer(delimiters, false, "", "", "", false);
    delimiters[0] = ';';
    TOKENS tokens;
    tokenizer.tokenize("a,b;c", tokens);
    EXPECT_EQ(tokens, (TOKENS{"a", "b;c"}));
}

TEST(PlatformKtl, ARequestForMoreThanSplittingIsAnInternalError) {
    char const* const text = "this tokenizer only splits on delimiters";
    char const* const path = "platform/standalone/ktl";
    EXPECT_STANDALONE_ERROR(KTL_TOKENIZER(" ", true, "", "", "", false), text, path);
    EXPECT_STANDALONE_ERROR(KTL_TOKENIZER(" ", false, "x", "", "", false), text, path);
    EXPECT_STANDALONE_ERROR(KTL_TOKENIZER(" ", false, "", "x", "", false), text, path);
    EXPECT_STANDALONE_ERROR(KTL_TOKENIZER(" ", false, "", "", "x", false), text, path);
    EXPECT_STANDALONE_ERROR(KTL_TOKENIZER(" ", false, "", "", "", true), text, path);
}

} // namespace
