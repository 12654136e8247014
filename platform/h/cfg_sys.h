#ifndef CFG_SYS_H
#define CFG_SYS_H

/// @file
/// Configuration switches: what the library asks of the platform.

#include <string>

#pragma GCC visibility push(default)

/// Whether a boolean configuration switch is set. A switch that is not configured is off.
///
/// The library asks for a switch once in each of its operations that depend on it, and again only
/// after an exception, so the answer need not be quick. It may be asked from several threads at
/// once.
///
/// The standalone platform looks at the environment variable named as the switch in upper case
/// (on, true, yes, 1 or off, false, no, 0 in any letter case), then at the top-level key of that
/// name in the TOML file that the environment variable BIG_CONFIG names (true or false). An empty
/// variable counts as absent, and the file may leave a switch out. The file is read at each call,
/// and only when the environment does not decide. A value or a file that it cannot read throws
/// std::runtime_error with a text that names the variable, or the file and the line.
///
/// @param name the switch's name, in lower case
bool cfg_is_on(std::string const& name);

#pragma GCC visibility pop

#endif
