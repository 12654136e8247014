// Writes the test of the examples in a page: page_program PAGE >TEST.
//
// An example is a statement in a cpp block with a comment behind it, which is what the expression
// gives; comments on lines of their own below it are what it reports. Statements without a comment
// prepare the examples behind them. Each block becomes a test.

#include <fstream>
#include <iostream>
#include <string>

namespace {

std::string stripped(std::string const& text) {
    std::size_t const begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? ""
                                      : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

/// The examples of one block, as the body of a test.
class BLOCK {
public:
    /// Takes a line of the block.
    void put(std::string const& line, std::string const& place) {
        std::size_t const comment = line.find("// ");
        std::string const code = stripped(line.substr(0, comment));
        std::string const result = comment == std::string::npos ? "" : line.substr(comment + 3);
        if (code.empty() && !m_expression.empty()) {
            m_result += "\n" + result;
            return;
        }
        finish_example();
        m_statement += code + ' ';
        if (code.empty() || code.back() != ';')
            return; // it goes on on the next line
        if (result.empty()) {
            m_body += "    " + m_statement + "\n";
        } else {
            m_expression = m_statement;
            m_result = result;
            m_place = place;
        }
        m_statement.clear();
    }

    /// The body of the test, and how many examples are in it.
    std::string finished(int& examples) {
        finish_example();
        examples += m_examples;
        return m_body;
    }

private:
    void finish_example() {
        if (m_expression.empty())
            return;
        m_body += "    EXPECT_EQ(shown([&] { return " + m_expression + "}), R\"page(" + m_result
                  + ")page\") << \"" + m_place + "\";\n";
        m_expression.clear();
        ++m_examples;
    }

    std::string m_body;
    std::string m_statement;  ///< the lines of a statement that is not complete yet
    std::string m_expression; ///< the last example, which more lines of its result may follow
    std::string m_result;
    std::string m_place;
    int m_examples = 0;
};

} // namespace

int main(int argc, char** argv) {
    std::string const path = argc == 2 ? argv[1] : "";
    std::ifstream page(path);
    int examples = 0;
    std::cout << "#include \"shown.h\"\n";
    int number = 1;
    for (std::string line; std::getline(page, line); ++number) {
        if (line != "```cpp")
            continue;
        std::cout << "\nTEST(Page, ExamplesOfLine" << number << "AreTrue) {\n";
        BLOCK block;
        for (++number; std::getline(page, line) && line != "```"; ++number)
            block.put(line, path + ":" + std::to_string(number));
        std::cout << block.finished(examples) << "}\n";
    }
    if (examples == 0) {
        std::cerr << "page_program: no examples in \"" << path << "\"\n";
        return 1;
    }
    return 0;
}
