#ifndef RUN_PROGRAM_H
#define RUN_PROGRAM_H

/// @file
/// Runs a command in a shell and keeps everything that it says.

#include <iosfwd>
#include <string>

#include <sys/types.h>

/// What a command did.
struct RUN {
    std::string out; ///< standard output
    std::string err; ///< standard error
    int status;      ///< the exit status, or 128 + the signal that ended it
};
void PrintTo(RUN const& run, std::ostream* out);

/// Runs a command in /bin/sh and waits for it.
///
/// @param command as typed; the tools of this build are on the PATH, bigq among them
/// @param input   its standard input
/// @param folder  where it runs; empty for here
RUN run_shell(std::string const& command, std::string const& input = "",
              std::string const& folder = "");

/// A command that runs while the test talks to it.
class CONVERSATION {
public:
    explicit CONVERSATION(std::string const& command);
    ~CONVERSATION();
    CONVERSATION(CONVERSATION const&) = delete;
    CONVERSATION& operator=(CONVERSATION const&) = delete;

    /// Writes to the command's standard input.
    void say(std::string const& text);
    /// Reads what the command has written until there are `length` bytes, at most ten seconds long.
    std::string hear(std::size_t length);
    /// Whether the command is silent for a moment.
    bool is_silent();

private:
    pid_t m_process;
    int m_to = -1;
    int m_from = -1;
};

#endif
