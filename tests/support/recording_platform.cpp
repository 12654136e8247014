#include "recording_platform.h"

#include "cfg_sys.h"
#include "err_sys.h"
#include "gen_math_sys.h"
#include "gen_sys.h"
#include "ktl_sys.h"
#include "mem_sys.h"
#include "pdb_sys.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>
#include <numeric>
#include <optional>
#include <ostream>

namespace recording {

namespace {

/// All state, made on first use and never destroyed: the library registers itself before and
/// unregisters itself after everything else of the process.
struct STATE {
    std::vector<CALL> calls;
    std::map<std::string, bool> switches;
    std::optional<CALL> throwing;
    bool echo = false;
};

STATE& state() {
    static STATE* const instance = new STATE;
    return *instance;
}

std::string text_of(char const* text) {
    return text == nullptr ? "(null)" : text;
}

void record(char const* operation, std::vector<std::string> arguments) {
    state().calls.push_back({operation, std::move(arguments)});
    if (state().echo)
        std::fprintf(stderr, "%s\n", testing::PrintToString(state().calls.back()).c_str());
    if (state().calls.back() == state().throwing)
        throw THROWN{*state().throwing};
}

std::string formatted(char const* format, std::va_list args) {
    std::va_list measured;
    va_copy(measured, args);
    int const length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, args);
    return text;
}

bool is_white(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

} // namespace

void PrintTo(CALL const& call, std::ostream* out) {
    *out << call.operation << '(';
    for (std::size_t i = 0; i < call.arguments.size(); ++i)
        *out << (i == 0 ? "\"" : ", \"") << call.arguments[i] << '"';
    *out << ')';
}

std::vector<CALL> const& calls() {
    return state().calls;
}

void clear() {
    state().calls.clear();
}

void echo_calls() {
    state().echo = true;
}

std::vector<CALL> calls_of(std::string const& operation) {
    std::vector<CALL> found;
    for (CALL const& call : calls())
        if (call.operation == operation)
            found.push_back(call);
    return found;
}

CALL debug(std::string const& format, std::string const& text) {
    return {"mem_msg_local_vdebug", {"BIG", format, text}};
}

CALL debug(std::string const& text) {
    return debug(text, text);
}

CALL message(int id, std::string const& arg1) {
    return message(id, arg1, "(null)");
}

CALL message(int id, std::string const& arg1, std::string const& arg2) {
    return {"err_post_enumerated_msg", {std::to_string(id), arg1, arg2}};
}

CALL switch_read(std::string const& name) {
    return {"cfg_is_on", {name}};
}

std::vector<CALL> reports() {
    std::vector<CALL> found;
    for (CALL const& call : calls())
        if (call.operation == "err_report_internal_error"
            || call.operation == "err_post_enumerated_msg"
            || call.operation == "mem_msg_local_vdebug")
            found.push_back(call);
    return found;
}

void set_switch(std::string const& name, bool on) {
    state().switches[name] = on;
}

THROWING_CALL::THROWING_CALL(CALL const& call) {
    state().throwing = call;
}

THROWING_CALL::~THROWING_CALL() {
    state().throwing.reset();
}

testing::AssertionResult line_holds(std::string const& source_path, int line,
                                    std::string const& text) {
    std::string const root = std::string(BIG_SOURCE_ROOT) + "/" + source_path;
    for (char const* const extension : {".cpp", ".h"}) {
        std::ifstream file(root + extension);
        std::string content;
        for (int number = 1; std::getline(file, content); ++number) {
            if (number != line)
                continue;
            std::string quoted;
            for (char const c : text)
                quoted += c == '"' ? std::string("\\\"") : std::string(1, c);
            if (content.find(quoted) != std::string::npos)
                return testing::AssertionSuccess();
            return testing::AssertionFailure()
                   << source_path << extension << ":" << line << " reads \"" << content << "\"";
        }
    }
    return testing::AssertionFailure() << source_path << " has no line " << line;
}

testing::AssertionResult reports_internal_error(void (*run)(void*), void* statement,
                                                std::string const& text, std::string const& tag,
                                                std::string const& source_path) {
    try {
        run(statement);
    } catch (INTERNAL_ERROR const& error) {
        if (error.text != text || error.tag != tag || error.source_path != source_path)
            return testing::AssertionFailure()
                   << "reported \"" << error.text << "\", tag \"" << error.tag << "\", path \""
                   << error.source_path << "\" instead of \"" << text << "\", tag \"" << tag
                   << "\", path \"" << source_path << "\"";
        return line_holds(source_path, error.line, text);
    }
    return testing::AssertionFailure() << "no internal error; expected \"" << text << "\"";
}

} // namespace recording

