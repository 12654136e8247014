#ifndef BENCH_WIDE_H
#define BENCH_WIDE_H

/// @file
/// 128-bit integers of this library and of the peers, made from the compiler's own and read back.

#include "inputs.h"

#include <big_sys.h>

#include <ostream>
#include <utility>

#ifdef BIG_BENCH_GMP
#include <gmp.h>
#endif

namespace bench {

/// The compiler's integer as an answer that can be printed.
struct WIDE_ANSWER {
    WIDE value;

    bool operator==(WIDE_ANSWER const&) const = default;
    friend std::ostream& operator<<(std::ostream& out, WIDE_ANSWER answer) {
        return out << std::hex << "0x" << static_cast<unsigned long long>(answer.value >> 64) << ':'
                   << static_cast<unsigned long long>(answer.value) << std::dec;
    }
};

inline BIG_ULONG128 to_ours(WIDE value) {
    BIG_ULONG128 const two_to_32(1ull << 32);
    return BIG_ULONG128(static_cast<unsigned long long>(value >> 64)) * two_to_32 * two_to_32
           + BIG_ULONG128(static_cast<unsigned long long>(value));
}

inline WIDE_ANSWER read_ours(BIG_ULONG128 value) {
    return {static_cast<WIDE>(value.get_high_qword()) << 64 | value.get_low_qword()};
}

inline WIDE_ANSWER read_wide(WIDE value) {
    return {value};
}

#ifdef BIG_BENCH_GMP

/// GMP's integer, which owns its memory.
class MPZ {
public:
    MPZ() { mpz_init2(m_value, 256); }
    explicit MPZ(WIDE value) : MPZ() {
        mpz_set_ui(m_value, static_cast<unsigned long>(value >> 64));
        mpz_mul_2exp(m_value, m_value, 64);
        mpz_add_ui(m_value, m_value, static_cast<unsigned long>(value));
    }
    MPZ(MPZ const& other) { mpz_init_set(m_value, other.m_value); }
    MPZ& operator=(MPZ const& other) {
        mpz_set(m_value, other.m_value);
        return *this;
    }
    ~MPZ() { mpz_clear(m_value); }

    mpz_ptr get() { return m_value; }
    mpz_srcptr get() const { return m_value; }

private:
    mpz_t m_value;
};

inline WIDE_ANSWER read_gmp(MPZ const& value) {
    MPZ high;
    mpz_tdiv_q_2exp(high.get(), value.get(), 64);
    return {static_cast<WIDE>(mpz_get_ui(high.get())) << 64 | mpz_get_ui(value.get())};
}

#endif

} // namespace bench

#endif
