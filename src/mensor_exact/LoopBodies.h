// LoopBodies.h: the loops of the fast conversions. Each file that includes this header compiles them for
// another kind of processor, under the name MENSOR_LOOPS. Not installed.
//
// This header calls only those inline functions of other headers that are always inlined. Of any other inline
// function the linker keeps one copy for all files, and that copy might need a newer processor.
//
// Each loop computes every element separately, so the width of the vectors does not influence the
// results.
#include <cstddef>
#include <cstdint>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "mensor_exact/FastForm.h"

#if defined(__FMA__) || defined(__ARM_FEATURE_FMA)
#define MENSOR_FUSED 1
#else
#define MENSOR_FUSED 0
#endif

namespace mensor::exact {

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

// The bits of |x| minus one, without the sign bit. So a zero gives the largest number of all.
inline std::int64_t sizeLessOne(double x) {
    const std::uint64_t bits = static_cast<std::uint64_t>(bitsOfDouble(x));
    return static_cast<std::int64_t>(bits - 1U) & Magnitude;
}

#if MENSOR_FUSED

// Head·x + tail·x. The whole sum is rounded once.
inline double scaled(const CFastForm& form, double x, double tail) {
    return __builtin_fma(form.Head, x, tail * x);
}

// Negative if x is too small, but not zero. Then the result could be subnormal, and the small product not
// exact enough.
inline std::int64_t range(const CFastForm& form, double x) { return sizeLessOne(x) - form.Least; }

// Returns whether any of many values has a negative range.
class CRanges {
public:
    void add(const CFastForm&, double x) {
        const std::int64_t size = sizeLessOne(x);
        m_Least = size < m_Least ? size : m_Least;
    }
    bool areGood(const CFastForm& form) const { return m_Least >= form.Least; }

private:
    std::int64_t m_Least = Magnitude;
};

#else

// The exact rounding error of `product` = Head·x: what rounding has added. Both factors are split into
// halves whose products are exact. Returns +0 if the product is zero.
inline double addedTo(double product, const CFastForm& form, double x) {
    const double c = x * 134217729.0;
    const double high = c - (c - x);
    const double low = x - high;
    return ((product - high * form.HeadHigh) - high * form.HeadLow - low * form.HeadHigh) -
           low * form.HeadLow;
}

// Computed as a difference, because a sum would lose the sign of a zero.
inline double scaled(const CFastForm& form, double x, double tail) {
    const double product = form.Head * x;
    return product - (addedTo(product, form, x) - tail * x);
}

// Negative if x is too small but not zero, too large to be split, or NaN.
inline std::int64_t range(const CFastForm& form, double x) {
    return (sizeLessOne(x) - form.Least) | (form.Most - (bitsOfDouble(x) & Magnitude));
}

// Returns whether any of many values has a negative range.
class CRanges {
public:
    void add(const CFastForm& form, double x) { m_All |= range(form, x); }
    bool areGood(const CFastForm&) const { return m_All >= 0; }

private:
    std::int64_t m_All = 0;
};

#endif

// Two limits of the exact result f·(x − c), rounded to doubles, if |Distance| is large enough.
struct COffsetSum {
    double One;
    double Other;
    double Distance;

