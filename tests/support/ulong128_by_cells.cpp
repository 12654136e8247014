#include "ulong128_by_cells.h"

#include <algorithm>
#include <cstddef>

namespace by_cells {

namespace {

using WORD = unsigned long long; // what two cells and their carry are computed in

/// A cell that is part of a value.
WORD digit(VALUE const& value, int index) {
    return value.cells.at(static_cast<std::size_t>(index)).value();
}

void set(VALUE& value, int index, WORD digit) {
    value.cells.at(static_cast<std::size_t>(index)) = static_cast<unsigned int>(digit);
}

void clear_all(VALUE& value) {
    for (int i = 0; i < 4; ++i)
        set(value, i, 0);
}

bool less(VALUE const& a, VALUE const& b) {
    return !(equal(a, b) || greater(a, b));
}

/// Moves the cells in use up, with zeros below them.
void shift_up(VALUE& value, int cells) {
    for (int i = value.length - 1; i >= 0; --i)
        set(value, i + cells, digit(value, i));
    for (int i = 0; i < cells; ++i)
        set(value, i, 0);
    value.length += cells;
}

} // namespace

VALUE zero() {
    return of_word(0);
}

VALUE of_word(unsigned int value) {
    return {1, {value, std::nullopt, std::nullopt, std::nullopt}};
}

VALUE of_int(int value) {
    if (value < 0)
        return zero();
    return {1, {static_cast<unsigned int>(value), 0u, std::nullopt, std::nullopt}};
}

VALUE of_two_words(unsigned long long value) {
    VALUE result = zero();
    assign_two_words(result, value);
    return result;
}

VALUE copy(VALUE const& other) {
    VALUE result{0, {}};
    clear_all(result);
    assign(result, other);
    return result;
}

void assign(VALUE& to, VALUE const& from) {
    for (int i = 0; i < from.length; ++i)
        set(to, i, digit(from, i));
    to.length = from.length;
}

void assign_word(VALUE& to, unsigned int value) {
    to.length = 1;
    set(to, 0, value);
}

void assign_two_words(VALUE& to, unsigned long long value) {
    set(to, 0, value);
    set(to, 1, value >> 32);
    to.length = value > 0xFFFFFFFFu ? 2 : 1;
}

bool equal(VALUE const& a, VALUE const& b) {
    if (a.length != b.length)
        return false;
    for (int i = 0; i < a.length; ++i)
        if (digit(a, i) != digit(b, i))
            return false;
    return true;
}

bool greater(VALUE const& a, VALUE const& b) {
    if (a.length < b.length || equal(a, b))
        return false;
    if (a.length > b.length)
        return true;
    for (int i = a.length - 1; i >= 0; --i)
        if (digit(a, i) != digit(b, i))
            return digit(a, i) > digit(b, i);
    return false;
}

void partial_add(VALUE& to, int shift, VALUE other) {
    long long const n = static_cast<long long>(shift) + other.length;
    if (n < 0 || n > 4)
        throw REPORT{"Overflow"};
    if (to.length <= n) {
        for (int i = to.length; i < n; ++i)
            set(to, i, 0);
        to.length = static_cast<int>(n);
    }
    WORD carry = 0;
    for (int i = shift; i < to.length; ++i) {
        if (i < 0 || i > 3)
            throw REPORT{"i < BIG_ULONG128::MAX_CELL"};
        WORD const added = i - shift < other.length ? digit(other, i - shift) : 0;
        WORD const total = digit(to, i) + carry + added;
        set(to, i, total);
        carry = total >> 32;
    }
    if (carry != 0) {
        if (to.length + 1 > 4)
            throw REPORT{"(m_length+1) <= BIG_ULONG128::MAX_CELL"};
        set(to, to.length, 1);
        ++to.length;
    }
}

VALUE sum(VALUE const& a, VALUE const& b) {
    VALUE result = copy(a);
    partial_add(result, 0, b);
    return result;
}

VALUE difference(VALUE const& a, VALUE const& b) {
    VALUE result = of_int(0);
    if (greater(b, a))
        throw REPORT{"Underflow"};
    long long borrow = 0;
    for (int i = 0; i < a.length; ++i) {
        long long const subtracted = i < b.length ? static_cast<long long>(digit(b, i)) : 0;
        long long const d = static_cast<long long>(digit(a, i)) - subtracted - borrow;
        set(result, i, static_cast<WORD>(d));
        borrow = d < 0 ? 1 : 0;
    }
    for (int i = 0; i < a.length; ++i)
        if (digit(result, i) != 0)
            result.length = i + 1;
    return result;
}

VALUE product(VALUE const& a, VALUE const& b) {
    VALUE result = zero();
    if (equal(a, of_int(0)) || equal(b, of_int(0)))
        return result;
    clear_all(result);
    for (int j = 0; j < b.length; ++j)
        for (int i = 0; i < a.length; ++i)
            partial_add(result, i + j, of_two_words(digit(a, i) * digit(b, j)));
    return result;
}

VALUE quotient_by_word(VALUE const& a, unsigned int divisor) {
    VALUE result = zero();
    if (divisor == 0)
        throw REPORT{"Division by Zero"};
    WORD rest = 0;
    bool started = false;
    for (int i = a.length - 1; i >= 0; --i) {
        WORD const x = (rest << 32) + digit(a, i);
        set(result, i, x / divisor);
        rest = x % divisor;
        if (!started && x / divisor != 0) {
            result.length = i + 1;
            started = true;
        }
    }
    return result;
}

VALUE quotient(VALUE const& a, VALUE const& divisor) {
    VALUE q = zero();
    clear_all(q);
    VALUE r = copy(a);
    if (equal(divisor, of_int(0)))
        throw REPORT{"Division by Zero"};
    if (less(a, divisor)) {
        assign_word(q, 0);
        return q;
    }
    if (divisor.length == 1)
        return quotient_by_word(a, static_cast<unsigned int>(digit(divisor, 0)));

    // An estimate that is never below what the divisor begins with.
    WORD estimate = digit(divisor, divisor.length - 1);
    for (int i = 0; i < divisor.length - 1; ++i) {
        if (digit(divisor, i) != 0) {
            ++estimate;
            break;
        }
    }

    int place = a.length - divisor.length;
    int low = a.length - 1;
    int high = a.length;
    while (place >= 0) {
        WORD const head =
            ((high < r.length ? digit(r, high) : 0) << 32) + (low < r.length ? digit(r, low) : 0);
        if (head < estimate) {
            --place;
            --low;
            high = low + 1;
            continue;
        }
        WORD const digits = head / estimate;
        partial_add(q, place, of_two_words(digits));
        VALUE t = product(divisor, of_two_words(digits));
        shift_up(t, place);
        assign(r, difference(r, t));
    }
    if (!less(r, divisor))
        assign(q, sum(q, of_int(1)));
    return q;
}

VALUE remainder(VALUE const& a, VALUE const& divisor) {
    return difference(a, product(quotient(a, divisor), divisor));
}

} // namespace by_cells
