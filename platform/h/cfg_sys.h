#ifndef CFG_SYS_H
#define CFG_SYS_H

/// @file
/// Configuration switches: what the library asks of the platform.

#include <string>

#pragma GCC visibility push(default)

/// Whether a boolean configuration switch is set. A switch that is not configured is off.
///
/// The standalone platform looks at the environment variable named as the switch in upper case
/// (on, true, yes, 1 or off, false, no, 0 in any letter case), then at the key of that name in the
/// TOML file that the environment variable BIG_CONFIG names. A value or a file that it cannot read
/// throws std::runtime_error with a text that names the variable, or the file and the line.
///
/// @param name the switch's name, in lower case
bool cfg_is_on(std::string const& name);

#pragma GCC visibility pop

#endif
