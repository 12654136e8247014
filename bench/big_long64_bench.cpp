// Signed 64-bit integers: printing (row 3), reading (row 4).

#include "integer_text.h"

#include <big_sys.h>

void bench::add_comparisons() {
    add_printing<long long>(
        "long64", [](long long value) { return big_long64_to_string(value); },
        [](long long value, std::string* text) { big_long64_to_string(value, text); });
    add_reading<long long>("long64", big_long64_from_string);
}
