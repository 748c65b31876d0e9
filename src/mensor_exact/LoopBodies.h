// LoopBodies.h: the fast ways of converting. Each file that includes this compiles them for another kind of
// processor, under the name MENSOR_LOOPS. For the library's own use; not installed.
//
// No inline function of another header is called here. Compiled for a new processor, it might be the one
// copy that the linker keeps for all.
//
// Each loop is a row of operations on each element alone, so the width of the vectors cannot change a bit.
#include <cstddef>
#include <cstdint>

#include "mensor_exact/FastForm.h"

#if defined(__FMA__) || defined(__ARM_FEATURE_FMA)
#define MENSOR_FUSED 1
#else
#define MENSOR_FUSED 0
#endif

namespace mensor {
namespace exact {

namespace {

constexpr std::int64_t Magnitude = 0x7FFFFFFFFFFFFFFF;

inline std::int64_t bitsOfDouble(double x) {
    std::int64_t bits = 0;
    __builtin_memcpy(&bits, &x, sizeof bits);
    return bits;
}

inline double doubleOfBits(std::int64_t bits) {
    double x = 0;
    __builtin_memcpy(&x, &bits, sizeof x);
    return x;
}

// The bits of the size of x, less one: of a zero they are the largest there are. Without a sign, since the
// bits of -0.0 are the smallest number with one.
inline std::int64_t sizeLessOne(double x) {
    const std::uint64_t bits = static_cast<std::uint64_t>(bitsOfDouble(x));
    return static_cast<std::int64_t>(bits - 1U) & Magnitude;
}

#if MENSOR_FUSED

// Head·x + tail·x; the whole sum is rounded once.
inline double scaled(const CFastForm& form, double x, double tail) {
    return __builtin_fma(form.Head, x, tail * x);
}

// Negative if x is too small, but not zero. The result could be subnormal then, and the small product not
// exact enough.
inline std::int64_t range(const CFastForm& form, double x) { return sizeLessOne(x) - form.Least; }

#else

// What rounding added to the product `product` = Head·x, exactly. Both factors are split into halves whose
// products are exact. Positive zero for a zero.
inline double addedTo(double product, const CFastForm& form, double x) {
    const double c = x * 134217729.0;
    const double high = c - (c - x);
    const double low = x - high;
    return ((product - high * form.HeadHigh) - high * form.HeadLow - low * form.HeadHigh) -
           low * form.HeadLow;
}

// The difference keeps the sign of a zero, which a sum would lose.
inline double scaled(const CFastForm& form, double x, double tail) {
    const double product = form.Head * x;
    return product - (addedTo(product, form, x) - tail * x);
}

// Negative if x is too small, but not zero, or too large to be split, or no number.
inline std::int64_t range(const CFastForm& form, double x) {
    return (sizeLessOne(x) - form.Least) | (form.Most - (bitsOfDouble(x) & Magnitude));
}

#endif

// Head·(x − Center) and the limits of the true result.
struct COffsetSum {
    double Low;
    double High;
    double Distance;

