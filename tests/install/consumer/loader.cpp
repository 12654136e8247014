// A program that loads the library while it runs, every symbol bound at once.

#include <dlfcn.h>

#include <cstdlib>
#include <iostream>

int main(int, char** argv) {
    void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr || dlsym(library, "_Z21big_char_is_printablec") == nullptr) {
        std::cerr << dlerror() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
