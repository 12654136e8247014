// `bigq store` in a program of its own. The database engines bring libraries along that take longer
// to load than most commands take to run, so bigq itself does without them.

#include "store_command.h"

#include "output.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <unistd.h>

EXIT_STATUS run_store(std::vector<std::string> const& arguments) {
    // Beside this program; on the PATH where the system does not say where that is.
    std::error_code unknown;
    std::string const program =
        std::filesystem::read_symlink("/proc/self/exe", unknown).replace_filename("bigq-store");
    std::string first = program;
    std::string second = "store";
    std::vector<char*> words = {first.data(), second.data()};
    for (std::string const& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str())); // execvp() does not change them
    words.push_back(nullptr);
    execvp(program.c_str(), words.data());
    throw IO_ERROR(program, errno);
}
