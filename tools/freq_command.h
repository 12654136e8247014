#ifndef FREQ_COMMAND_H
#define FREQ_COMMAND_H

#include "exit_status.h"

#include <string>
#include <vector>

/// `bigq freq`: converts periods into frequencies and back.
EXIT_STATUS run_freq(std::vector<std::string> const& arguments);

#endif
