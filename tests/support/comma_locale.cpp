#include "comma_locale.h"

#include <clocale>
#include <cstdlib>

namespace {

/// Puts the process into the locale that the build made, if it could.
bool write_commas() {
    setenv("LOCPATH", BIG_LOCALES, 1);
    return std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
}

} // namespace

COMMA_LOCALE::COMMA_LOCALE()
    : m_previous(std::setlocale(LC_ALL, nullptr)), m_available(write_commas()) {}

COMMA_LOCALE::~COMMA_LOCALE() {
    unsetenv("LOCPATH");
    std::setlocale(LC_ALL, m_previous.c_str());
}