using recording::record;
using recording::text_of;

void err_report_internal_error(char const* text, char const* tag, char const* source_path,
                               int line) {
    record("err_report_internal_error",
           {text_of(text), text_of(tag), text_of(source_path), std::to_string(line)});
    throw recording::INTERNAL_ERROR{text_of(text), text_of(tag), text_of(source_path), line};
}

void err_post_enumerated_msg(MSG_ENUMERATED_POST_MSG id, char const* arg1, char const* arg2) {
    record("err_post_enumerated_msg",
           {std::to_string(static_cast<int>(id)), text_of(arg1), text_of(arg2)});
}

void mem_msg_local_vdebug(char const* module, char const* format, std::va_list args) {
    record("mem_msg_local_vdebug",
           {text_of(module), text_of(format), recording::formatted(format, args)});
}

MEM_INITIALIZER::MEM_INITIALIZER(char const* module) : m_module(module) {
    record("MEM_INITIALIZER", {text_of(module)});
}

MEM_INITIALIZER::~MEM_INITIALIZER() {
    record("~MEM_INITIALIZER", {text_of(m_module)});
}

// The pool hands out single blocks and keeps them in a list.

MEM_UTILS_CHUNK_ALLOC::MEM_UTILS_CHUNK_ALLOC(bool enabled)
    : m_enabled(enabled), m_chunks(new std::vector<void*>) {}

MEM_UTILS_CHUNK_ALLOC::~MEM_UTILS_CHUNK_ALLOC() {
    auto* const chunks = static_cast<std::vector<void*>*>(m_chunks);
    for (void* const chunk : *chunks)
        std::free(chunk);
    delete chunks;
}

bool MEM_UTILS_CHUNK_ALLOC::chunk_allocation_is_enabled() {
    record("MEM_UTILS_CHUNK_ALLOC::chunk_allocation_is_enabled", {});
    return m_enabled;
}

void* MEM_UTILS_CHUNK_ALLOC::chunk_malloc(unsigned long size, unsigned long alignment) {
    record("MEM_UTILS_CHUNK_ALLOC::chunk_malloc",
           {std::to_string(size), std::to_string(alignment)});
    void* const chunk = std::malloc(size == 0 ? 1 : size);
    std::memset(chunk, 0xA5, size); // so that a test sees what was not written
    static_cast<std::vector<void*>*>(m_chunks)->push_back(chunk);
    return chunk;
}

void MEM_DETAIL::stl_raw_sprintf(std::string* out, char const* format, ...) {
    std::va_list args;
    va_start(args, format);
    *out = recording::formatted(format, args);
    va_end(args);
    record("MEM_DETAIL::stl_raw_sprintf", {text_of(format), *out});
}

bool cfg_is_on(std::string const& name) {
    record("cfg_is_on", {name});
    auto const found = recording::state().switches.find(name);
    return found != recording::state().switches.end() && found->second;
}

int gen_strcmp(char const* a, char const* b) {
    record("gen_strcmp", {a, b});
    return std::strcmp(a, b);
}

int gen_stricmp(char const* a, char const* b) {
    record("gen_stricmp", {a, b});
    for (; *a != '\0' && recording::lower(*a) == recording::lower(*b); ++a, ++b) {
    }
    return static_cast<unsigned char>(recording::lower(*a))
           - static_cast<unsigned char>(recording::lower(*b));
}

void gen_itoa(int value, std::string& out, int radix) {
    record("gen_itoa", {std::to_string(value), std::to_string(radix)});
    out = std::to_string(value);
}

std::string gen_remove_leading_and_trailing_white_spaces(std::string const& text) {
    record("gen_remove_leading_and_trailing_white_spaces", {text});
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && recording::is_white(text[begin]))
        ++begin;
    while (end > begin && recording::is_white(text[end - 1]))
        --end;
    return text.substr(begin, end - begin);
}

void stl_toupper(std::string& text) {
    record("stl_toupper", {text});
    for (char& c : text)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - ('a' - 'A'));
}

