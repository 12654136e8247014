#ifndef TIME_COMMAND_H
#define TIME_COMMAND_H

#include "exit_status.h"

#include <string>
#include <vector>

/// `bigq time`: converts times, frequencies and data rates.
EXIT_STATUS run_time(std::vector<std::string> const& arguments);

#endif
