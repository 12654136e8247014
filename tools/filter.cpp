#include "filter.h"

#include "command_line.h"
#include "err_sys.h"
#include "line_reader.h"
#include "output.h"
#include "text.h"

#include <array>
#include <climits>
#include <string_view>

namespace {

struct INVALID_NAME {
    char const* name;
    INVALID invalid;
};

constexpr std::array<INVALID_NAME, 4> INVALID_NAMES = {{
    {"abort", INVALID::ABORT},
    {"fail", INVALID::FAIL},
    {"warn", INVALID::WARN},
    {"ignore", INVALID::IGNORE},
}};

INVALID invalid_named(std::string const& name) {
    for (INVALID_NAME const& row : INVALID_NAMES) {
        if (name == row.name) {
            return row.invalid;
        }
    }
    throw USAGE_ERROR("--invalid: " + in_quotes(name)
                      + " is not a mode: expected abort, fail, warn or ignore");
}

char delimiter_named(std::string const& text) {
    if (text.size() != 1 || text == "\n") {
        throw USAGE_ERROR("--delimiter: " + in_quotes(text)
                          + " is not one character of one byte, other than a line feed");
    }
    return text[0];
}

/// Field `number` of a line whose fields a character separates; nothing when there are fewer.
std::optional<std::string_view> delimited_field(std::string_view line, unsigned long number,
                                                char delimiter) {
    std::size_t begin = 0;
    for (unsigned long skipped = 1; skipped < number; ++skipped) {
        begin = line.find(delimiter, begin);
        if (begin == std::string_view::npos) {
            return {};
        }
        ++begin;
    }
    return line.substr(begin, line.find(delimiter, begin) - begin);
}

/// Field `number` of a line whose fields runs of blanks separate; nothing when there are fewer.
std::optional<std::string_view> blank_field(std::string_view line, unsigned long number) {
    static constexpr std::string_view BLANKS = " \t";
    std::size_t end = 0;
    std::size_t begin = 0;
    for (unsigned long found = 0; found < number; ++found) {
        begin = line.find_first_not_of(BLANKS, end);
        if (begin == std::string_view::npos) {
            return {};
        }
        end = line.find_first_of(BLANKS, begin);
    }
    return line.substr(begin, end - begin);
}

/// One run over texts or lines.
class FILTER {
public:
    FILTER(FILTER_OPTIONS const& options, CONVERSION& conversion)
        : m_options(options), m_conversion(conversion) {}

    EXIT_STATUS convert_texts(std::vector<std::string> const& texts);
    EXIT_STATUS convert_joined(std::vector<std::string> const& texts);
    EXIT_STATUS convert_lines();

private:
    bool convert_line(LINE const& line);
    std::optional<std::string_view> field_of(std::string_view line) const;
    OUTCOME convert_text(std::string_view text);
    void write_line(LINE const& line, std::string_view field, std::string_view result);
    void write_object(std::string_view text, OUTCOME outcome);

    FILTER_OPTIONS const& m_options;
    CONVERSION& m_conversion;
    OUTPUT m_output;
    EXIT_STATUS m_status = STATUS_OK;
    std::string m_place; ///< what stands in front of a line's number in a message

