#include "time_samples.h"

namespace {

char const* const UNIT_NAMES[] = {"",    "fs",  "ps",  "ns",        "us",  "ms",   "s",   "Hz",
                                  "kHz", "MHz", "GHz", "ten_th_ns", "bps", "Mbps", "Gbps"};

} // namespace

unsigned int TIME_SAMPLES::below(unsigned int limit) {
    return static_cast<unsigned int>((m_engine() >> 32) * limit >> 32);
}

long long TIME_SAMPLES::count() {
    unsigned long long magnitude = 0;
    switch (below(4)) {
    case 0: // ten to a power and its neighbours
        magnitude = 1;
        for (unsigned int i = below(20); i > 0; --i)
            magnitude *= 10;
        magnitude += below(5);
        magnitude -= 2;
        break;
    case 1: // two to a power and its neighbours
        magnitude = 1ull << below(64);
        magnitude += below(5);
        magnitude -= 2;
        break;
    default: // any width
        magnitude = m_engine();
        magnitude >>= below(64);
    }
    return static_cast<long long>(once_in(2) ? 0 - magnitude : magnitude);
}

unsigned short TIME_SAMPLES::precision() {
    if (once_in(10))
        return one_of<unsigned short>({13, 19, 20, 255, 256, 65535});
    return static_cast<unsigned short>(below(13));
}

std::string TIME_SAMPLES::digits(unsigned int longest) {
    unsigned int const length = below(longest + 1);
    unsigned int const kind = below(4);
    std::string text;
    for (unsigned int i = 0; i < length; ++i)
        text += kind == 0 ? '0' : kind == 1 ? '9' : static_cast<char>('0' + below(10));
    if (once_in(4))
        text.insert(0, below(4), '0');
    if (once_in(4))
        text.append(below(4), '0');
    return text;
}

std::string TIME_SAMPLES::boundary_number() {
    std::string text = one_of<char const*>(
        {"9223372036854775806", "9223372036854775807", "9223372036854775808", "9223372036854775809",
         "9999999999999999999", "10000000000000000000", "1000000000000000000", "999999999999999999",
         "18446744073709551615", "18446744073709551616"});
    if (once_in(4))
        text += digits(4);
    unsigned int const places = one_of<unsigned int>({0, 2, 3, 6, 9, 12, below(20)});
    if (places > 0 && places <= text.size())
        text.insert(text.size() - places, 1, '.');
    if (once_in(3))
        text += digits(4);
    return text;
}

std::string TIME_SAMPLES::number_text() {
    std::string text;
    if (once_in(6)) {
        text = boundary_number();
    } else {
        text = digits(once_in(5) ? 22 : 6);
        if (!once_in(3)) {
            text += '.';
            text += digits(once_in(5) ? 22 : 6);
        }
    }
    if (once_in(3))
        text = one_of<char const*>({"-", "-", "-", "+", "+", "+-", "--", "-."}) + text;
    if (once_in(20)) {
        unsigned int const place = below(static_cast<unsigned int>(text.size()) + 1);
        text.insert(place, 1, one_of<char>({'-', '+', '.', ' ', 'e', ','}));
    }
    return text;
}

std::string TIME_SAMPLES::unit_text() {
    if (once_in(25))
        return one_of<char const*>({"n", "nss", "sec", "ns ps", "n s", "nsec", "e3 ns", "Hzz",
                                    "ten th ns", "TEN_TH_NS ", "kbps", "min", "1", ".", "-"});
    std::string name = UNIT_NAMES[below(15)];
    unsigned int const kind = below(4);
    for (char& c : name)
        if (c != '_' && (kind == 0 || (kind == 1 && once_in(2))))
            c = static_cast<char>(c ^ 0x20); // the other letter case
    return name;
}

std::string TIME_SAMPLES::blanks() {
    std::string text;
    for (unsigned int i = once_in(2) ? below(4) : 0; i > 0; --i)
        text += once_in(2) ? ' ' : static_cast<char>('\t' + below(5));
    return text;
}

std::string TIME_SAMPLES::time_text() {
    // one statement each: the order of the draws is that of the text under every compiler
    std::string text = blanks();
    text += number_text();
    text += blanks();
    text += unit_text();
    text += blanks();
    return once_in(6) ? damaged(text) : text;
}

std::string TIME_SAMPLES::bytes(unsigned int longest) {
    std::string text;
    for (unsigned int i = below(longest + 1); i > 0; --i)
        text += static_cast<char>(below(256));
    return text;
}

std::string TIME_SAMPLES::damaged(std::string text) {
    std::size_t const place = below(static_cast<unsigned int>(text.size()) + 1);
    char const byte = once_in(3) ? '\0' : static_cast<char>(below(256));
    unsigned int const kind = below(3);
    if (kind == 0 || place == text.size())
        text.insert(place, 1, byte);
    else if (kind == 1)
        text.erase(place, 1);
    else
        text[place] = byte;
    return text;
}
