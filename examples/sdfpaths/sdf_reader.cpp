// The grammar, which is that of IEEE 1497 (and of OVI 2.1 and 3.0 before it) as far as sums of
// delays need it; `skipped` stands for anything with balanced parentheses:
//
//   file      = ( DELAYFILE header... cell... )
//   header    = ( DIVIDER . ) | ( DIVIDER / ) | ( TIMESCALE number unit )
//             | ( DESIGN string ) | ( PROGRAM string )
//             | ( SDFVERSION | DATE | VENDOR | VERSION | VOLTAGE | PROCESS | TEMPERATURE skipped )
//   number    = 1 | 10 | 100 | 1.0 | 10.0 | 100.0
//   unit      = s | ms | us | ns | ps | fs
//   cell      = ( CELL ( CELLTYPE string ) ( INSTANCE [name] ) timing... )
//   timing    = ( DELAY list... ) | ( TIMINGCHECK | TIMINGENV | LABEL skipped )
//   list      = ( ABSOLUTE entry... ) | ( INCREMENT entry... )
//             | ( PATHPULSE | PATHPULSEPERCENT | GLOBALPATHPULSE skipped )
//   entry     = delay | ( COND [string] condition delay ) | ( CONDELSE delay )
//             | ( PORT | NETDELAY | DEVICE skipped )
//   delay     = ( IOPATH from name [( RETAIN skipped )] value... )
//             | ( INTERCONNECT from name value... )
//   from      = name | ( edge name )
//   value     = ( [decimal] ) | ( [decimal] : [decimal] : [decimal] ) | ( value value... )
//   decimal   = [+|-] digits [. digits] [e [+|-] digits]
//
// Of a value made of values, the first is the delay and the others limit pulses. Keywords are read
// in either letter case. A name is everything up to a blank, a parenthesis, a quote or a comment; a
// backslash takes the character behind it into the name. Comments are those of C++.

#include "sdf_reader.h"

#include "decimal.h"

#include <algorithm>
#include <utility>

