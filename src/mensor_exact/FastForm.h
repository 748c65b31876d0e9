// FastForm.h: what the fast ways need to know of a conversion. For the library's own use; not installed.
//
// The factor f > 0 lies between two doubles. Head is the lower one, and what is missing, f − Head, is less
// than one place of it. A result is the sum of two products, Head·x + (f − Head)·x. A fused multiply-add
// rounds this sum once, and all that is wrong with it is the rounding of the small product.
//
// TailLow and TailHigh enclose f − Head so widely that the two sums made with them enclose the true result.
// Both are rounded to the nearest double. So if they are equal, they are the double nearest to the true
// result. Else the true result lies very close to the middle between two doubles, and whole numbers decide.
//
// With an offset the result is f·(x − c). The difference is computed exactly, as a sum of two doubles, but
// for the error of c, which is also kept as two doubles.
//
// docs/exact-fast.md has the argument, and scripts/proofs has the bounds.
#ifndef MENSOR_EXACT_FASTFORM_H
#define MENSOR_EXACT_FASTFORM_H

#include <cstddef>
#include <cstdint>

#include "mensor_exact/Loops.h"
#include "mensor_exact/ShortLine.h"

namespace mensor::exact {

/// The leading 192 bits of a positive number: it is (Word[0]·2^128 + Word[1]·2^64 + Word[2])·2^Twos if
/// IsWhole, else greater by less than 2^Twos. The highest bit of Word[0] is set.
struct CLeading {
    std::uint64_t Word[3];
    std::int64_t Twos;
    bool IsWhole;

    /// The leading bits of numerator/denominator·2^twos; neither is zero.
    static CLeading ofQuotient(std::uint64_t numerator, std::uint64_t denominator,
                               std::int64_t twos);
};

/// The slow way, right for every number.
class CSlowWay {
public:
    /// The result for `x`, rounded once. `x` is zero only where there is an offset.
    virtual CNearest convert(const CNumber& x, const CFormat& format) const = 0;

protected:
    ~CSlowWay() = default;
};

/// Made once for a conversion and never changed. Any thread may use it.
struct CFastForm {
    /// A conversion of which nothing is known but the slow way.
    CFastForm(bool hasOffset, const CSlowWay* slowWay, const CLoops& loops = bestLoops());

    /// A conversion with the factor `factor` and no offset. `line` is the same conversion if its numbers
    /// are short enough, else null.
    CFastForm(const CLeading& factor, const CShortLine* line, const CSlowWay* slowWay,
              const CLoops& loops = bestLoops());

    /// A conversion with an offset: y = factor·(x − center), or factor·(x + center) if `isNegative`.
    CFastForm(const CLeading& factor, const CLeading& center, bool isNegative,
              const CShortLine* line, const CSlowWay* slowWay, const CLoops& loops = bestLoops());

    double convert(double x) const { return One(*this, x); }

    /// `count` values: each result has the bits that `convert` gives. The arrays are the same one or do
    /// not overlap.
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

    /// By whole numbers; also for what is no number.
    double convertSlowly(double x) const;

    /// Rounded once to a float, by whole numbers.
    float convertSlowlyToFloat(double x) const;

    /// The result for a finite number, by short whole numbers or by the slow way.
    CNearest exactly(const CNumber& x, const CFormat& format) const;

    double (*One)(const CFastForm& form, double x) = nullptr;
    double Head = 0;
    double Tail = 0;     // f − Head, rounded
    double TailLow = 0;  // not negative
    double TailHigh = 0;
    double HeadHigh = 0;  // Head = HeadHigh + HeadLow, in 26 bits each
    double HeadLow = 0;
    double Center = 0;
    double CenterTail = 0;
    double Slack = 0;        // times |x − Center|, and
    double SlackCenter = 0;  // this: the error of the sum without the test, at most
    std::int64_t Least = 0;  // bits of |x| for which the way is right, or decides ties
    std::int64_t Most = 0;
    std::int64_t LeastDistance = 0;  // bits of |x − Center| likewise
    bool (*Many)(const CFastForm& form, const double* values, double* results,
                 std::size_t count) = nullptr;

    // For whole numbers n up to MostWhole: y = (Scale·n + Offset)/Divisor, all of it exact but the
    // division. MostWhole is 0 if there is no such way. 1/Divisor is about Inverse + InverseTail.
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
