#ifndef RADIX_COMMAND_H
#define RADIX_COMMAND_H

#include "exit_status.h"

#include <string>
#include <vector>

/// `bigq radix`: converts bit vectors between radixes, or says which texts are legal in one.
EXIT_STATUS run_radix(std::vector<std::string> const& arguments);

#endif
