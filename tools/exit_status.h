#ifndef EXIT_STATUS_H
#define EXIT_STATUS_H

/// @file
/// What bigq returns, the same for every command.

enum EXIT_STATUS : int {
    STATUS_OK = 0,     ///< everything was converted
    STATUS_FAILED = 1, ///< at least one text was refused, or reading or writing failed
    STATUS_USAGE = 2,  ///< the command line was wrong; nothing was read or written
};

#endif
