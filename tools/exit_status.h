#ifndef EXIT_STATUS_H
#define EXIT_STATUS_H

/// @file
/// What bigq returns, the same for every command but `bigq compare`, which returns what cmp does.

enum EXIT_STATUS : int {
    STATUS_OK = 0,     ///< everything was converted
    STATUS_FAILED = 1, ///< at least one text was refused, or reading or writing failed
    STATUS_USAGE = 2,  ///< the command line was wrong; nothing was read or written

    STATUS_EQUAL = 0,     ///< of compare: the values are equal
    STATUS_DIFFERENT = 1, ///< of compare: one is less
    STATUS_TROUBLE = 2,   ///< of compare: there is no answer, whatever the reason
};

#endif
