#include "big_frame.h"

#define BIG_SOURCE_PATH "big/big_ulong64"

static MEM_INITIALIZER s_mem_initializer("BIG");

#include "big_digits.h"
#include "big_plain_number.h"
#include "big_sys.h"

std::string* big_ulong64_to_string(unsigned long long value, std::string* out) {
    big_assign_number(out, value, false);
    return out;
}

std::string big_ulong64_to_string(unsigned long long value) {
    return big_number_text(value, false);
}

//     text := { digit | other }
//
// The digits form the number wherever they stand; everything else is passed over.
unsigned long long big_ulong64_from_string(std::string const& text) {
    unsigned long long number = 0;
    if (big_read_plain_number(text, number))
        return number;

    int digits_seen = 0;
    for (char const c : text) {
        if (c < '0' || c > '9')
            continue;
        ++digits_seen;
        if (digits_seen > 20 || (digits_seen == 20 && number > BIG_LARGEST_BEFORE_20TH_DIGIT))
            BIG_FAIL("big number over flow");
        number = number * 10 + static_cast<unsigned int>(c - '0');
    }
    return number;
}
