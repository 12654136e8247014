// `bigq store` in a program of its own. The database engines bring libraries along that take longer
// to load than most commands take to run, so bigq itself does without them.

#include "store_command.h"

#include "output.h"

#include <cerrno>
#include <filesystem>

#include <unistd.h>

EXIT_STATUS run_store(std::vector<std::string> const& arguments) {
    std::string const program =
        std::filesystem::read_symlink("/proc/self/exe").replace_filename("bigq-store");
    std::string first = program;
    std::string second = "store";
    std::vector<char*> words = {first.data(), second.data()};
    for (std::string const& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str())); // execv() does not change them
    words.push_back(nullptr);
    execv(program.c_str(), words.data());
    throw IO_ERROR(program, errno);
}
