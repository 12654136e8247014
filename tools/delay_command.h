#ifndef DELAY_COMMAND_H
#define DELAY_COMMAND_H

#include "exit_status.h"

#include <string>
#include <vector>

/// `bigq delay`: writes delays counted in one timescale in another.
EXIT_STATUS run_delay(std::vector<std::string> const& arguments);

#endif
