// A program that brings a platform of its own, as a suite does. It calls a single function of the
// library and checks, through its platform, that every source file was there at load, in order.

#include <big_sys.h>
#include <cfg_sys.h>
#include <gen_math_sys.h>
#include <gen_sys.h>
#include <ktl_sys.h>
#include <mem_sys.h>
#include <pdb_sys.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace {

/// What was registered at load. A function holds it because the library is loaded before main() and
/// before the objects of this file are built.
std::string& registrations() {
    static std::string text;
    return text;
}

struct REPORT {
    std::string text;
};

} // namespace

// --- The platform; what this program never reaches ends it ---

void err_report_internal_error(char const* text, char const*, char const*, int) {
    throw REPORT{text};
}

void err_post_enumerated_msg(MSG_ENUMERATED_POST_MSG, char const*, char const*) {}

void mem_msg_local_vdebug(char const*, char const*, std::va_list) {}

MEM_INITIALIZER::MEM_INITIALIZER(char const* module) : m_module(module) {
    bool const table_is_built = BIG_ULONG128::s_table.m_powers[0] == BIG_ULONG128(1u);
    registrations() += table_is_built ? "[BIG] " : "BIG ";
}

MEM_INITIALIZER::~MEM_INITIALIZER() = default;

MEM_UTILS_CHUNK_ALLOC::MEM_UTILS_CHUNK_ALLOC(bool enabled)
    : m_enabled(enabled), m_chunks(nullptr) {}

MEM_UTILS_CHUNK_ALLOC::~MEM_UTILS_CHUNK_ALLOC() = default;

bool MEM_UTILS_CHUNK_ALLOC::chunk_allocation_is_enabled() {
    return m_enabled;
}

void* MEM_UTILS_CHUNK_ALLOC::chunk_malloc(unsigned long, unsigned long) {
    std::abort();
}

void MEM_DETAIL::stl_raw_sprintf(std::string*, char const*, ...) {
    std::abort();
}

bool cfg_is_on(std::string const&) {
    return false;
}

int gen_strcmp(char const* a, char const* b) {
    return std::strcmp(a, b);
}

int gen_stricmp(char const*, char const*) {
    std::abort();
}

void gen_itoa(int, std::string&, int) {
    std::abort();
}

std::string gen_remove_leading_and_trailing_white_spaces(std::string const& text) {
    return text;
}

void stl_toupper(std::string&) {
    std::abort();
}

KTL_TOKENIZER::KTL_TOKENIZER(std::string const& delimiters, bool, std::string const&,
                             std::string const&, std::string const&, bool)
    : m_delimiters(delimiters) {}

KTL_TOKENIZER::~KTL_TOKENIZER() = default;

void KTL_TOKENIZER::tokenize(std::string const&, std::vector<std::string>&) {
    std::abort();
}

template <>
long long GEN_MATH::multiply_of<long long>(long long, long long, bool&) {
    std::abort();
}

template <>
void GEN_MATH::gcd_simplify<long long>(long long&, long long&) {
    std::abort();
}

template <>
void GEN_MATH::add_fractions_of<long long>(long long, long long, long long, long long, long long&,
                                           long long&, bool&) {
    std::abort();
}

PDB_THUNK_INFO::PDB_THUNK_INFO(PDB_THUNK_INFO const*, unsigned int class_id, MALLOC_FN malloc_fn,
                               ALLOCATE_FN allocate_fn, ALLOCATE_ARRAY_FN allocate_array_fn,
                               CONSTRUCTOR_FN constructor_fn, DESTRUCTOR_FN destructor_fn,
                               SERIALIZER_FN serializer_fn, VIRTUAL_THUNK_FN virtual_thunk_fn,
                               THIS_PTR_FN this_ptr_fn, bool, bool, std::type_info const& type,
                               unsigned long size, char const* module, char const* source_path,
                               int line)
    : m_class_id(class_id), m_malloc_fn(malloc_fn), m_allocate_fn(allocate_fn),
      m_allocate_array_fn(allocate_array_fn), m_constructor_fn(constructor_fn),
      m_destructor_fn(destructor_fn), m_serializer_fn(serializer_fn),
      m_virtual_thunk_fn(virtual_thunk_fn), m_this_ptr_fn(this_ptr_fn), m_type(type), m_size(size),
      m_module(module), m_source_path(source_path), m_line(line) {
    registrations() += std::to_string(size) + " ";
}

PDB_THUNK_INFO::~PDB_THUNK_INFO() = default;

// --- The program ---

int main() {
    // The module once for each source file, in brackets once the fourth has built its table of
    // powers of ten; the sizes of the three stored classes from the sixth.
    std::string const expected = "BIG BIG BIG BIG [BIG] [BIG] 16 8 24 [BIG] [BIG] ";
    if (registrations() != expected) {
        std::cerr << "registered at load: \"" << registrations() << "\" instead of \"" << expected
                  << "\"\n";
        return EXIT_FAILURE;
    }
    try {
        big_string_is_legal("", BIG_HEX);
    } catch (REPORT const& report) {
        if (report.text == "source.size() > 0")
            return EXIT_SUCCESS;
        std::cerr << "reported \"" << report.text << "\"\n";
        return EXIT_FAILURE;
    }
    std::cerr << "the program's own report was not called\n";
    return EXIT_FAILURE;
}
