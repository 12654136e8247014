// The dump of four-state logic of the Verilog standards (IEEE 1364 section 18, IEEE 1800 section
// 21.7), with what simulators add to it. A dump is a row of words between white space; line ends
// mean nothing.
//
//     dump        = { declaration } "$enddefinitions" "$end" { record }
//     declaration = ( "$comment" | "$date" | "$version" ) { word } "$end"
//                 | "$timescale" ( "1" | "10" | "100" ) unit "$end"     (or in one word: "10ps")
//                 | "$scope" kind name "$end"
//                 | "$upscope" "$end"
//                 | "$var" type width code name { range } "$end"        (name "total[7:0]", too)
//     record      = "#" count                                           (never smaller than before)
//                 | digit code                                          (one word: "0!")
//                 | "b" digit { digit } " " code                        (one word, then another)
//                 | "r" number " " code
//                 | "s" text " " code                                   (the text may be empty)
//                 | ( "$dumpvars" | "$dumpall" | "$dumpon" | "$dumpoff" ) { record } "$end"
//                 | "$comment" { word } "$end"
//     digit       = 0 1 x z, and u w h l - as simulators of other languages write; any letter case
//     code        = printable ASCII characters other than the blank
//
// A value of fewer digits than its variable is extended with copies of an x, z, u, w or - in front,
// and with 0 otherwise.

#include "vcd_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cstring>
#include <utility>

// ------------------------------------------------------------------------------------------------
// Characters and messages
// ------------------------------------------------------------------------------------------------

