#ifndef COMPARE_COMMAND_H
#define COMPARE_COMMAND_H

#include "exit_status.h"

#include <string>
#include <vector>

/// `bigq compare`: says whether two times, frequencies or data rates are equal, and which is less.
EXIT_STATUS run_compare(std::vector<std::string> const& arguments);

#endif
