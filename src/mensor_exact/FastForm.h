// FastForm.h: converts with doubles alone, and with whole numbers only where that is necessary. Not
// installed.
//
// The factor f > 0 lies between two doubles. Head is the lower one, so f − Head is less than one last
// place of it. A result is the sum of two products, Head·x + (f − Head)·x. A fused multiply-add rounds
// this sum once. The only other error is the rounding of the small product.
//
// TailLow is a little less than f − Head, and TailHigh a little more. The two sums made with them
// enclose the exact result before they are rounded to the nearest double. If both are the same double,
// it is the double nearest to the exact result. If not, the exact result is very close to the middle
// between two doubles, and whole numbers decide.
//
// With an offset the result is f·(x − c). The center c is stored as two doubles, and x − c is computed as the
// sum of two doubles. These errors move TailLow and TailHigh further apart.
//
// docs/exact-fast.md has the proof, and tests/proofs has the bounds.
#ifndef MENSOR_EXACT_FASTFORM_H
#define MENSOR_EXACT_FASTFORM_H

#include <cstddef>
#include <cstdint>

#include "mensor_exact/Loops.h"
#include "mensor_exact/ShortLine.h"

namespace mensor::exact {

/// The leading 192 bits of a positive number. The number is (Word[0]·2^128 + Word[1]·2^64 +
/// Word[2])·2^Twos if IsWhole is true, else it is greater by less than 2^Twos. The highest bit of
/// Word[0] is set.
struct CLeading {
    std::uint64_t Word[3];
    std::int64_t Twos;
    bool IsWhole;

    /// Returns the leading bits of numerator/denominator·2^twos. Neither is zero.
    static CLeading ofQuotient(std::uint64_t numerator, std::uint64_t denominator,
                               std::int64_t twos);
};

/// The slow way to convert. It is correct for every number.
class CSlowWay {
public:
    /// Returns the result for `x`, rounded once. Called with zero only if there is an offset.
    virtual CNearest convert(const CNumber& x, const CFormat& format) const = 0;

protected:
    ~CSlowWay() = default;
};

/// The constants of one conversion. They never change, so any thread may use them.
struct CFastForm {
    /// A conversion that always takes the slow way.
    CFastForm(bool hasOffset, const CSlowWay* slowWay, const CLoops& loops = bestLoops());

    /// A conversion with this factor and no offset. `line` is the same conversion, or null if its
    /// numbers are too long for CShortLine.
    CFastForm(const CLeading& factor, const CShortLine* line, const CSlowWay* slowWay,
              const CLoops& loops = bestLoops());

    /// The conversion y = factor·(x − center), or factor·(x + center) if `isNegative`.
    CFastForm(const CLeading& factor, const CLeading& center, bool isNegative,
              const CShortLine* line, const CSlowWay* slowWay, const CLoops& loops = bestLoops());

    double convert(double x) const { return One(*this, x); }

    /// Converts `count` values. Each result has the bits that `convert` gives. The arrays do not overlap. Arrays of
    /// the same type may be one and the same.
    void convertAll(const double* values, double* results, std::size_t count) const;
    void convertAll(const double* values, float* results, std::size_t count) const;
    void convertAll(const float* values, double* results, std::size_t count) const;
    void convertAll(const float* values, float* results, std::size_t count) const;
    void convertAll(const std::int16_t* values, double* results, std::size_t count) const;
    void convertAll(const std::int16_t* values, float* results, std::size_t count) const;
    void convertAll(const std::int32_t* values, double* results, std::size_t count) const;
    void convertAll(const std::int32_t* values, float* results, std::size_t count) const;
    void convertAll(const std::int64_t* values, double* results, std::size_t count) const;
    void convertAll(const std::int64_t* values, float* results, std::size_t count) const;

    /// Converts with whole numbers. `x` may also be infinite or NaN.
    double convertSlowly(double x) const;

    /// The same, rounded once to a float.
    float convertSlowlyToFloat(double x) const;

    /// Returns the result for a finite number, by CShortLine if possible, else by the slow way.
    CNearest exactly(const CNumber& x, const CFormat& format) const;

    double (*One)(const CFastForm& form, double x) = nullptr;  // for one value (CLoops)
    double Head = 0;
    double Tail = 0;      // f − Head, rounded
    double TailRest = 0;  // f − Head − Tail, for the way TIES
    double TailLow = 0;   // not negative
    double TailHigh = 0;
    double HeadHigh = 0;  // Head = HeadHigh + HeadLow, each with 26 bits
    double HeadLow = 0;
    double Center = 0;
    double CenterTail = 0;  // (c − Center)·Head

    // The fast calculation is correct, or finds the ties, for |x| from Least to Most. With an offset,
    // |x − Center| must also be LeastDistance or more, or zero if ExactCenter is 1. Least, Most and
    // LeastDistance are bits of doubles.
    std::int64_t Least = 0;
    std::int64_t Most = 0;
    std::int64_t LeastDistance = 0;
    std::int64_t ExactCenter = 0;

    // For arrays (CLoops).
    bool (*Many)(const CFastForm& form, const double* values, double* results,
                 std::size_t count) = nullptr;

    // For whole numbers n up to MostWhole: y = (Scale·n + Offset)/Divisor. Everything but the division is
    // exact. MostWhole is 0 if this is not possible. Inverse + InverseTail is nearly 1/Divisor.
    double Scale = 0;
    double Offset = 0;
    double Divisor = 1;
    double Inverse = 1;
    double InverseTail = 0;
    double MostWhole = 0;

    eWay Way = SLOWLY;
    bool HasOffset = false;
    bool HasLine = false;
    CShortLine Line;
    const CSlowWay* SlowWay = nullptr;
    const CLoops* Loops = nullptr;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_FASTFORM_H
