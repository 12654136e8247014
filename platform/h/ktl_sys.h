#ifndef KTL_SYS_H
#define KTL_SYS_H

/// @file
/// The tokenizer: what the library asks of the platform.

#include <string>
#include <vector>

#pragma GCC visibility push(default)

/// Splits text into tokens.
class KTL_TOKENIZER {
public:
    /// @param delimiters the bytes that separate tokens; without any, a text is one token
    ///
    /// The further arguments are the platform's own. With the values that the library passes
    /// (false, three empty strings, false) the tokenizer is a plain splitter on the delimiters. The
    /// standalone platform knows only these values; others are an internal error.
    KTL_TOKENIZER(std::string const& delimiters, bool, std::string const&, std::string const&,
                  std::string const&, bool);
    ~KTL_TOKENIZER();
    KTL_TOKENIZER(KTL_TOKENIZER const&) = delete;
    KTL_TOKENIZER& operator=(KTL_TOKENIZER const&) = delete;

    /// Appends every token of a text, in order and without delimiters; nothing when it has none. A
    /// token is a longest run of bytes that are no delimiters, so none is empty.
    void tokenize(std::string const& text, std::vector<std::string>& tokens);

private:
    std::string m_delimiters;
};

#pragma GCC visibility pop

#endif
