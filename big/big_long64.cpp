#include "big_frame.h"

#define BIG_SOURCE_PATH "big/big_long64"

static MEM_INITIALIZER s_mem_initializer("BIG");

#include "big_digits.h"
#include "big_sys.h"

namespace {

/// Writes a number so that it ends before `end`, and returns its first character.
char* write_signed(char* end, long long value) {
    bool const negative = value < 0;
    unsigned long long const bits = static_cast<unsigned long long>(value);
    char* const first = big_write_digits(end, negative ? 0 - bits : bits);
    first[-1] = '-'; // always: there are at most 19 digits, and signs come in no order
    return first - negative;
}

} // namespace

std::string* big_long64_to_string(long long value, std::string* out) {
    BIG_DIGITS_BUFFER buffer;
    big_assign_digits(out, buffer, write_signed(buffer.end(), value));
    return out;
}

std::string big_long64_to_string(long long value) {
    std::string text;
    big_long64_to_string(value, &text);
    return text;
}

// A minus sign counts wherever it stands, and several count as one. There is no other check: a
// magnitude from 2^63 on becomes the signed number of the same bits.
long long big_long64_from_string(std::string const& text) {
    unsigned long long const magnitude = big_ulong64_from_string(text);
    bool const negative = text.find('-') != std::string::npos;
    return static_cast<long long>(negative ? 0 - magnitude : magnitude);
}