KTL_TOKENIZER::KTL_TOKENIZER(std::string const& delimiters, bool a, std::string const& b,
                             std::string const& c, std::string const& d, bool e)
    : m_delimiters(delimiters) {
    record("KTL_TOKENIZER", {delimiters, a ? "true" : "false", b, c, d, e ? "true" : "false"});
}

KTL_TOKENIZER::~KTL_TOKENIZER() = default;

void KTL_TOKENIZER::tokenize(std::string const& text, std::vector<std::string>& tokens) {
    record("KTL_TOKENIZER::tokenize", {text});
    std::size_t begin = text.find_first_not_of(m_delimiters);
    while (begin != std::string::npos) {
        std::size_t const end = text.find_first_of(m_delimiters, begin);
        tokens.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(m_delimiters, end);
    }
}

namespace GEN_MATH {

template <>
long long multiply_of<long long>(long long a, long long b, bool& overflow) {
    record("GEN_MATH::multiply_of", {std::to_string(a), std::to_string(b)});
    long long product = 0;
    if (__builtin_mul_overflow(a, b, &product))
        overflow = true;
    return product;
}

template <>
void gcd_simplify<long long>(long long& a, long long& b) {
    record("GEN_MATH::gcd_simplify", {std::to_string(a), std::to_string(b)});
    __extension__ using WIDE = __int128;
    WIDE const wide_a = a;
    WIDE const wide_b = b;
    WIDE x = wide_a < 0 ? -wide_a : wide_a;
    WIDE y = wide_b < 0 ? -wide_b : wide_b;
    while (y != 0) {
        WIDE const remainder = x % y;
        x = y;
        y = remainder;
    }
    if (x == 0)
        return;
    a = static_cast<long long>(wide_a / x);
    b = static_cast<long long>(wide_b / x);
}

template <>
void add_fractions_of<long long>(long long num_a, long long den_a, long long num_b, long long den_b,
                                 long long& num, long long& den, bool& overflow) {
    record("GEN_MATH::add_fractions_of", {std::to_string(num_a), std::to_string(den_a),
                                          std::to_string(num_b), std::to_string(den_b)});
    // Enough for tests of what the library does around the call: operands whose products fit.
    long long left = 0;
    long long right = 0;
    long long top = 0;
    long long bottom = 0;
    if (__builtin_mul_overflow(num_a, den_b, &left) || __builtin_mul_overflow(num_b, den_a, &right)
        || __builtin_add_overflow(left, right, &top)
        || __builtin_mul_overflow(den_a, den_b, &bottom)) {
        overflow = true;
        return;
    }
    gcd_simplify(top, bottom);
    num = top;
    den = bottom;
}

} // namespace GEN_MATH

PDB_THUNK_INFO::PDB_THUNK_INFO(PDB_THUNK_INFO const* self, unsigned int class_id,
                               MALLOC_FN malloc_fn, ALLOCATE_FN allocate_fn,
                               ALLOCATE_ARRAY_FN allocate_array_fn, CONSTRUCTOR_FN constructor_fn,
                               DESTRUCTOR_FN destructor_fn, SERIALIZER_FN serializer_fn,
                               VIRTUAL_THUNK_FN virtual_thunk_fn, THIS_PTR_FN this_ptr_fn,
                               bool flag_1, bool flag_2, std::type_info const& type,
                               unsigned long size, char const* module, char const* source_path,
                               int line)
    : m_class_id(class_id), m_malloc_fn(malloc_fn), m_allocate_fn(allocate_fn),
      m_allocate_array_fn(allocate_array_fn), m_constructor_fn(constructor_fn),
      m_destructor_fn(destructor_fn), m_serializer_fn(serializer_fn),
      m_virtual_thunk_fn(virtual_thunk_fn), m_this_ptr_fn(this_ptr_fn), m_type(type), m_size(size),
      m_module(module), m_source_path(source_path), m_line(line) {
    char id[16];
    std::snprintf(id, sizeof id, "0x%08x", class_id);
    record("PDB_THUNK_INFO", {id, self == this ? "this" : "another", flag_1 ? "true" : "false",
                              flag_2 ? "true" : "false", type.name(), std::to_string(size),
                              text_of(module), text_of(source_path), std::to_string(line)});
}

PDB_THUNK_INFO::~PDB_THUNK_INFO() {
    char id[16];
    std::snprintf(id, sizeof id, "0x%08x", m_class_id);
    record("~PDB_THUNK_INFO", {id});
}
