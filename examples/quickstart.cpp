#include <big_sys.h>

#include <iostream>

int main() {
    BIG_TIME const gate("2.5 ns", true); // text to picoseconds and back, on the digits alone
    BIG_TIME const path = gate * 3 + BIG_TIME("0.35 ns", true);
    BIG_TIME const clock("125 MHz", true);
    std::cout << path.to_string(BIG_TIME::UNIT_PS, 0, true) << " of "
              << clock.to_string(BIG_TIME::UNIT_NS, 3, true) << '\n';
    std::string bits;
    big_radix_conversion("1X", &bits, BIG_HEX, BIG_BIN, 8);
    std::cout << bits << '\n';
    std::cout << (BIG_ULONG128(1ull << 63) * BIG_ULONG128(1ull << 62)).to_string() << '\n';
}
