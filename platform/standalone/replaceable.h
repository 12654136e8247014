#ifndef PLATFORM_REPLACEABLE_H
#define PLATFORM_REPLACEABLE_H

/// @file
/// The standalone platform's way to let a program put a function of its own in place of a default.

#include <memory>
#include <mutex>
#include <utility>

/// Holds a std::function that any thread may call or replace at any time.
///
/// Give it static storage that is never destroyed: reports may come while the process ends.
template <typename FUNCTION>
class REPLACEABLE {
public:
    /// The function in force, null when there is none. It lives while the caller holds it, even
    /// when another thread replaces it meanwhile; no lock is held while it runs.
    std::shared_ptr<FUNCTION const> get() {
        std::lock_guard<std::mutex> const lock(m_mutex);
        return m_function;
    }

    /// Puts a function in force, or none when it is empty, and returns the previous one.
    FUNCTION replace(FUNCTION function) {
        std::shared_ptr<FUNCTION const> exchanged;
        if (function)
            exchanged = std::make_shared<FUNCTION const>(std::move(function));
        {
            std::lock_guard<std::mutex> const lock(m_mutex);
            m_function.swap(exchanged);
        }
        return exchanged ? *exchanged : FUNCTION();
    }

private:
    std::mutex m_mutex;
    std::shared_ptr<FUNCTION const> m_function;
};

#endif
