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
    [[noreturn]] void refuse(char const* expected) const;

private:
    void skip_blanks();

    std::string_view const m_whole;
    std::string_view m_text; ///< what is left of it
};

/// Computes expressions.
///
/// An ARITHMETIC has the type VALUE of its numbers and
///
///     bool read(std::string_view text, VALUE& value, std::string& problem)
///     VALUE result(char op, VALUE const& a, VALUE const& b)
///
/// of which the first reads a number with its sign or says what is wrong with it, and the second
/// gives a + b and the like, or throws EXPRESSION_ERROR.
template <typename ARITHMETIC>
class EXPRESSION {
public:
    using VALUE = typename ARITHMETIC::VALUE;

    explicit EXPRESSION(ARITHMETIC& arithmetic) : m_arithmetic(arithmetic) {}

    /// The value of a text. Throws EXPRESSION_ERROR when it has none.
    VALUE value_of(std::string_view text) {
        EXPRESSION_SCANNER scanner(text);
        VALUE const value = sum(scanner, 0);
        if (scanner.next() != '\0') {
            scanner.refuse("an operator (+ - * / %)");
        }
        return value;
    }

private:
    /// Parentheses that may be open at once; each takes some of the stack.
    static constexpr int DEEPEST = 100;

    VALUE sum(EXPRESSION_SCANNER& scanner, int depth) {
        VALUE value = product(scanner, depth);
        while (char const op = scanner.take("+-")) {
            value = m_arithmetic.result(op, value, product(scanner, depth));
        }
        return value;
    }

    VALUE product(EXPRESSION_SCANNER& scanner, int depth) {
        VALUE value = operand(scanner, depth);
        while (char const op = scanner.take("*/%")) {
            value = m_arithmetic.result(op, value, operand(scanner, depth));
        }
        return value;
    }

    VALUE operand(EXPRESSION_SCANNER& scanner, int depth) {
        if (!scanner.take("(")) {
            return number(scanner);
        }
        if (depth == DEEPEST) {
            throw EXPRESSION_ERROR("is not an expression: expected at most "
                                   + std::to_string(DEEPEST) + " open parentheses");
        }
        VALUE const value = sum(scanner, depth + 1);
        if (!scanner.take(")")) {
            scanner.refuse("an operator (+ - * / %) or )");
        }
        return value;
    }

    VALUE number(EXPRESSION_SCANNER& scanner) {
        std::string_view const text = scanner.take_number();
        VALUE value;
        std::string problem;
        if (!m_arithmetic.read(text, value, problem)) {
            scanner.refuse_number(text, problem);
        }
        return value;
    }

    ARITHMETIC& m_arithmetic;
};

#endif
