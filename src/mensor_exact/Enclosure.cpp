#include "mensor_exact/Enclosure.h"

#include "mensor_exact/Parts.h"
#include "mensor_exact/pi.h"

namespace mensor::exact {

namespace {

// Returns the same bounds with about `bits` bits. They may be a little further apart.
CEnclosure shortened(const CEnclosure& x, int bits) {
    const std::int64_t drop = static_cast<std::int64_t>(x.High.bits()) - bits;
    if (drop <= 0) {
        return x;
    }
    return {x.Low.shifted(-drop), x.High.shifted(-drop) + 1, x.Twos + drop};
}

CEnclosure product(const CEnclosure& a, const CEnclosure& b, int bits) {
    return shortened({a.Low * b.Low, a.High * b.High, a.Twos + b.Twos}, bits);
}

CEnclosure inverse(const CEnclosure& x, int bits) {
    const auto twos = static_cast<std::int64_t>(x.High.bits()) + bits;
    const CWhole low = CWhole(1).shifted(twos) / x.High;
    // 1/Low − 1/High = (High − Low)/(Low·High). Low is at least 2^(bits − 1).
    const CWhole more =
        ((low + 1) * (x.High - x.Low)).shifted(1 - static_cast<std::int64_t>(x.Low.bits()));
    return {low, low + more + 2, -twos - x.Twos};
}

CEnclosure power(const CEnclosure& x, int exponent, int bits) {
    if (exponent == 1) {
        return shortened(x, bits);
    }
    CEnclosure result{1, 1, 0};
    CEnclosure square = x;
    for (; exponent > 0; exponent /= 2) {
        if (exponent % 2 != 0) {
            result = product(result, square, bits);
        }
        if (exponent > 1) {
            square = product(square, square, bits);
        }
    }
    return result;
}

CEnclosure root(const CEnclosure& x, int order, int bits) {
    if (order == 1) {
        return x;
    }
    // Shifted, so that the root has enough bits and the exponent of two is a multiple of the order.
    std::int64_t twos =
        static_cast<std::int64_t>(order) * bits - static_cast<std::int64_t>(x.Low.bits());
    twos = twos < 0 ? 0 : twos;
    while ((x.Twos - twos) % order != 0) {
        ++twos;
    }
    return {rootOf(x.Low.shifted(twos), order), rootOf(x.High.shifted(twos), order) + 1,
            (x.Twos - twos) / order};
}

// Returns arctan(1/n)·2^bits. The error is less than the number of terms.
CWhole arctanOfInverse(int n, int bits, int& terms) {
    const int square = n * n;
    CWhole power = CWhole(1).shifted(bits) / n;
    CWhole sum = 0;
    terms = 0;
    for (int k = 1; !power.isZero(); k += 2) {
        const CWhole term = power / k;
        k % 4 == 1 ? sum += term : sum -= term;
        power /= square;
        ++terms;
    }
    return sum;
}

// Few bits come from a table. More bits are computed with Machin's formula: π = 16·arctan(1/5) −
// 4·arctan(1/239). Each term is truncated twice, so its error is less than 2. The rest of the series is
// less than 1.
CEnclosure pi(int bits) {
    if (bits <= PiBits) {
        CWhole low = 0;
        for (const std::uint64_t word : PiWords) {
            low = low.shifted(64);
            low += word;
        }
        return {low, low + 1, -PiBits};
    }
    int terms = 0;
    int moreTerms = 0;
    const CWhole fives = arctanOfInverse(5, bits, terms);
    const CWhole others = arctanOfInverse(239, bits, moreTerms);
    const CWhole middle = fives * 16 - others * 4;
    const CWhole error = 16 * (2 * terms + 1) + 4 * (2 * moreTerms + 1);
    return {middle - error, middle + error, -bits};
}

CEnclosure fraction(const CFraction& value, int bits) {
    const CParts parts(value);
    const CWhole numerator = parts.numeratorWithFives();
    const CWhole denominator = parts.denominatorWithFives();
    if (denominator.isOne()) {
        return {numerator, numerator, parts.Twos};
    }
    std::int64_t twos = bits + static_cast<std::int64_t>(denominator.bits()) -
                        static_cast<std::int64_t>(numerator.bits());
    twos = twos < 0 ? 0 : twos;
    const CDivision division(numerator.shifted(twos), denominator);
    const CWhole& quotient = division.Quotient;
    return {quotient, division.Rest.isZero() ? quotient : quotient + 1, parts.Twos - twos};
}

}  // namespace

CWhole rootOf(const CWhole& number, int order) {
    if (order == 1) {
        return number;
    }
    // Newton's method. It starts above the root, and each step is lower until the root is reached.
    const auto bits = static_cast<std::int64_t>(number.bits());
    CWhole x = CWhole(1).shifted((bits - 1) / order + 1);
    while (true) {
        const CWhole next = (x * (order - 1) + number / x.power(order - 1)) / order;
        if (next >= x) {
            return x;
        }
        x = next;
    }
}

CEnclosure enclose(const CFactor& factor, int bits) {
    // Each step below loses a few bits of precision. Raising to the power 99 loses at most eight.
    const int working = bits + 16;
    CEnclosure result = fraction(factor.radicand(), working);
    result = root(result, factor.root(), working);
    const CExponent exponent = factor.piExponent();
    if (!exponent.isZero()) {
        const int size = exponent.numerator() < 0 ? -exponent.numerator() : exponent.numerator();
        CEnclosure powers =
            root(power(pi(working + 16), size, working), exponent.denominator(), working);
        if (exponent.numerator() < 0) {
            powers = inverse(powers, working);
        }
        result = product(result, powers, working);
    }
    return shortened(result, working);
}

}  // namespace mensor::exact
