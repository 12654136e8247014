// Unsigned 64-bit integers: printing (row 3), reading (row 4).

#include "integer_text.h"

#include <big_sys.h>

void bench::add_comparisons() {
    add_printing<unsigned long long>(
        "ulong64", [](unsigned long long value) { return big_ulong64_to_string(value); },
        [](unsigned long long value, std::string* text) { big_ulong64_to_string(value, text); });
    add_reading<unsigned long long>("ulong64", big_ulong64_from_string);
}
