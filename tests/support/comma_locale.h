#ifndef COMMA_LOCALE_H
#define COMMA_LOCALE_H

/// @file
/// A process locale in which 1.5 reads 1,5: no result may depend on it.

#include <string>

/// Puts the process into such a locale while it lives. The build makes the locale.
class COMMA_LOCALE {
public:
    COMMA_LOCALE();
    ~COMMA_LOCALE();
    COMMA_LOCALE(COMMA_LOCALE const&) = delete;
    COMMA_LOCALE& operator=(COMMA_LOCALE const&) = delete;

    /// False when the build could not make it; a test skips then.
    bool available() const { return m_available; }

private:
    std::string m_previous;
    bool m_available;
};

#endif