    COffsetSum(const CFastForm& form, double x) {
        // x − Center = difference + error, exactly, whichever is larger.
        const double difference = x - form.Center;
        const double part = difference - x;
        const double error = (x - (difference - part)) + (-form.Center - part);
        const double rest = error - form.CenterTail;
#if MENSOR_FUSED
        const double slack =
            __builtin_fma(form.Slack, __builtin_fabs(difference), form.SlackCenter);
        const double small = __builtin_fma(form.Head, rest, form.Tail * difference);
        Low = __builtin_fma(form.Head, difference, small - slack);
        High = __builtin_fma(form.Head, difference, small + slack);
#else
        const double slack = form.Slack * __builtin_fabs(difference) + form.SlackCenter;
        const double product = form.Head * difference;
        const double small =
            (form.Head * rest + form.Tail * difference) - addedTo(product, form, difference);
        Low = product + (small - slack);
        High = product + (small + slack);
#endif
        Distance = difference;
    }
};

// Negative if x is where two different limits do not show a tie.
inline std::int64_t rangeOfTies(const CFastForm& form, double x, double distance) {
    const std::int64_t bits = bitsOfDouble(x) & Magnitude;
    return (bits - form.Least) | (form.Most - bits) |
           ((bitsOfDouble(distance) & Magnitude) - form.LeastDistance);
}

// Of two neighbours or equals the one whose last bit is 0.
inline double evenOf(double low, double high) { return (bitsOfDouble(low) & 1) == 0 ? low : high; }

double slowly(const CFastForm& form, double x) { return form.convertSlowly(x); }

double multiply(const CFastForm& form, double x) { return form.Head * x; }

double proved(const CFastForm& form, double x) {
    const double y = scaled(form, x, form.Tail);
    return __builtin_expect(range(form, x) < 0, 0) ? form.convertSlowly(x) : y;
}

double ties(const CFastForm& form, double x) {
    const double low = scaled(form, x, form.TailLow);
    const double high = scaled(form, x, form.TailHigh);
    return __builtin_expect(range(form, x) < 0, 0) ? form.convertSlowly(x) : evenOf(low, high);
}

double tested(const CFastForm& form, double x) {
    const double low = scaled(form, x, form.TailLow);
    const double high = scaled(form, x, form.TailHigh);
    return __builtin_expect(range(form, x) < 0 || !(low == high), 0) ? form.convertSlowly(x) : low;
}

double offset(const CFastForm& form, double x) {
    const COffsetSum sum(form, x);
    if (sum.Low == sum.High) {
        return sum.Low;
    }
    return rangeOfTies(form, x, sum.Distance) < 0 ? form.convertSlowly(x)
                                                  : evenOf(sum.Low, sum.High);
}

bool slowlyAll(const CFastForm& form, const double* values, double* results, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = form.convertSlowly(values[i]);
    }
    return true;
}

// The loops copy the form, since a compiler must otherwise expect that a result changes it.

bool multiplyAll(const CFastForm& form, const double* __restrict values, double* __restrict results,
                 std::size_t count) {
    const double factor = form.Head;
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = factor * values[i];
    }
    return true;
}

bool provedAll(const CFastForm& form, const double* __restrict values, double* __restrict results,
               std::size_t count) {
    const CFastForm local = form;
    std::int64_t worst = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = values[i];
        results[i] = scaled(local, x, local.Tail);
        worst |= range(local, x);
    }
    return worst >= 0;
}

bool tiesAll(const CFastForm& form, const double* __restrict values, double* __restrict results,
             std::size_t count) {
    const CFastForm local = form;
    std::int64_t worst = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = values[i];
        // Of the two the second is farther from zero by 0 or 1 in its last place.
        const std::int64_t low = bitsOfDouble(scaled(local, x, local.TailLow));
        const std::int64_t high = bitsOfDouble(scaled(local, x, local.TailHigh));
        results[i] = doubleOfBits(low + ((high - low) & low));
        worst |= range(local, x);
    }
    return worst >= 0;
}

bool testedAll(const CFastForm& form, const double* __restrict values, double* __restrict results,
               std::size_t count) {
    const CFastForm local = form;
    std::int64_t worst = 0;
    std::int64_t difference = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = values[i];
        const double low = scaled(local, x, local.TailLow);
        const double high = scaled(local, x, local.TailHigh);
        results[i] = low;
        difference |= bitsOfDouble(low) ^ bitsOfDouble(high);
        worst |= range(local, x);
    }
    return worst >= 0 && difference == 0;
}

bool offsetAll(const CFastForm& form, const double* __restrict values, double* __restrict results,
               std::size_t count) {
    const CFastForm local = form;
    std::int64_t worst = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = values[i];
        const COffsetSum sum(local, x);
        results[i] = evenOf(sum.Low, sum.High);
        worst |= sum.Low == sum.High ? 0 : rangeOfTies(local, x, sum.Distance);
    }
    return worst >= 0;
}

void divideAll(double scale, double offset, double divisor, const double* __restrict values,
               double* __restrict results, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = (scale * values[i] + offset) / divisor;
    }
}

template <class Number>
void widenAll(const Number* __restrict values, double* __restrict results, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = static_cast<double>(values[i]);
    }
}

// A double that lies in the middle between two floats may have been rounded to it. Then rounding again
// would go the wrong way. The same is possible for all that becomes a subnormal float.
bool narrowAll(const double* __restrict values, float* __restrict results, std::size_t count) {
    std::int64_t worst = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = values[i];
        results[i] = static_cast<float>(x);
        worst |= ((bitsOfDouble(x) & 0x1FFFFFFF) ^ 0x10000000) - 1;
        worst |= sizeLessOne(x) - 0x380FFFFFFFFFFFFF;  // 2^-126, less 1
    }
    return worst >= 0;
}

}  // namespace

extern const CLoops MENSOR_LOOPS;
const CLoops MENSOR_LOOPS = {
    MENSOR_LOOPS_NAME,
    {slowly, multiply, proved, ties, tested, offset},
    {slowlyAll, multiplyAll, provedAll, tiesAll, testedAll, offsetAll},
    divideAll,
    widenAll,
    widenAll,
    widenAll,
    widenAll,
    narrowAll,
};

}  // namespace exact
}  // namespace mensor
