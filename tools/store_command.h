#ifndef STORE_COMMAND_H
#define STORE_COMMAND_H

#include "exit_status.h"

#include <string>
#include <vector>

/// `bigq store`: puts values into a store, and shows, checks, dumps and loads it.
EXIT_STATUS run_store(std::vector<std::string> const& arguments);

#endif
