#include "observation.h"

#include <ostream>

std::string in_quotes(std::string const& text) {
    static char const hex[] = "0123456789abcdef";
    std::string result = "\"";
    for (char const c : text) {
        auto const byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7f)
            result += c;
        else
            (((result += "\\x") += hex[byte / 16]) += hex[byte % 16]);
    }
    return result + '"';
}

void PrintTo(OBSERVATION const& observation, std::ostream* out) {
    *out << observation.result << "; reports:";
    if (observation.reports.empty())
        *out << " none";
    for (recording::CALL const& report : observation.reports) {
        *out << "\n    " << report.operation;
        for (std::string const& argument : report.arguments)
            *out << ' ' << in_quotes(argument);
    }
}

std::string left_by(std::out_of_range const& error) {
    std::string const what = error.what();
    return "std::out_of_range of " + what.substr(0, what.find(": "));
}

std::vector<recording::CALL> reports_without_lines() {
    std::vector<recording::CALL> reports = recording::reports();
    for (recording::CALL& report : reports)
        if (report.operation == "err_report_internal_error")
            report.arguments.pop_back();
    return reports;
}

namespace observation_detail {

std::string word(std::string const& text) {
    return in_quotes(text);
}

std::string word(bool value) {
    return value ? "true" : "false";
}

std::string word(int value) {
    return std::to_string(value);
}

std::string word(long long value) {
    return std::to_string(value);
}

} // namespace observation_detail
