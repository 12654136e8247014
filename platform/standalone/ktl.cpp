// The tokenizer: a plain splitter.

#include "ktl_sys.h"

#include "frame.h"

#define PLATFORM_SOURCE_PATH "platform/standalone/ktl"

KTL_TOKENIZER::KTL_TOKENIZER(std::string const& delimiters, bool flag_1, std::string const& set_1,
                             std::string const& set_2, std::string const& set_3, bool flag_2)
    : m_delimiters(delimiters) {
    bool const plain = !flag_1 && set_1.empty() && set_2.empty() && set_3.empty() && !flag_2;
    if (!plain)
        PLATFORM_FAIL("this tokenizer only splits on delimiters");
}

KTL_TOKENIZER::~KTL_TOKENIZER() = default;

void KTL_TOKENIZER::tokenize(std::string const& text, std::vector<std::string>& tokens) {
    std::size_t begin = text.find_first_not_of(m_delimiters);
    while (begin != std::string::npos) {
        std::size_t const end = text.find_first_of(m_delimiters, begin);
        tokens.push_back(text.substr(begin, end - begin)); // npos: to the end of the text
        begin = text.find_first_not_of(m_delimiters, end);
    }
}
