#include "big_frame.h"

#define BIG_SOURCE_PATH "big/big_long64"

static MEM_INITIALIZER s_mem_initializer("BIG");

#include "big_digits.h"
#include "big_plain_number.h"
#include "big_sys.h"
#include "big_text.h"

std::string* big_long64_to_string(long long value, std::string* out) {
    big_assign_number(out, big_magnitude(value), value < 0);
    return out;
}

std::string big_long64_to_string(long long value) {
    return big_number_text(big_magnitude(value), value < 0);
}

// A minus sign counts wherever it stands, and several count as one. There is no other check: a
// magnitude from 2^63 on becomes the signed number of the same bits.
long long big_long64_from_string(std::string const& text) {
    unsigned long long magnitude = 0;
    if (big_read_plain_number(text, magnitude)) // a minus sign can only come first
        return big_with_sign(magnitude, text.front() == '-');
    magnitude = big_ulong64_from_string(text);
    return big_with_sign(magnitude, text.find('-') != std::string::npos);
}
