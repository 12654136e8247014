#ifndef U128_COMMAND_H
#define U128_COMMAND_H

#include "exit_status.h"

#include <string>
#include <vector>

/// `bigq u128`: computes with whole numbers of up to 128 bits.
EXIT_STATUS run_u128(std::vector<std::string> const& arguments);

#endif
