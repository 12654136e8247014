#ifndef EXPRESSION_H
#define EXPRESSION_H

/// @file
/// Arithmetic written in a text, for any kind of number:
///
///     sum     = product { ("+" | "-") product }
///     product = operand { ("*" | "/" | "%") operand }
///     operand = [ "+" | "-" ] number | "(" sum ")"
///     number  = digits, letters, points and underscores
///
/// Spaces and tabs may stand between these parts, but not behind the sign of a number.

#include "text.h"

#include <stdexcept>
#include <string>
#include <string_view>

/// An expression has no value; what() says why: a sentence whose subject is the text.
class EXPRESSION_ERROR : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The parts of an expression's text, one after the other.
class EXPRESSION_SCANNER {
public:
    explicit EXPRESSION_SCANNER(std::string_view text) : m_whole(text), m_text(text) {
        skip_blanks();
    }

    /// The next character; NUL at the end of the text, which holds none.
    char next() const { return m_text.empty() ? '\0' : m_text[0]; }

    /// Takes the next character and returns it, if it is one of some.
    char take(std::string_view characters);

    /// Takes a number with its sign.
    ///
    /// Throws EXPRESSION_ERROR when something else is next.
    std::string_view take_number();

    /// Throws EXPRESSION_ERROR: a number that was taken is none.
    ///
    /// @param problem a sentence whose subject is the number
    [[noreturn]] void refuse_number(std::string_view number, std::string const& problem) const;

    /// Throws EXPRESSION_ERROR: something else is next than is expected.
    [[noreturn]] void refuse(std::string const& expected) const;

private:
    void skip_blanks();

    std::string_view const m_whole;
    std::string_view m_text; ///< what is left of it
};

/// Computes the expression of a text.
///
/// An ARITHMETIC has
///
///     VALUE                                  the type of its numbers
///     OPERATORS                              a text of its operators, for a message
///     bool read(text, value, problem)        reads a number with its sign, or says what is wrong
///     VALUE result(op, a, b)                 a + b and the like, or throws EXPRESSION_ERROR
///
/// all of them static.
template <typename ARITHMETIC>
class EXPRESSION {
public:
    using VALUE = typename ARITHMETIC::VALUE;

    /// @param text without a NUL; it has to live as long
    explicit EXPRESSION(std::string_view text) : m_scanner(text) {}

    /// The value. To be called once. Throws EXPRESSION_ERROR when there is none.
    VALUE value() {
        VALUE const value = sum(0);
        if (m_scanner.next() != '\0') {
            m_scanner.refuse(an_operator());
        }
        return value;
    }

private:
    /// Parentheses that may be open at once; each takes some of the stack.
    static constexpr int DEEPEST = 100;

    static std::string an_operator() {
        return std::string("an operator (") + ARITHMETIC::OPERATORS + ')';
    }

    VALUE sum(int depth) {
        VALUE value = product(depth);
        while (char const op = m_scanner.take("+-")) {
            value = ARITHMETIC::result(op, value, product(depth));
        }
        return value;
    }

    VALUE product(int depth) {
        VALUE value = operand(depth);
        while (char const op = m_scanner.take("*/%")) {
            value = ARITHMETIC::result(op, value, operand(depth));
        }
        return value;
    }

    VALUE operand(int depth) {
        if (!m_scanner.take("(")) {
            return number();
        }
        if (depth == DEEPEST) {
            throw EXPRESSION_ERROR("is not an expression: expected at most "
                                   + std::to_string(DEEPEST) + " open parentheses");
        }
        VALUE const value = sum(depth + 1);
        if (!m_scanner.take(")")) {
            m_scanner.refuse(an_operator() + " or )");
        }
        return value;
    }

    VALUE number() {
        std::string_view const text = m_scanner.take_number();
        VALUE value;
        std::string problem;
        if (!ARITHMETIC::read(text, value, problem)) {
            m_scanner.refuse_number(text, problem);
        }
        return value;
    }

    EXPRESSION_SCANNER m_scanner;
};

#endif
