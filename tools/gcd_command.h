#ifndef GCD_COMMAND_H
#define GCD_COMMAND_H

#include "exit_status.h"

#include <string>
#include <vector>

/// `bigq gcd`: finds the greatest common divisor of whole numbers.
EXIT_STATUS run_gcd(std::vector<std::string> const& arguments);

#endif
