#ifndef FRACTION_COMMAND_H
#define FRACTION_COMMAND_H

#include "exit_status.h"

#include <string>
#include <vector>

/// `bigq fraction`: computes with exact fractions.
EXIT_STATUS run_fraction(std::vector<std::string> const& arguments);

#endif