namespace {

/// What a byte may be, as a set.
enum CHARACTER_CLASS : unsigned char {
    WHITE = 1, ///< white space between words
    WORD = 2,  ///< part of a word: printable ASCII, and bytes of 128 and above in names and texts
    DIGIT = 4, ///< the value of a bit
};

constexpr std::array<unsigned char, 256> CHARACTER_CLASSES = [] {
    std::array<unsigned char, 256> classes{};
    for (char const c : std::string_view(" \t\n\v\f\r")) {
        classes[static_cast<unsigned char>(c)] = WHITE;
    }
    for (std::size_t c = '!'; c < classes.size(); ++c) {
        classes[c] = WORD;
    }
    classes[0x7F] = 0;
    for (char const c : std::string_view("01xXzZuUwWhHlL-")) {
        classes[static_cast<unsigned char>(c)] |= DIGIT;
    }
    return classes;
}();

bool is_in(unsigned char set, char c) {
    return (CHARACTER_CLASSES[static_cast<unsigned char>(c)] & set) != 0;
}

constexpr char HEX_DIGITS[] = "0123456789ABCDEF";

std::string hex_of(char c) {
    auto const byte = static_cast<unsigned char>(c);
    return {HEX_DIGITS[byte >> 4], HEX_DIGITS[byte & 15]};
}

/// A word for a message: between quotation marks, printable and not too long.
std::string quoted(std::string_view word) {
    constexpr std::size_t LONGEST = 40;
    std::string text = "\"";
    for (char const c : word.substr(0, LONGEST)) {
        if (c >= ' ' && c <= '~') {
            text += c;
        } else {
            text += "\\x" + hex_of(c);
        }
    }
    return text + (word.size() > LONGEST ? "...\"" : "\"");
}

/// The first character that is not in a set. A 0, which stands behind every text here, is in none.
char const* skip(unsigned char set, char const* text) {
    while (is_in(set, *text)) {
        ++text;
    }
    return text;
}

/// Reads a text of nothing but decimal digits; false when it is something else or does not fit.
bool read_number(std::string_view text, unsigned int& number) {
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

} // namespace

VCD_SOURCE::~VCD_SOURCE() = default;

// ------------------------------------------------------------------------------------------------
// Timescale
// ------------------------------------------------------------------------------------------------

long long VCD_TIMESCALE::max_count() const {
    // A femtosecond is no whole number of picoseconds: time_of() multiplies before it cuts.
    return LLONG_MAX
           / (m_unit == BIG_TIME::UNIT_FS ? m_number
                                          : BIG_TIME::compute_storage_number(m_number, m_unit));
}

bool VCD_TIMESCALE::is_exact(long long count) const {
    return m_unit != BIG_TIME::UNIT_FS || count * m_number % 1000 == 0;
}

std::string VCD_TIMESCALE::text_of(long long count) const {
    return big_long64_to_string(count * m_number) + ' ' + BIG_TIME::get_time_unit_string(m_unit);
}

// ------------------------------------------------------------------------------------------------
// Words
// ------------------------------------------------------------------------------------------------

VCD_READER::VCD_READER(VCD_SOURCE& source, std::string file, std::size_t buffer_size)
    : m_source(source), m_file(std::move(file)), m_buffer(buffer_size + 1) {
    read_header();
}

/// Moves what is still needed to the front of the buffer and reads behind it. The buffer grows when
/// all of it is needed. Returns false at the end of the dump.
bool VCD_READER::read_more() {
    std::size_t const needed = m_end - m_record;
    if (needed > LONGEST_RECORD) {
        refuse_at(m_record, "a record of more than " + std::to_string(LONGEST_RECORD)
                                + " bytes; expected a shorter one than "
                                + quoted({m_buffer.data() + m_record, needed}));
    }
    line_at(m_record);
    std::memmove(m_buffer.data(), m_buffer.data() + m_record, needed);
    m_word -= m_record;
    m_next -= m_record;
    m_counted = m_record = 0;
    if (needed + 1 == m_buffer.size()) {
        m_buffer.resize(2 * m_buffer.size());
    }
    std::size_t const size = m_source.read(m_buffer.data() + needed, m_buffer.size() - 1 - needed);
    m_end = needed + size;
    m_buffer[m_end] = 0;
    return size > 0;
}

/// Passes over the characters of a set, across reads. Returns false at the end of the dump.
bool VCD_READER::pass(unsigned char set) {
    for (;;) {
        m_next = static_cast<std::size_t>(skip(set, m_buffer.data() + m_next) - m_buffer.data());
        if (m_next < m_end) {
            return true;
        }
        if (!read_more()) {
            return false;
        }
    }
}

/// Reads the next word of a record, which stays in the buffer from its first byte on. Returns false
/// at the end of the dump.
bool VCD_READER::read_word() {
    if (!pass(WHITE)) {
        return false;
    }
    m_word = m_next;
    if (!pass(WORD)) {
        refuse("the file ends inside the word " + quoted(word())
               + "; expected white space behind it: was the dump cut short?");
    }
    if (!is_in(WHITE, m_buffer[m_next])) {
        refuse_at(m_next, "the byte 0x" + hex_of(m_buffer[m_next])
                              + " is not text; expected a value change dump, which is plain text");
    }
    return true;
}

/// Reads the word with which a record starts. What is in front of it is no longer needed.
bool VCD_READER::read_first_word() {
    m_record = m_next;
    if (!read_word()) {
        return false;
    }
    m_record = m_word;
    return true;
}

/// The line of a place in the buffer. Line feeds are counted from where the last call stopped.
unsigned long long VCD_READER::line_at(std::size_t offset) {
    auto const line_feeds = [this](std::size_t begin, std::size_t end) {
        char const* const bytes = m_buffer.data();
        return static_cast<unsigned long long>(std::count(bytes + begin, bytes + end, '\n'));
    };
    if (m_counted <= offset) {
        m_line_feeds += line_feeds(m_counted, offset);
    } else {
        m_line_feeds -= line_feeds(offset, m_counted);
    }
    m_counted = offset;
    return m_line_feeds + 1;
}

std::string VCD_READER::place() {
    return m_file + ':' + std::to_string(line_at(m_record));
}

void VCD_READER::refuse_at(std::size_t offset, std::string const& reason) {
    throw VCD_ERROR(m_file + ':' + std::to_string(line_at(offset)) + ": " + reason);
}

// ------------------------------------------------------------------------------------------------
// Declarations
// ------------------------------------------------------------------------------------------------

/// Reads the declarations up to the end of $enddefinitions.
void VCD_READER::read_header() {
    struct COMMAND {
        std::string_view word;
        void (VCD_READER::*read)();
    };
    static constexpr COMMAND COMMANDS[] = {
        {"$comment", &VCD_READER::skip_text}, {"$date", &VCD_READER::skip_text},
        {"$version", &VCD_READER::skip_text}, {"$timescale", &VCD_READER::read_timescale},
        {"$scope", &VCD_READER::enter_scope}, {"$upscope", &VCD_READER::leave_scope},
        {"$var", &VCD_READER::read_variable}, {"$enddefinitions", &VCD_READER::end_header},
    };
    while (m_in_header) {
        if (!read_first_word()) {
            refuse_at(m_end, m_end == 0 ? "the file is empty; expected a value change dump"
                                        : "the file ends in front of $enddefinitions");
        }
        auto const* const command =
            std::find_if(std::begin(COMMANDS), std::end(COMMANDS),
                         [this](COMMAND const& c) { return c.word == word(); });
        if (command == std::end(COMMANDS)) {
            refuse("unexpected " + quoted(word())
                   + " in the declarations; expected a command such as $var or $enddefinitions");
        }
        begin_command();
        (this->*command->read)();
    }
}

void VCD_READER::begin_command() {
    m_command = word();
    m_command_line = line_at(m_word);
}

/// Reads the next word of the command, its $end included.
void VCD_READER::next_word_of_command() {
    if (!read_first_word()) {
        refuse_at(m_end, "the file ends inside the " + m_command + " of line "
                             + std::to_string(m_command_line) + "; expected $end");
    }
}

/// Reads the next word of the command, which must not be its $end.
std::string_view VCD_READER::argument(char const* what) {
    next_word_of_command();
    if (word() == "$end") {
        refuse("the " + m_command + " ends too early; expected " + what);
    }
    return word();
}

void VCD_READER::expect_end() {
    next_word_of_command();
    if (word() != "$end") {
        refuse("unexpected " + quoted(word()) + " in the " + m_command + "; expected $end");
    }
}

void VCD_READER::skip_text() {
    do {
        next_word_of_command();
    } while (word() != "$end");
}

void VCD_READER::read_timescale() {
    if (m_timescale.unit() != BIG_TIME::UNIT_NONE) {
        refuse("a second $timescale; expected one");
    }
    std::string text(argument("a time such as 1 ns"));
    std::size_t unit_begin = text.find_first_not_of("0123456789");
    if (unit_begin == std::string::npos) {
        unit_begin = text.size();
        text += argument("a unit from fs to s");
    }
    std::string const number = text.substr(0, unit_begin);
    BIG_TIME::TIME_UNIT unit = BIG_TIME::UNIT_NONE;
    BIG_TIME::extract_time_units(text.c_str() + unit_begin, unit);
    bool const is_unit = unit >= BIG_TIME::UNIT_FS && unit <= BIG_TIME::UNIT_S;
    if (!is_unit || (number != "1" && number != "10" && number != "100")) {
        refuse("the timescale " + quoted(text)
               + " is not one; expected 1, 10 or 100 and a unit from fs to s");
    }
    m_timescale = VCD_TIMESCALE(std::stoi(number), unit);
    expect_end();
}

void VCD_READER::enter_scope() {
    argument("a kind of scope");
    m_scopes.push_back(m_path.size());
    m_path += argument("a scope's name");
    m_path += '.';
    expect_end();
}

void VCD_READER::leave_scope() {
    if (m_scopes.empty()) {
        refuse("$upscope outside every scope; expected a $scope for it");
    }
    m_path.resize(m_scopes.back());
    m_scopes.pop_back();
    expect_end();
}

void VCD_READER::read_variable() {
    struct TYPE {
        std::string_view name;
        VCD_KIND kind;
    };
    // The types of the two standards, then those that simulators add.
    static constexpr TYPE TYPES[] = {
        {"wire", VCD_KIND::BITS},
        {"reg", VCD_KIND::BITS},
        {"integer", VCD_KIND::BITS},
        {"parameter", VCD_KIND::BITS},
        {"time", VCD_KIND::BITS},
        {"supply0", VCD_KIND::BITS},
        {"supply1", VCD_KIND::BITS},
        {"tri", VCD_KIND::BITS},
        {"tri0", VCD_KIND::BITS},
        {"tri1", VCD_KIND::BITS},
        {"triand", VCD_KIND::BITS},
        {"trior", VCD_KIND::BITS},
        {"trireg", VCD_KIND::BITS},
        {"wand", VCD_KIND::BITS},
        {"wor", VCD_KIND::BITS},
        {"real", VCD_KIND::REAL},
        {"realtime", VCD_KIND::REAL},
        {"event", VCD_KIND::EVENT},

        {"logic", VCD_KIND::BITS},
        {"bit", VCD_KIND::BITS},
        {"byte", VCD_KIND::BITS},
        {"shortint", VCD_KIND::BITS},
        {"int", VCD_KIND::BITS},
        {"longint", VCD_KIND::BITS},
        {"enum", VCD_KIND::BITS},
        {"shortreal", VCD_KIND::REAL},
        {"real_parameter", VCD_KIND::REAL},
        {"string", VCD_KIND::TEXT},
    };
    VCD_VARIABLE variable;
    variable.type = argument("a variable's type");
    auto const* const type = std::find_if(std::begin(TYPES), std::end(TYPES),
                                          [&](TYPE const& t) { return t.name == variable.type; });
    if (type == std::end(TYPES)) {
        refuse("unknown type of variable " + quoted(variable.type)
               + "; expected one such as wire, reg or real");
    }
    variable.kind = type->kind;

    std::string_view const width = argument("a width");
    if (!read_number(width, variable.width) || variable.width > WIDEST_VARIABLE
        || (variable.width == 0 && variable.kind == VCD_KIND::BITS)) {
        refuse("the width " + quoted(width) + " is not one; expected 1 to "
               + std::to_string(WIDEST_VARIABLE) + " bits");
    }

    std::string const code(argument("an identifier code"));
    if (std::any_of(code.begin(), code.end(), [](char c) { return c < '!' || c > '~'; })) {
        refuse("the identifier code " + quoted(code) + " is not one; expected printable ASCII");
    }
    read_name(variable);
    variable.signal = m_codes.find(code);
    if (variable.signal == VCD_CODE_TABLE::NONE) {
        variable.signal = m_signals.size();
        m_codes.add(code, variable.signal);
        m_signals.push_back({variable.kind, variable.width, false});
    }
    SIGNAL const& signal = m_signals[variable.signal];
    if (signal.kind != variable.kind
        || (signal.kind == VCD_KIND::BITS && signal.width != variable.width)) {
        refuse(variable.name + " has the identifier code " + quoted(code)
               + " of a variable of another type or width; expected equal ones");
    }
    m_variables.push_back(std::move(variable));
}

/// Reads a variable's name, its range and the $end. The range may be part of the name's word or be
/// made of several words; a backslash in front makes brackets part of a name.
void VCD_READER::read_name(VCD_VARIABLE& variable) {
    constexpr std::size_t LONGEST_RANGE = 1000;
    std::string name(argument("a variable's name"));
    std::string& range = variable.range;
    for (next_word_of_command(); word() != "$end"; next_word_of_command()) {
        bool const is_open = !range.empty() && range.back() != ']';
        if ((!is_open && word().front() != '[') || range.size() > LONGEST_RANGE) {
            refuse("unexpected " + quoted(word()) + " behind the name " + quoted(name)
                   + "; expected a range such as [7:0] or $end");
        }
        range += word();
    }
    if (!range.empty() && range.back() != ']') {
        refuse("the range " + quoted(range) + " of " + quoted(name) + " is open; expected ]");
    }
    std::size_t const bracket = name.rfind('[');
    if (range.empty() && name.front() != '\\' && name.back() == ']' && bracket != std::string::npos
        && name.find(':', bracket) != std::string::npos) {
        range = name.substr(bracket);
        name.resize(bracket);
    }
    variable.name = m_path + name;
}

void VCD_READER::end_header() {
    expect_end();
    if (m_timescale.unit() == BIG_TIME::UNIT_NONE) {
        refuse("the declarations have no $timescale; expected one such as $timescale 1 ns $end");
    }
    m_max_time = static_cast<unsigned long long>(m_timescale.max_count());
    m_in_header = false;
}

// ------------------------------------------------------------------------------------------------
// Value changes
// ------------------------------------------------------------------------------------------------

bool VCD_READER::next(VCD_CHANGE& change) {
    bool found = false;
    while (!found && read_first_word()) {
        switch (m_buffer[m_word]) {
        case '#': read_time(); break;
        case '$': read_command(); break;
        case 'b':
        case 'B': found = read_bits(change); break;
        case 'r':
        case 'R': found = read_real(change); break;
        case 's': found = read_text(change); break;
        default: found = read_bit(change); break;
        }
    }
    if (!found && !m_list.empty()) {
        refuse_at(m_end, "the file ends inside the " + m_list + " of line "
                             + std::to_string(m_list_line) + "; expected $end");
    }
    change.time = static_cast<long long>(m_time);
    return found;
}

void VCD_READER::read_command() {
    static constexpr std::string_view LISTS[] = {"$dumpvars", "$dumpall", "$dumpon", "$dumpoff"};
    begin_command();
    if (m_command == "$comment") {
        skip_text();
    } else if (m_command == "$end" && !m_list.empty()) {
        m_list.clear();
    } else if (std::find(std::begin(LISTS), std::end(LISTS), m_command) != std::end(LISTS)
               && m_list.empty()) {
        m_list = m_command;
        m_list_line = m_command_line;
    } else if (m_list.empty()) {
        refuse("unexpected " + quoted(m_command)
               + "; expected a value change, #time, $comment, $dumpvars, $dumpall, $dumpon or "
                 "$dumpoff");
    } else {
        refuse("unexpected " + quoted(m_command) + " in the " + m_list + " of line "
               + std::to_string(m_list_line) + "; expected a value change or $end");
    }
}

void VCD_READER::read_time() {
    std::string_view const digits = word().substr(1);
    char const* const end = digits.data() + digits.size();
    unsigned long long time = 0;
    auto const [stop, error] = std::from_chars(digits.data(), end, time);
    if (error == std::errc::invalid_argument || stop != end) {
        refuse("the time " + quoted(word()) + " is not one; expected # and decimal digits");
    }
    if (error == std::errc::result_out_of_range || time > m_max_time) {
        refuse("the time " + quoted(word()) + " is too late; expected at most #"
               + std::to_string(m_max_time) + ", as a time must fit 64 bits");
    }
    if (time < m_time) {
        refuse("the time goes back from #" + std::to_string(m_time) + " to #" + std::to_string(time)
               + "; expected no earlier time");
    }
    m_time = time;
}

/// "0!": a digit and an identifier code in one word.
bool VCD_READER::read_bit(VCD_CHANGE& change) {
    if (!is_in(DIGIT, m_buffer[m_word])) {
        refuse("unexpected " + quoted(word())
               + "; expected #time, a $command, or a value: one of 0 1 x z b r s and the rest");
    }
    if (word().size() == 1) {
        refuse("the value " + quoted(word())
               + " has no identifier code; expected one directly behind it");
    }
    return take_bits(word().substr(0, 1), signal_of(word().substr(1)), change);
}

/// "b101 !": digits and an identifier code.
bool VCD_READER::read_bits(VCD_CHANGE& change) {
    char const* const bytes = m_buffer.data();
    char const* const digits_end = skip(DIGIT, bytes + m_word + 1);
    if (digits_end != bytes + m_next || word().size() == 1) {
        refuse("the value " + quoted(word())
               + " is not one; expected b and digits of 0 1 x z u w h l -");
    }
    std::size_t signal;
    std::string_view const digits = read_value(signal);
    return take_bits(digits, signal, change);
}

/// "r1.5 !": a number and an identifier code.
bool VCD_READER::read_real(VCD_CHANGE& change) {
    std::string_view const number = word().substr(1);
    char const* const end = number.data() + number.size();
    double value = 0.0;
    auto const [stop, error] = std::from_chars(number.data(), end, value);
    if (error == std::errc::invalid_argument || stop != end) {
        refuse("the value " + quoted(word()) + " is not one; expected r and a decimal number");
    }
    std::size_t signal;
    std::string_view const text = read_value(signal);
    return take_text(VCD_KIND::REAL, text, signal, change);
}

/// "sIDLE !": a text and an identifier code.
bool VCD_READER::read_text(VCD_CHANGE& change) {
    std::size_t signal;
    std::string_view const text = read_value(signal);
    return take_text(VCD_KIND::TEXT, text, signal, change);
}

/// Reads the identifier code behind a value in a word of its own. Returns the value without the
/// letter in front of it.
std::string_view VCD_READER::read_value(std::size_t& signal) {
    std::size_t const size = m_next - m_word;
    if (!read_word()) {
        refuse_at(m_end, "the file ends behind the value "
                             + quoted({m_buffer.data() + m_record, size})
                             + "; expected an identifier code");
    }
    signal = signal_of(word());
    return {m_buffer.data() + m_record + 1, size - 1};
}

std::size_t VCD_READER::signal_of(std::string_view code) {
    std::size_t const signal = m_codes.find(code);
    if (signal == VCD_CODE_TABLE::NONE) {
        refuse("the identifier code " + quoted(code) + " is unknown; expected one of a $var");
    }
    return signal;
}

bool VCD_READER::take_bits(std::string_view digits, std::size_t number, VCD_CHANGE& change) {
    SIGNAL const& signal = m_signals[number];
    if (signal.kind == VCD_KIND::EVENT) {
        change.value = {};
        change.signal = number;
        return signal.selected && m_list.empty();
    }
    expect_kind(VCD_KIND::BITS, signal);
    if (digits.size() > signal.width) {
        refuse_at(m_record, "a value of " + std::to_string(digits.size())
                                + " bits for a variable of " + std::to_string(signal.width)
                                + "; expected no more than that");
    }
    if (signal.selected && digits.size() < signal.width) {
        // The library drops leading zeros before it extends a value, which makes 000x of "0x" an
        // unknown value. Here the first digit decides.
        bool const is_copied = std::strchr("01hHlL", digits.front()) == nullptr;
        m_digits.assign(signal.width - digits.size(), is_copied ? digits.front() : '0');
        m_digits += digits;
        digits = m_digits;
    }
    change.value = digits;
    change.signal = number;
    return signal.selected;
}

bool VCD_READER::take_text(VCD_KIND kind, std::string_view text, std::size_t number,
                           VCD_CHANGE& change) {
    SIGNAL const& signal = m_signals[number];
    expect_kind(kind, signal);
    change.value = text;
    change.signal = number;
    return signal.selected;
}

void VCD_READER::expect_kind(VCD_KIND kind, SIGNAL const& signal) {
    //                                            BITS    EVENT      REAL            TEXT
    static constexpr char const* KIND_NAMES[] = {"bits", "an event", "a real number", "text"};
    if (signal.kind != kind) {
        refuse_at(m_record, std::string("a value of another kind than its variable's: it is ")
                                + KIND_NAMES[static_cast<int>(kind)] + "; expected "
                                + KIND_NAMES[static_cast<int>(signal.kind)]);
    }
}
