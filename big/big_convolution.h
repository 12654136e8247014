// Included by big_transform.h in namespace big_natural, once for each arithmetic modulo the primes:
//
//     BIG_ARITHMETIC   its namespace, with VALUE, FIELD, FIELDS, fields() and coefficient()
//     BIG_TARGET       the attribute of functions that use it

namespace BIG_ARITHMETIC {

// The ring of polynomials modulo x^N - 1 is split in halves, x^2m - w^2 = (x^m - w)(x^m + w), until
// the moduli are linear. The factor of block b at any depth is w[b], where w[0] = 1 and w[2b],
// w[2b + 1] are the square roots of w[b] and -w[b]; as fractions of a full turn:
//
//     b      0    1    2    3    4     5     6     7
//     w[b]   0   1/4  1/8  3/8  1/16  5/16  3/16  7/16
//
// so one table serves every length, and nothing is put into bit-reversed order: the transformed
// values stay in the order in which the splitting leaves them. Two depths are done in one pass over
// the values.

/// Splits x, n = 2^k >= 4 values, into its values at the roots of unity.
BIG_TARGET inline void transform(VALUE* x, std::size_t n, FIELD const field,
                                 FIELD::FACTOR const* w) {
    std::size_t length = n; // of a block
    if (std::countr_zero(n) % 2 != 0) {
        length = n / 2;
        for (std::size_t j = 0; j < length; ++j) {
            VALUE const a = field.trim(x[j]);
            VALUE const b = field.trim(x[j + length]);
            x[j] = field.add(a, b);
            x[j + length] = field.subtract(a, b);
        }
    }
    for (; length > 1; length /= 4) {
        std::size_t const m = length / 4;
        for (std::size_t block = 0; block < n / length; ++block) {
            FIELD::FACTOR const& outer = w[block];
            FIELD::FACTOR const& lower = w[2 * block];
            FIELD::FACTOR const& upper = w[2 * block + 1];
            VALUE* const y = x + block * length;
            for (std::size_t j = 0; j < m; ++j) {
                VALUE const a = field.settle(y[j]);
                VALUE const b = field.trim(y[j + m]);
                VALUE const c = field.times(outer, y[j + 2 * m]);
                VALUE const d = field.times(outer, y[j + 3 * m]);
                VALUE const ac = field.trim(field.add(a, c));
                VALUE const a_c = field.trim(field.subtract(a, c));
                VALUE const bd = field.times(lower, field.add(b, d));
                VALUE const b_d = field.times(upper, field.subtract(b, d));
                y[j] = field.add(ac, bd);
                y[j + m] = field.subtract(ac, bd);
                y[j + 2 * m] = field.add(a_c, b_d);
                y[j + 3 * m] = field.subtract(a_c, b_d);
            }
        }
    }
}

/// -1 / w[b] is w[mirrored(b)] for b > 0: within 2^i <= b < 2^(i+1) the turns of w are symmetric
/// about a quarter.
inline std::size_t mirrored(std::size_t block) {
    return 3 * std::bit_floor(block) - 1 - block;
}

/// Undoes transform() up to the factor n.
BIG_TARGET inline void transform_back(VALUE* x, std::size_t n, FIELD const field,
                                      FIELD::FACTOR const* w) {
    FIELD::FACTOR const minus_one = field.minus_one();
    std::size_t length = 4;
    for (; length <= n; length *= 4) {
        std::size_t const m = length / 4;
        for (std::size_t block = 0; block < n / length; ++block) {
            FIELD::FACTOR const& outer = block == 0 ? minus_one : w[mirrored(block)];
            FIELD::FACTOR const& lower = block == 0 ? minus_one : w[mirrored(2 * block)];
            FIELD::FACTOR const& upper = w[mirrored(2 * block + 1)];
            VALUE* const y = x + block * length;
            for (std::size_t j = 0; j < m; ++j) {
                VALUE const a = y[j];
                VALUE const b = y[j + m];
                VALUE const c = y[j + 2 * m];
                VALUE const d = y[j + 3 * m];
                VALUE const ab = field.trim(field.add(a, b));
                VALUE const cd = field.trim(field.add(c, d));
                VALUE const b_a = field.times(lower, field.subtract(b, a));
                VALUE const d_c = field.times(upper, field.subtract(d, c));
                y[j] = field.settle(field.add(ab, cd));
                y[j + m] = field.settle(field.add(b_a, d_c));
                y[j + 2 * m] = field.times(outer, field.subtract(cd, ab));
                y[j + 3 * m] = field.times(outer, field.subtract(d_c, b_a));
            }
        }
    }
    if (length == 2 * n) {
        for (std::size_t j = 0; j < n / 2; ++j) {
            VALUE const a = x[j];
            VALUE const b = x[j + n / 2];
            x[j] = field.settle(field.add(a, b));
            x[j + n / 2] = field.settle(field.subtract(a, b));
        }
    }
}

/// The transforms of length 3 down the columns of three rows of n values. With r the cube root of
/// 1: a + b + c, a + b r + c r^2, a + b r^2 + c r. Going back is the same with the second and the
/// third result exchanged.
BIG_TARGET inline void transform_columns(VALUE* x, std::size_t n, FIELD const field, bool back) {
    FIELD::FACTOR const cube_root = field.cube_root();
    VALUE* const second = x + (back ? 2 : 1) * n;
    VALUE* const third = x + (back ? 1 : 2) * n;
    for (std::size_t j = 0; j < n; ++j) {
        VALUE const a = x[j];
        VALUE const b = x[j + n];
        VALUE const c = x[j + 2 * n];
        VALUE const turned = field.times(cube_root, field.subtract(b, c)); // r^2 = -1 - r
        x[j] = field.add(field.trim(field.add(a, b)), c);
        second[j] = field.add(field.trim(field.subtract(a, c)), turned);
        third[j] = field.subtract(field.trim(field.subtract(a, b)), turned);
    }
}

/// Multiplies many numbers by one factor, whose transform is made once.
class CONVOLUTION {
public:
    static constexpr std::size_t LONG_FACTOR = BIG_ARITHMETIC::LONG_FACTOR;

