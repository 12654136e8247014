// The debug channel, memory modules, pooled allocation and formatting into a string.

#include "mem_sys.h"

#include "cfg_sys.h"
#include "frame.h"
#include "replaceable.h"

#include <bit>
#include <cstdio>
#include <limits>
#include <locale.h>
#include <memory_resource>

#define PLATFORM_SOURCE_PATH "platform/standalone/mem"

// ------------------------------------------------------------------------------------------------
// Formatting
// ------------------------------------------------------------------------------------------------

namespace {

/// While it lives, this thread formats numbers in the "C" locale, whatever the process's.
class C_LOCALE {
public:
    C_LOCALE() : m_previous(uselocale(c_locale())) {}
    ~C_LOCALE() { uselocale(m_previous); }
    C_LOCALE(C_LOCALE const&) = delete;
    C_LOCALE& operator=(C_LOCALE const&) = delete;

private:
    static locale_t c_locale() {
        static locale_t const c = newlocale(LC_ALL_MASK, "C", nullptr);
        return c;
    }

    locale_t m_previous;
};

/// Formats as printf does in the "C" locale. False when the C library cannot (a wide character
/// that has no place in the locale, a text beyond INT_MAX); the text is then untouched.
bool format_text(std::string& text, char const* format, std::va_list args) {
    C_LOCALE const numbers_with_a_point;
    char local[256];
    std::va_list measured;
    va_copy(measured, args);
    int const printed = std::vsnprintf(local, sizeof local, format, measured);
    va_end(measured);
    if (printed < 0)
        return false;
    auto const length = static_cast<std::size_t>(printed);
    if (length < sizeof local) {
        text.assign(local, length);
    } else {
        std::string longer(length, '\0'); // an argument may point into the text
        std::vsnprintf(longer.data(), length + 1, format, args);
        text.swap(longer);
    }
    return true;
}

} // namespace

void MEM_DETAIL::stl_raw_sprintf(std::string* out, char const* format, ...) {
    std::va_list args;
    va_start(args, format);
    bool const formatted = format_text(*out, format, args);
    va_end(args);
    if (!formatted)
        PLATFORM_FAIL("the arguments cannot be printed in this format");
}

// ------------------------------------------------------------------------------------------------
// Debug messages
// ------------------------------------------------------------------------------------------------

namespace {

REPLACEABLE<MEM_DEBUG_SINK>& debug_sink() {
    static auto* const sink = new REPLACEABLE<MEM_DEBUG_SINK>;
    return *sink;
}

/// The switch BIG_DEBUG, read once. A debug message never fails, so a setting that cannot be read
/// is told on standard error, once, and counts as off.
bool debug_is_on() {
    static bool const on = [] {
        try {
            return cfg_is_on("big_debug");
        } catch (std::exception const& error) {
            std::fprintf(stderr, "no debug messages: %s\n", error.what());
            return false;
        }
    }();
    return on;
}

void print_debug_message(char const* module, std::string const& text) {
    std::string const line = std::string(module) + ": " + text + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr); // one write, so that threads do not mix lines
}

} // namespace

void mem_msg_local_vdebug(char const* module, char const* format, std::va_list args) {
    try {
        auto const sink = debug_sink().get();
        if (!sink && !debug_is_on())
            return;
        std::string text;
        if (!format_text(text, format, args))
            text = format;
        if (sink)
            (*sink)(module, text.c_str());
        else
            print_debug_message(module, text);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s: a debug message was lost: %s\n", module, error.what());
    } catch (...) { // a sink may throw anything
        std::fprintf(stderr, "%s: a debug message was lost: unknown exception\n", module);
    }
}

MEM_DEBUG_SINK mem_set_debug_sink(MEM_DEBUG_SINK sink) {
    return debug_sink().replace(std::move(sink));
}

// ------------------------------------------------------------------------------------------------
// Memory modules
// ------------------------------------------------------------------------------------------------

// The standalone platform keeps no accounts of memory, so there is nothing to enter a module in.

MEM_INITIALIZER::MEM_INITIALIZER(char const* module) : m_module(module) {}

MEM_INITIALIZER::~MEM_INITIALIZER() = default;

// ------------------------------------------------------------------------------------------------
// Pooled allocation
// ------------------------------------------------------------------------------------------------

namespace {

/// What m_chunks points to: chunks that grow geometrically, cut off from the front.
using CHUNKS = std::pmr::monotonic_buffer_resource;

} // namespace

MEM_UTILS_CHUNK_ALLOC::MEM_UTILS_CHUNK_ALLOC(bool enabled)
    : m_enabled(enabled), m_chunks(new CHUNKS(std::pmr::new_delete_resource())) {}

MEM_UTILS_CHUNK_ALLOC::~MEM_UTILS_CHUNK_ALLOC() {
    delete static_cast<CHUNKS*>(m_chunks);
}

bool MEM_UTILS_CHUNK_ALLOC::chunk_allocation_is_enabled() {
    return m_enabled;
}

void* MEM_UTILS_CHUNK_ALLOC::chunk_malloc(unsigned long size, unsigned long alignment) {
    PLATFORM_REQUIRE(std::has_single_bit(alignment));
    // Far above what any machine has, and far enough below the limit that rounding up to an
    // alignment stays a number.
    constexpr unsigned long MOST = std::numeric_limits<unsigned long>::max() / 4;
    if (size > MOST || alignment > MOST)
        throw std::bad_alloc();
    return static_cast<CHUNKS*>(m_chunks)->allocate(size == 0 ? 1 : size, alignment);
}