namespace {

bool is_blank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string_view without_blanks_around(std::string_view text) {
    while (!text.empty() && is_blank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && is_blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace

SDF_READER::SDF_READER(std::string_view text, std::string file)
    : m_text(text), m_file(std::move(file)) {
    next();
    read_header();
}

void SDF_READER::read_delays(std::function<void(SDF_DELAY const&)> const& take) {
    m_take = take;
    while (m_token.kind == OPEN) {
        next();
        if (!is_keyword("CELL")) {
            refuse("a CELL");
        }
        read_cell();
    }
    if (m_token.kind != CLOSE) {
        refuse("a CELL or the ) that ends the DELAYFILE");
    }
    next();
    if (m_token.kind != END) {
        refuse("the end of the file behind the DELAYFILE");
    }
}

// ------------------------------------------------------------------------------------------------
// Tokens
// ------------------------------------------------------------------------------------------------

/// Reads the next token.
void SDF_READER::next() {
    skip_blanks_and_comments();
    m_token = {END, {}, m_line};
    if (m_at == m_text.size()) {
        return;
    }
    switch (m_text[m_at]) {
    case '(': m_token = {OPEN, m_text.substr(m_at++, 1), m_line}; break;
    case ')': m_token = {CLOSE, m_text.substr(m_at++, 1), m_line}; break;
    case '"': scan_string(); break;
    default: scan_word(); break;
    }
}

void SDF_READER::skip_blanks_and_comments() {
    while (m_at < m_text.size()) {
        if (is_blank(m_text[m_at])) {
            m_line += m_text[m_at++] == '\n' ? 1 : 0;
        } else if (!starts_comment(m_at)) {
            return;
        } else if (m_text[m_at + 1] == '/') {
            m_at = std::min(m_text.find('\n', m_at), m_text.size());
        } else {
            std::size_t const end = m_text.find("*/", m_at + 2);
            if (end == std::string_view::npos) {
                refuse_at(m_line, "found a comment without an end; expected */");
            }
            std::string_view const comment = m_text.substr(m_at, end - m_at);
            m_line += static_cast<std::size_t>(std::count(comment.begin(), comment.end(), '\n'));
            m_at = end + 2;
        }
    }
}

bool SDF_READER::starts_comment(std::size_t at) const {
    return m_text.substr(at, 2) == "//" || m_text.substr(at, 2) == "/*";
}

void SDF_READER::scan_string() {
    std::size_t const begin = m_at + 1;
    std::size_t const end = m_text.find_first_of("\"\n", begin);
    if (end == std::string_view::npos || m_text[end] != '"') {
        refuse_at(m_line, "found a string without an end; expected \" on the same line");
    }
    m_token = {STRING, m_text.substr(begin, end - begin), m_line};
    m_at = end + 1;
}

void SDF_READER::scan_word() {
    std::size_t const begin = m_at;
    while (m_at < m_text.size()) {
        char const c = m_text[m_at];
        if (c == '\\' && m_at + 1 < m_text.size() && !is_blank(m_text[m_at + 1])) {
            m_at += 2;
        } else if (is_blank(c) || c == '(' || c == ')' || c == '"' || starts_comment(m_at)) {
            break;
        } else {
            ++m_at;
        }
    }
    m_token = {WORD, m_text.substr(begin, m_at - begin), m_line};
}

/// Refuses the token.
void SDF_READER::refuse(char const* expected) const {
    constexpr std::size_t LONGEST_QUOTE = 60;
    std::string found = "the end of the file";
    if (m_token.kind != END) {
        found = '"' + std::string(m_token.text.substr(0, LONGEST_QUOTE))
                + (m_token.text.size() > LONGEST_QUOTE ? "...\"" : "\"");
    }
    refuse_at(m_token.line, "found " + found + "; expected " + expected);
}

void SDF_READER::refuse_at(std::size_t line, std::string const& reason) const {
    throw SDF_ERROR(m_file + ':' + std::to_string(line) + ": " + reason);
}

// ------------------------------------------------------------------------------------------------
// Lists
// ------------------------------------------------------------------------------------------------

void SDF_READER::expect_open(char const* expected) {
    if (m_token.kind != OPEN) {
        refuse(expected);
    }
    next();
}

void SDF_READER::expect_close() {
    if (m_token.kind != CLOSE) {
        refuse(")");
    }
    next();
}

std::string_view SDF_READER::expect_string(char const* expected) {
    if (m_token.kind != STRING) {
        refuse(expected);
    }
    std::string_view const text = m_token.text;
    next();
    return text;
}

std::string_view SDF_READER::expect_word(char const* expected) {
    if (m_token.kind != WORD) {
        refuse(expected);
    }
    std::string_view const text = m_token.text;
    next();
    return text;
}

/// Whether the token is a keyword, given in upper case.
bool SDF_READER::is_keyword(std::string_view keyword) const {
    return m_token.kind == WORD
           && std::equal(m_token.text.begin(), m_token.text.end(), keyword.begin(), keyword.end(),
                         [](char a, char b) { return upper(a) == b; });
}

bool SDF_READER::is_one_of(std::initializer_list<std::string_view> keywords) const {
    return std::any_of(keywords.begin(), keywords.end(),
                       [this](std::string_view keyword) { return is_keyword(keyword); });
}

/// Passes over the rest of a list that began on a line, its ) included.
void SDF_READER::skip_list(std::size_t line) {
    for (std::size_t depth = 1; depth > 0; next()) {
        switch (m_token.kind) {
        case OPEN: ++depth; break;
        case CLOSE: --depth; break;
        case END:
            refuse_at(m_token.line,
                      "found the end of the file; expected the ) of the list that begins on line "
                          + std::to_string(line));
        default: break;
        }
    }
}

// ------------------------------------------------------------------------------------------------
// The header
// ------------------------------------------------------------------------------------------------

/// Reads up to the first CELL, whose ( stays to be read.
void SDF_READER::read_header() {
    expect_open("(DELAYFILE");
    if (!is_keyword("DELAYFILE")) {
        refuse("DELAYFILE");
    }
    next();
    while (m_token.kind == OPEN) {
        TOKEN const open = m_token;
        std::size_t const behind_open = m_at;
        next();
        if (is_keyword("CELL")) { // back to its (
            m_token = open;
            m_at = behind_open;
            m_line = open.line;
            return;
        }
        if (is_keyword("DIVIDER")) {
            read_divider();
        } else if (is_keyword("TIMESCALE")) {
            read_timescale();
        } else if (is_keyword("DESIGN")) {
            next();
            m_header.design = expect_string("the design's name in quotes");
            expect_close();
        } else if (is_keyword("PROGRAM")) {
            next();
            m_header.program = expect_string("the program's name in quotes");
            expect_close();
        } else if (is_one_of({"SDFVERSION", "DATE", "VENDOR", "VERSION", "VOLTAGE", "PROCESS",
                              "TEMPERATURE"})) {
            skip_list(open.line);
        } else {
            refuse("an entry of the header or a CELL");
        }
    }
}

void SDF_READER::read_divider() {
    next();
    if (m_token.kind != WORD || (m_token.text != "." && m_token.text != "/")) {
        refuse("the divider . or /");
    }
    m_header.divider = m_token.text.front();
    next();
    expect_close();
}

/// "1ns", "100 ps", "10.0 us".
void SDF_READER::read_timescale() {
    struct ROW {
        std::string_view text;
        int power;
    };
    static constexpr ROW NUMBERS[] = {{"1", 0},   {"10", 1},   {"100", 2},
                                      {"1.0", 0}, {"10.0", 1}, {"100.0", 2}};
    //                               to picoseconds
    static constexpr ROW UNITS[] = {{"S", 12}, {"MS", 9}, {"US", 6},
                                    {"NS", 3}, {"PS", 0}, {"FS", -3}};
    static constexpr char const* EXPECTED =
        "1, 10 or 100 and one of the units s, ms, us, ns, ps and fs";

    std::size_t const line = m_token.line;
    next();
    std::string text;
    while (m_token.kind == WORD) {
        for (char const c : m_token.text) {
            text += upper(c);
        }
        next();
    }
    std::size_t const unit_at = std::min(text.find_first_not_of("0123456789."), text.size());
    auto const number = std::find_if(std::begin(NUMBERS), std::end(NUMBERS), [&](ROW const& row) {
        return row.text == std::string_view(text).substr(0, unit_at);
    });
    auto const unit = std::find_if(std::begin(UNITS), std::end(UNITS), [&](ROW const& row) {
        return row.text == std::string_view(text).substr(unit_at);
    });
    if (number == std::end(NUMBERS) || unit == std::end(UNITS)) {
        refuse_at(line, "found the timescale \"" + text + "\"; expected " + EXPECTED);
    }
    m_header.power = number->power + unit->power;
    expect_close();
}

// ------------------------------------------------------------------------------------------------
// Cells
// ------------------------------------------------------------------------------------------------

void SDF_READER::read_cell() {
    next();
    expect_open("(CELLTYPE");
    if (!is_keyword("CELLTYPE")) {
        refuse("CELLTYPE");
    }
    next();
    expect_string("the cell's type in quotes");
    expect_close();
    read_instance();
    while (m_token.kind == OPEN) {
        std::size_t const line = m_token.line;
        next();
        if (is_keyword("DELAY")) {
            read_delay_lists();
        } else if (is_one_of({"TIMINGCHECK", "TIMINGENV", "LABEL"})) {
            skip_list(line);
        } else {
            refuse("DELAY, TIMINGCHECK, TIMINGENV or LABEL");
        }
    }
    expect_close();
}

void SDF_READER::read_instance() {
    expect_open("(INSTANCE");
    if (!is_keyword("INSTANCE")) {
        refuse("INSTANCE");
    }
    next();
    m_delay.instance = {};
    if (m_token.kind == WORD) {
        if (m_token.text == "*") {
            refuse("the name of one instance, as the file does not say which there are");
        }
        m_delay.instance = m_token.text;
        next();
    }
    expect_close();
}

void SDF_READER::read_delay_lists() {
    next();
    while (m_token.kind == OPEN) {
        std::size_t const line = m_token.line;
        next();
        if (is_one_of({"ABSOLUTE", "INCREMENT"})) {
            m_delay.is_increment = is_keyword("INCREMENT");
            read_entries();
        } else if (is_one_of({"PATHPULSE", "PATHPULSEPERCENT", "GLOBALPATHPULSE"})) {
            skip_list(line);
        } else {
            refuse("ABSOLUTE, INCREMENT, PATHPULSE or PATHPULSEPERCENT");
        }
    }
    expect_close();
}

void SDF_READER::read_entries() {
    next();
    while (m_token.kind == OPEN) {
        std::size_t const line = m_token.line;
        next();
        m_delay.condition = {};
        if (is_one_of({"IOPATH", "INTERCONNECT"})) {
            read_delay();
        } else if (is_one_of({"COND", "CONDELSE"})) {
            read_condition();
        } else if (is_one_of({"PORT", "NETDELAY", "DEVICE"})) {
            ++m_passed_over;
            skip_list(line);
        } else {
            refuse("IOPATH, INTERCONNECT, COND, CONDELSE, PORT, NETDELAY or DEVICE");
        }
    }
    expect_close();
}

/// COND or CONDELSE: what is between the keyword and the delay is the condition, which may have
/// parentheses of its own.
void SDF_READER::read_condition() {
    std::size_t const begin = m_at;
    bool const is_else = is_keyword("CONDELSE");
    next();
    for (std::size_t depth = 0;;) {
        if (m_token.kind == OPEN) {
            std::size_t const open = m_at - 1;
            next();
            if (depth == 0 && is_keyword("IOPATH")) {
                m_delay.condition = is_else
                                        ? std::string_view("CONDELSE")
                                        : without_blanks_around(m_text.substr(begin, open - begin));
                read_delay();
                expect_close();
                return;
            }
            ++depth;
        } else if (m_token.kind == END || (m_token.kind == CLOSE && depth == 0)) {
            refuse("the IOPATH of a condition");
        } else {
            depth -= m_token.kind == CLOSE ? 1 : 0;
            next();
        }
    }
}

/// Reads an IOPATH or INTERCONNECT and hands it on.
void SDF_READER::read_delay() {
    m_delay.line = m_token.line;
    next();
    read_from();
    m_delay.to = expect_word("the pin that the delay leads to");
    m_delay.values.clear();
    do {
        std::size_t const line = m_token.line;
        expect_open("a delay value in parentheses");
        if (is_keyword("RETAIN")) {
            skip_list(line);
        } else {
            m_delay.values.push_back(read_value());
        }
    } while (m_token.kind == OPEN);
    if (m_delay.values.empty()) {
        refuse("a delay value in parentheses");
    }
    expect_close();
    m_take(m_delay);
}

void SDF_READER::read_from() {
    m_delay.edge = {};
    bool const has_edge = m_token.kind == OPEN;
    if (has_edge) {
        next();
        if (!is_one_of({"POSEDGE", "NEGEDGE", "01", "10", "0Z", "Z1", "1Z", "Z0"})) {
            refuse("an edge: posedge, negedge, 01, 10, 0z, z1, 1z or z0");
        }
        m_delay.edge = m_token.text;
        next();
    }
    m_delay.from = expect_word("the pin that the delay starts from");
    if (has_edge) {
        expect_close();
    }
}

/// Reads a value behind its (.
SDF_VALUE SDF_READER::read_value() {
    if (m_token.kind == OPEN) {
        std::size_t const line = m_token.line;
        next();
        SDF_VALUE const value = read_value();
        skip_list(line);
        return value;
    }
    std::size_t const line = m_token.line;
    std::size_t const begin = m_at - m_token.text.size();
    std::size_t end = begin;
    for (; m_token.kind == WORD; next()) {
        end = m_at;
    }
    std::string_view const text = m_text.substr(begin, end - begin);
    SDF_VALUE value;
    std::size_t count = 0;
    bool is_legal = true;
    std::string_view rest = text;
    for (bool is_last = false; is_legal && !is_last;) {
        std::size_t const colon = std::min(rest.find(':'), rest.size());
        std::string_view const number = without_blanks_around(rest.substr(0, colon));
        is_last = colon == rest.size();
        is_legal = count < value.size() && (number.empty() || is_decimal(number));
        if (is_legal) {
            value[count++] = number;
            rest.remove_prefix(is_last ? colon : colon + 1);
        }
    }
    if (is_legal && count == 1) {
        value[CORNER_TYP] = value[CORNER_MAX] = value[CORNER_MIN];
    } else if (!is_legal || count != value.size()) {
        refuse_at(line, "found the delay value (" + std::string(text)
                            + "); expected one decimal number, or min:typ:max");
    }
    expect_close();
    return value;
}