    COffsetSum(const CFastForm& form, double x) {
        // x − Center = difference + error, exactly, also if x is the smaller one.
        const double difference = x - form.Center;
        const double part = difference - x;
        const double error = (x - (difference - part)) + (-form.Center - part);
#if MENSOR_FUSED
        const double rest = __builtin_fma(form.Head, error, -form.CenterTail);
        One = __builtin_fma(form.Head, difference, __builtin_fma(form.TailLow, difference, rest));
        Other =
            __builtin_fma(form.Head, difference, __builtin_fma(form.TailHigh, difference, rest));
#else
        const double product = form.Head * difference;
        const double rest =
            (form.Head * error - form.CenterTail) - addedTo(product, form, difference);
        One = product + (form.TailLow * difference + rest);
        Other = product + (form.TailHigh * difference + rest);
#endif
        Distance = difference;
    }
};

// The distance of |x| above the least |x|. It wraps around to a very large number if |x| is less.
inline std::uint64_t aboveLeast(const CFastForm& form, double x) {
    return static_cast<std::uint64_t>(bitsOfDouble(x) & Magnitude) -
           static_cast<std::uint64_t>(form.Least);
}
inline std::uint64_t mostAboveLeast(const CFastForm& form) {
    return static_cast<std::uint64_t>(form.Most) - static_cast<std::uint64_t>(form.Least);
}

// The closer the distance is to zero, the greater is this number. If the center is exact, a distance of
// zero counts as a large one, since the result is exactly zero.
inline std::uint64_t nearness(const CFastForm& form, double distance) {
    const auto bits = static_cast<std::uint64_t>(bitsOfDouble(distance)) -
                      static_cast<std::uint64_t>(form.ExactCenter);
    return ~bits & static_cast<std::uint64_t>(Magnitude);
}
inline std::uint64_t mostNearness(const CFastForm& form) {
    return static_cast<std::uint64_t>(Magnitude - (form.LeastDistance - form.ExactCenter));
}

// Returns whether the limits enclose the exact result.
inline bool encloses(const CFastForm& form, const COffsetSum& sum) {
    return nearness(form, sum.Distance) <= mostNearness(form);
}

// Returns whether differing limits prove that the exact result for x is a tie.
inline bool showTie(const CFastForm& form, double x) {
    return aboveLeast(form, x) <= mostAboveLeast(form);
}

// Returns whether the results of all these values can be decided without whole numbers: no value is
// too close to the center, and every value whose two limits differ is a tie.
class CTies {
public:
    void add(const CFastForm& form, double x, const COffsetSum& sum) {
        const std::uint64_t unsure = sum.One == sum.Other ? 0 : ~std::uint64_t{0};
        const std::uint64_t above = aboveLeast(form, x) & unsure;
        m_Above = above > m_Above ? above : m_Above;
        const std::uint64_t near = nearness(form, sum.Distance);
        m_Nearness = near > m_Nearness ? near : m_Nearness;
    }
    bool areGood(const CFastForm& form) const {
        return m_Above <= mostAboveLeast(form) && m_Nearness <= mostNearness(form);
    }

private:
    std::uint64_t m_Above = 0;
    std::uint64_t m_Nearness = 0;
};

// Returns the one of two neighbours whose last bit is 0. They may also be equal.
inline double evenOf(double one, double other) {
    return (bitsOfDouble(one) & 1) == 0 ? one : other;
}

// The same, faster, for results that are not nearly subnormal.
inline double middleOf(double one, double other) {
#if MENSOR_FUSED
    // The middle is a tie, which the processor rounds to the even neighbour.
    return __builtin_fma(0.5, one, 0.5 * other);
#else
    return evenOf(one, other);
#endif
}

double slowly(const CFastForm& form, double x) { return form.convertSlowly(x); }

double multiply(const CFastForm& form, double x) { return form.Head * x; }

// The tests of x come first, so that the result need not be kept while x is still needed. The processor
// predicts them and does not wait.

double proved(const CFastForm& form, double x) {
    if (__builtin_expect(range(form, x) < 0, 0)) {
        return form.convertSlowly(x);
    }
    return scaled(form, x, form.Tail);
}

double ties(const CFastForm& form, double x) {
    if (__builtin_expect(range(form, x) < 0, 0)) {
        return form.convertSlowly(x);
    }
    const double low = scaled(form, x, form.TailLow);
    const double high = scaled(form, x, form.TailHigh);
    // Tests for equality first: the processor predicts this better than the last bit.
    return __builtin_expect(low == high, 1) ? high : evenOf(low, high);
}

double tested(const CFastForm& form, double x) {
    if (__builtin_expect(range(form, x) < 0, 0)) {
        return form.convertSlowly(x);
    }
    const double low = scaled(form, x, form.TailLow);
    const double high = scaled(form, x, form.TailHigh);
    if (__builtin_expect(low == high, 1)) {
        return low;
    }
    return form.convertSlowly(x);
}

double offset(const CFastForm& form, double x) {
    const COffsetSum sum(form, x);
    if (__builtin_expect(encloses(form, sum), 1)) {
        if (sum.One == sum.Other) {
            return sum.One;
        }
        if (showTie(form, x)) {
            return evenOf(sum.One, sum.Other);
        }
    }
    return form.convertSlowly(x);
}

// Converts each value of an array.
template <class Convert>
inline void forEach(const double* __restrict values, double* __restrict results, std::size_t count,
                    Convert convert) {
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = convert(values[i]);
    }
}

bool slowlyAll(const CFastForm& form, const double* values, double* results, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = form.convertSlowly(values[i]);
    }
    return true;
}

// The loops copy the form. Otherwise the compiler must assume that storing a result changes it.

bool multiplyAll(const CFastForm& form, const double* values, double* results, std::size_t count) {
    const double factor = form.Head;
    forEach(values, results, count, [=](double x) { return factor * x; });
    return true;
}

bool provedAll(const CFastForm& form, const double* values, double* results, std::size_t count) {
    const CFastForm local = form;
    CRanges ranges;
    forEach(values, results, count, [&](double x) {
        ranges.add(local, x);
        return scaled(local, x, local.Tail);
    });
    return ranges.areGood(local);
}

bool tiesAll(const CFastForm& form, const double* values, double* results, std::size_t count) {
    const CFastForm local = form;
    CRanges ranges;
    forEach(values, results, count, [&](double x) {
        ranges.add(local, x);
#if MENSOR_FUSED
        // For a tie, the inner sum is the exact product of x and the tail. The outer one is the tie, which
        // the processor rounds to the even neighbour.
        return __builtin_fma(local.Head, x, __builtin_fma(local.Tail, x, local.TailRest * x));
#else
        // The magnitude of `high` is that of `low` or one unit in the last place larger.
        const std::int64_t low = bitsOfDouble(scaled(local, x, local.TailLow));
        const std::int64_t high = bitsOfDouble(scaled(local, x, local.TailHigh));
        return doubleOfBits(low + ((high - low) & low));
#endif
    });
    return ranges.areGood(local);
}

