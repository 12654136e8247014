// What `bigq time` and `bigq radix` do to each line, as a loop over the library alone (row 17).
// usage: filter_loop time|radix < INPUT > OUTPUT

#include <big_sys.h>

#include <cstring>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    bool const is_time = argc == 2 && std::strcmp(argv[1], "time") == 0;
    BIG_TIME time;
    std::string line;
    std::string result;
    while (std::getline(std::cin, line)) {
        if (is_time) {
            if (!time.set_time(line, false))
                return 1;
            time.to_string(&result, BIG_TIME::UNIT_PS, 0, false);
        } else if (big_radix_conversion(line, &result, BIG_HEX, BIG_BIN, 64) == 1) {
            return 1;
        }
        result += '\n';
        std::cout.write(result.data(), static_cast<std::streamsize>(result.size()));
    }
    return std::cout.flush() ? 0 : 1;
}