    /// @param largest limbs of the largest product to come
    BIG_TARGET explicit CONVOLUTION(std::size_t largest)
        : m_fields(fields()), m_capacity(std::bit_ceil(std::max<std::size_t>(largest, 16))),
          m_work(std::make_unique_for_overwrite<VALUE[]>(FIELDS * m_capacity)),
          m_spectrum(std::make_unique_for_overwrite<VALUE[]>(FIELDS * m_capacity)),
          m_wrapped(std::make_unique_for_overwrite<COLUMN[]>(LARGEST_EXCESS)) {
        for (auto& roots : m_roots)
            roots = std::make_unique_for_overwrite<FIELD::FACTOR[]>(m_capacity / 2);
    }

    /// Sets the factor b, which must stay where it is.
    ///
    /// @param count limbs of the products to come: each fits this many, this is at most `largest`,
    ///              and no factor has more than 2/3 of them
    BIG_TARGET void set_factor(WORD const* b, std::size_t m, std::size_t count) {
        m_factor = b;
        m_factor_limbs = m;
        m_count = count;
        choose_length();
        make_roots();
        load(b, m);
        for (std::size_t i = 0; i < FIELDS; ++i) {
            FIELD const field = m_fields[i]; // a copy, which no value written can change
            FIELD::FACTOR const scale = field.scale(m_length);
            for (std::size_t j = i * m_length; j < (i + 1) * m_length; ++j)
                m_spectrum[j] = field.reduced(field.times(scale, m_work[j]));
        }
    }

    /// out = a * b, `count` limbs in the base.
    template <class BASE>
    void multiply(WORD const* a, std::size_t n, WORD* out) {
        load(a, n);
        finish<BASE>(a, n, out);
    }

    /// out = b * b, `count` limbs in the base. Only directly after set_factor().
    template <class BASE>
    void square_factor(WORD* out) {
        finish<BASE>(m_factor, m_factor_limbs, out);
    }

private:
    static constexpr std::size_t LARGEST_EXCESS = 1024;

    /// The upper coefficients of a product that a length does not hold. A few of them are cheaper
    /// to compute one by one than to go to the next length for. Numbers whose width is a power of
    /// two need 1.4 % more decimal limbs than binary ones, so this is the common case.
    static constexpr std::size_t allowed_excess(std::size_t length) {
        return std::min({std::size_t{4} << std::bit_width(length) / 2, length / 2, LARGEST_EXCESS});
    }

    /// Takes the least length that serves, one row of 2^k values or three.
    void choose_length() {
        m_rows = 1;
        m_row_length = 16;
        while (m_row_length + allowed_excess(m_row_length) < m_count)
            m_row_length *= 2;
        std::size_t const shorter = m_row_length / 4 * 3;
        if (m_row_length > 16 && shorter + allowed_excess(shorter) >= m_count) {
            m_rows = 3;
            m_row_length /= 4;
        }
        m_length = m_rows * m_row_length;
    }

