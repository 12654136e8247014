#ifndef MEM_SYS_H
#define MEM_SYS_H

/// @file
/// The debug channel, memory modules, pooled allocation and formatting into a string: what the
/// library asks of the platform.

#include <cstdarg>
#include <functional>
#include <string>

#pragma GCC visibility push(default)

/// Writes a printf-style debug message under a module's name. Never fails as far as the caller can
/// see; the caller goes on. It may be called from several threads at once. No argument is null.
///
/// The standalone platform gives the text, formatted in the "C" locale, to the program's sink if
/// there is one. Else it prints one line on standard error, as in "BIG: BIG_TIME constructor
/// failed", when the switch BIG_DEBUG is on (cfg_is_on("big_debug"), asked once in a process), and
/// nothing when it is off. A switch that cannot be read is told on standard error once and is off.
///
/// @param module the module's name, "BIG" for this library
/// @param format a printf format
/// @param args   the arguments of the format
void mem_msg_local_vdebug(char const* module, char const* format, std::va_list args);

/// Registers a memory module while it lives: one object for each source file of a library,
/// constructed when the library is loaded and destroyed when it is unloaded. The standalone
/// platform keeps no accounts of memory, so it does nothing with a module.
class MEM_INITIALIZER {
public:
    /// @param module the module's name; must outlive the object
    explicit MEM_INITIALIZER(char const* module);
    ~MEM_INITIALIZER();
    MEM_INITIALIZER(MEM_INITIALIZER const&) = delete;
    MEM_INITIALIZER& operator=(MEM_INITIALIZER const&) = delete;

private:
    char const* m_module;
};

/// A pool from which a database takes the objects that it loads; what was taken is released all at
/// once with the pool. One thread at a time may use a pool.
class MEM_UTILS_CHUNK_ALLOC {
public:
    /// @param enabled whether arrays are to come from the pool too
    explicit MEM_UTILS_CHUNK_ALLOC(bool enabled = true);
    ~MEM_UTILS_CHUNK_ALLOC();
    MEM_UTILS_CHUNK_ALLOC(MEM_UTILS_CHUNK_ALLOC const&) = delete;
    MEM_UTILS_CHUNK_ALLOC& operator=(MEM_UTILS_CHUNK_ALLOC const&) = delete;

    /// Whether pooled allocation is on.
    bool chunk_allocation_is_enabled();

    /// Takes memory from the pool, not zero-filled.
    ///
    /// @param size      bytes wanted; 0 gives a distinct address all the same
    /// @param alignment a power of two; the library always passes 8. Another value is an internal
    ///                  error of the standalone platform.
    /// @return the memory; std::bad_alloc is thrown when there is none
    void* chunk_malloc(unsigned long size, unsigned long alignment);

private:
    bool m_enabled;
    void* m_chunks; ///< the platform's own list of what was taken
};

namespace MEM_DETAIL {

/// Formats as printf does in the "C" locale, whatever the locale of the process or the thread, and
/// makes the text the whole content of *out. What cannot be printed (a wide character that the "C"
/// locale has no byte for) is an internal error of the standalone platform, which leaves *out as it
/// was.
///
/// @param out    receives the text; not null, but an argument may point into it
/// @param format a printf format, followed by its arguments
void stl_raw_sprintf(std::string* out, char const* format, ...)
    __attribute__((format(printf, 2, 3)));

} // namespace MEM_DETAIL

/// Receives a debug message of the standalone platform: the module and the formatted text.
///
/// It may be called from several threads at once. No lock is held meanwhile. The texts live until
/// it returns. A std::exception that it throws is told on standard error and goes no further.
using MEM_DEBUG_SINK = std::function<void(char const* module, char const* text)>;

/// Puts a program's own receiver of debug messages in place of the default (silent, or standard
/// error when the switch BIG_DEBUG is on); an empty sink puts the default back. Returns the
/// previous sink (empty at first). Safe to call from any thread. Standalone platform only.
MEM_DEBUG_SINK mem_set_debug_sink(MEM_DEBUG_SINK sink);

#pragma GCC visibility pop

#endif