    // Of the text at hand; members so that their memory is used again.
    std::string m_text;
    std::string m_result;
    std::string m_problem;
    std::string m_object;
};

EXIT_STATUS FILTER::convert_texts(std::vector<std::string> const& texts) {
    m_place = "argument ";
    unsigned long long number = 0;
    for (std::string const& text : texts) {
        ++number;
        if (!convert_line({text, "\n", number, false})) {
            break;
        }
    }
    m_output.flush();
    return m_status;
}

EXIT_STATUS FILTER::convert_joined(std::vector<std::string> const& texts) {
    m_place = texts.size() == 1 ? "argument " : "arguments 1 to ";
    std::string joined = texts.front();
    for (std::size_t i = 1; i < texts.size(); ++i) {
        joined += ' ' + texts[i];
    }
    convert_line({joined, "\n", texts.size(), false});
    m_output.flush();
    return m_status;
}

EXIT_STATUS FILTER::convert_lines() {
    m_place = INPUT_NAME + std::string(":");
    LINE_READER reader(m_output);
    LINE line;
    if (m_options.header && reader.next(line) && !m_options.json) {
        m_output.add(line.text);
        m_output.add(line.end);
    }
    while (reader.next(line)) {
        if (!convert_line(line)) {
            break;
        }
    }
    m_output.flush();
    return m_status;
}

/// Converts a line and writes it. Returns whether to go on.
bool FILTER::convert_line(LINE const& line) {
    std::optional<std::string_view> const field = field_of(line.text);
    std::string_view const text = field.value_or(line.text);
    OUTCOME outcome = OUTCOME::REFUSED;
    if (!field) {
        m_problem = "has no field " + std::to_string(*m_options.field);
    } else if (line.may_hold_nul && text.find('\0') != std::string_view::npos) {
        m_problem = "holds a NUL byte: expected text";
    } else {
        outcome = convert_text(text);
    }
    if (outcome == OUTCOME::LOST_DIGITS && m_options.strict) {
        outcome = OUTCOME::REFUSED;
    }
    bool const is_refused = outcome == OUTCOME::REFUSED;
    if (outcome != OUTCOME::CONVERTED) {
        m_problem = in_quotes(text) + ' ' + m_problem;
        if (!is_refused || m_options.invalid != INVALID::IGNORE) {
            m_output.report(m_place + std::to_string(line.number) + ": " + m_problem);
        }
    }
    bool const is_last = is_refused && m_options.invalid == INVALID::ABORT;
    if (is_last || (is_refused && m_options.invalid == INVALID::FAIL)) {
        m_status = STATUS_FAILED;
    }
    if (m_options.json) {
        write_object(text, outcome);
    } else if (!is_last) {
        write_line(line, text, is_refused ? text : std::string_view(m_result));
    }
    return !is_last;
}

std::optional<std::string_view> FILTER::field_of(std::string_view line) const {
    if (!m_options.field) {
        return line;
    }
    return m_options.delimiter ? delimited_field(line, *m_options.field, *m_options.delimiter)
                               : blank_field(line, *m_options.field);
}

OUTCOME FILTER::convert_text(std::string_view text) {
    m_text = text;
    try {
        return m_conversion.convert(m_text, m_result, m_problem);
    } catch (ERR_INTERNAL_ERROR const& error) {
        m_problem = "cannot be converted: " + error.text();
        return OUTCOME::REFUSED;
    }
}

/// Writes a line with a result in place of its field.
void FILTER::write_line(LINE const& line, std::string_view field, std::string_view result) {
    std::size_t const field_begin = static_cast<std::size_t>(field.data() - line.text.data());
    m_output.add(line.text.substr(0, field_begin));
    m_output.add(result);
    m_output.add(line.text.substr(field_begin + field.size()));
    m_output.add(line.end);
}

/// Writes what became of a text as a JSON object.
void FILTER::write_object(std::string_view text, OUTCOME outcome) {
    m_object.clear();
    {
        JSON_OBJECT object(m_object);
        object.add("input", text);
        object.add("ok", outcome != OUTCOME::REFUSED);
        if (outcome == OUTCOME::REFUSED) {
            object.add("error", m_problem);
        } else {
            m_conversion.add_members(object);
            object.add("text", m_result);
        }
        if (outcome == OUTCOME::LOST_DIGITS) {
            object.add("warning", m_problem);
        }
    }
    m_object += '\n';
    m_output.add(m_object);
}

} // namespace

CONVERSION::~CONVERSION() = default;

char const* const FILTER_HELP =
    "Lines keep their ends. An empty line is refused like any other text that is no value. "
    "Messages go to standard error and name the line, the text and what was expected.\n"
    "\n"
    "Exit status: 0 when everything was converted (or --invalid is warn or ignore), 1 when a text "
    "was refused or reading or writing failed, 2 for a wrong command line.\n";

void add_filter_options(COMMAND_LINE& line, FILTER_OPTIONS& options) {
    line.begin_group("Lines");
    line.add_number(
        "--field", 1, ULONG_MAX, [&options](unsigned long number) { options.field = number; },
        "Convert field N of each line and keep the rest (default: the whole line)");
    line.add_text(
        "-d,--delimiter", "C",
        [&options](std::string const& text) { options.delimiter = delimiter_named(text); },
        "The character between fields (default: runs of spaces and tabs); without --field, field 1 "
        "is converted");
    line.add_flag("--header", options.header, "Write the first line as it is");
    line.add_text(
        "--invalid", "MODE",
        [&options](std::string const& text) { options.invalid = invalid_named(text); },
        "What to do about a text that is refused:\n"
        "abort (default): report it and stop, status 1\n"
        "fail: report it, write its line as it is, go on, status 1\n"
        "warn: report it, write its line as it is, go on, status 0\n"
        "ignore: write its line as it is, go on, status 0");
    line.add_flag("--strict", options.strict, "Refuse a text that would lose digits");
    line.add_flag("--json", options.json, "Write one JSON object for each text");
}

EXIT_STATUS run_filter(FILTER_OPTIONS const& options, std::vector<std::string> const& texts,
                       CONVERSION& conversion) {
    FILTER_OPTIONS complete = options;
    if (complete.delimiter && !complete.field) {
        complete.field = 1;
    }
    if (complete.header && !texts.empty()) {
        throw USAGE_ERROR("--header: it is for the lines of standard input, not for arguments");
    }
    FILTER filter(complete, conversion);
    if (texts.empty()) {
        return filter.convert_lines();
    }
    return complete.joins_texts ? filter.convert_joined(texts) : filter.convert_texts(texts);
}