    /// Extends the tables of roots as far as the length needs them: w[2^k + j] is w[j] turned by
    /// the root of order 2^(k + 2).
    BIG_TARGET void make_roots() {
        for (; m_root_count < m_row_length / 2;
             m_root_count = std::max<std::size_t>(1, 2 * m_root_count))
            for (std::size_t i = 0; i < FIELDS; ++i) {
                FIELD const field = m_fields[i]; // a copy, which no value written can change
                FIELD::FACTOR* const w = m_roots[i].get();
                if (m_root_count == 0) {
                    w[0] = field.root(0);
                    continue;
                }
                FIELD::FACTOR const turn = field.root(std::countr_zero(m_root_count) + 2);
                for (std::size_t j = 0; j < m_root_count; ++j)
                    w[m_root_count + j] = field.factor(field.times(turn, w[j].value));
            }
    }

    /// With three rows, coefficient j stands in row j modulo 3 at j modulo the row length, and the
    /// two directions are transformed without factors between them (Good 1958, Thomas 1963).
    std::size_t place_of(std::size_t j) const {
        return m_rows == 1 ? j : j % 3 * m_row_length + j % m_row_length;
    }

    /// Transforms a number into m_work.
    BIG_TARGET void load(WORD const* a, std::size_t n) {
        for (std::size_t i = 0; i < FIELDS; ++i) {
            FIELD const field = m_fields[i]; // a copy, which no value written can change
            VALUE* const x = m_work.get() + i * m_length;
            std::fill(x, x + m_length, VALUE{});
            for (std::size_t j = 0; j < n; ++j)
                x[place_of(j)] = field.from_limb(a[j]);
            if (m_rows == 3)
                transform_columns(x, m_row_length, field, false);
            for (std::size_t row = 0; row < m_length; row += m_row_length)
                transform(x + row, m_row_length, field, m_roots[i].get());
        }
    }

    /// Multiplies what load() left by the factor and writes the product.
    template <class BASE>
    BIG_TARGET void finish(WORD const* a, std::size_t n, WORD* out) {
        for (std::size_t i = 0; i < FIELDS; ++i) {
            FIELD const field = m_fields[i]; // a copy, which no value written can change
            VALUE* const x = m_work.get() + i * m_length;
            for (std::size_t j = 0; j < m_length; ++j)
                x[j] = field.product(x[j], m_spectrum[i * m_length + j]);
            for (std::size_t row = 0; row < m_length; row += m_row_length)
                transform_back(x + row, m_row_length, field, m_roots[i].get());
            if (m_rows == 3)
                transform_columns(x, m_row_length, field, true);
        }

        // Modulo x^N - 1, coefficient k + N has been added to coefficient k, which is undone.
        std::size_t const excess = m_count > m_length ? m_count - m_length : 0;
        for (std::size_t k = 0; k < excess; ++k)
            m_wrapped[k] = column_of(a, n, m_factor, m_factor_limbs, k + m_length);
        COLUMN carry;
        for (std::size_t k = 0; k < m_count; ++k) {
            COLUMN column = k < m_length
                                ? coefficient(m_fields, m_work.get(), m_length, place_of(k))
                                : m_wrapped[k - m_length];
            if (k < excess)
                column.subtract(m_wrapped[k]);
            column.add(carry);
            out[k] = BASE::take_digit(column);
            carry = column;
        }
    }

    std::array<FIELD, FIELDS> m_fields;
    std::size_t m_capacity;              ///< of m_work and m_spectrum, in values of each field
    std::unique_ptr<VALUE[]> m_work;     ///< the values of each field, one after the other
    std::unique_ptr<VALUE[]> m_spectrum; ///< the transformed factor, scaled and reduced
    std::unique_ptr<COLUMN[]> m_wrapped; ///< coefficients beyond the length
    std::array<std::unique_ptr<FIELD::FACTOR[]>, FIELDS> m_roots;
    std::size_t m_root_count = 0;

    std::size_t m_rows = 1;
    std::size_t m_row_length = 0;
    std::size_t m_length = 0; ///< rows times row length

    WORD const* m_factor = nullptr;
    std::size_t m_factor_limbs = 0;
    std::size_t m_count = 0;
};

} // namespace BIG_ARITHMETIC