bool testedAll(const CFastForm& form, const double* values, double* results, std::size_t count) {
    const CFastForm local = form;
    CRanges ranges;
    std::int64_t difference = 0;
    forEach(values, results, count, [&](double x) {
        ranges.add(local, x);
        const double low = scaled(local, x, local.TailLow);
        const double high = scaled(local, x, local.TailHigh);
        difference |= bitsOfDouble(low) ^ bitsOfDouble(high);
        return low;
    });
    return ranges.areGood(local) && difference == 0;
}

inline double offsetOf(const CFastForm& form, double x, CTies& ties) {
    const COffsetSum sum(form, x);
    ties.add(form, x, sum);
    return middleOf(sum.One, sum.Other);
}

bool offsetAll(const CFastForm& form, const double* values, double* results, std::size_t count) {
    const CFastForm local = form;
    CTies ties;
    forEach(values, results, count, [&](double x) { return offsetOf(local, x, ties); });
    return ties.areGood(local);
}

#if defined(__x86_64__)

#if defined(__AVX512F__)
using CVector = __m512i;
inline void storePastCaches(CVector* to, const CVector* from) { _mm512_stream_si512(to, *from); }
#elif defined(__AVX__)
using CVector = __m256i;
inline void storePastCaches(CVector* to, const CVector* from) { _mm256_stream_si256(to, *from); }
#else
using CVector = __m128i;
inline void storePastCaches(CVector* to, const CVector* from) { _mm_stream_si128(to, *from); }
#endif

inline void copyPastCaches(const double* values, double* results, std::size_t count) {
    constexpr std::size_t Width = sizeof(CVector) / sizeof(double);
    for (std::size_t i = 0; i < count; i += Width) {
        storePastCaches(static_cast<CVector*>(static_cast<void*>(results + i)),
                        static_cast<const CVector*>(static_cast<const void*>(values + i)));
    }
}

bool offsetPastCaches(const CFastForm& form, const double* values, double* results,
                      std::size_t count) {
    const CFastForm local = form;
    CTies ties;
    constexpr std::size_t Piece = CLoops::OffsetPiece;
    for (std::size_t done = 0; done < count; done += Piece) {
        alignas(64) double piece[Piece];
        for (std::size_t i = 0; i < Piece; ++i) {
            piece[i] = offsetOf(local, values[done + i], ties);
        }
        copyPastCaches(piece, results + done, Piece);
    }
    return ties.areGood(local);
}

#else

void copyPastCaches(const double* values, double* results, std::size_t count) {
    __builtin_memcpy(results, values, count * sizeof *values);
}

constexpr auto offsetPastCaches = offsetAll;

#endif

// The numerator is exact. With a fused multiply-add, it is multiplied by 1/Divisor instead of divided.
// The result is correctly rounded, as for every factor with the numerator 1.
template <class Number>
void divideAll(const CFastForm& form, const void* numbers, double* __restrict results,
               std::size_t count) {
    const auto* const values = static_cast<const Number*>(numbers);
    const CFastForm local = form;
    for (std::size_t i = 0; i < count; ++i) {
        const double numerator = local.Scale * static_cast<double>(values[i]) + local.Offset;
#if MENSOR_FUSED
        results[i] = __builtin_fma(local.Inverse, numerator, local.InverseTail * numerator);
#else
        results[i] = numerator / local.Divisor;
#endif
    }
}

template <class Number>
void widenAll(const void* numbers, double* __restrict results, std::size_t count) {
    const auto* const values = static_cast<const Number*>(numbers);
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = static_cast<double>(values[i]);
    }
}

// A double in the middle between two floats may itself have been rounded. Rounding it again may then
// give the wrong float. The same can happen to a double that becomes a subnormal float.
bool narrowAll(const double* __restrict values, float* __restrict results, std::size_t count) {
    std::int64_t worst = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = values[i];
        results[i] = static_cast<float>(x);
        worst |= ((bitsOfDouble(x) & 0x1FFFFFFF) ^ 0x10000000) - 1;
        worst |= sizeLessOne(x) - 0x380FFFFFFFFFFFFF;  // the bits of 2^-126, minus 1
    }
    return worst >= 0;
}

}  // namespace

extern const CLoops MENSOR_LOOPS;
const CLoops MENSOR_LOOPS = {
    MENSOR_LOOPS_NAME,
    {slowly, multiply, proved, ties, tested, offset},
    {slowlyAll, multiplyAll, provedAll, tiesAll, testedAll, offsetAll},
    copyPastCaches,
    offsetPastCaches,
    {divideAll<std::int16_t>, divideAll<std::int32_t>},
    {widenAll<std::int16_t>, widenAll<std::int32_t>, widenAll<std::int64_t>, widenAll<float>},
    narrowAll,
};

}  // namespace mensor::exact
