// Loops.h: the fast ways of converting, compiled for several processors. For the library's own use; not
// installed.
#ifndef MENSOR_EXACT_LOOPS_H
#define MENSOR_EXACT_LOOPS_H

#include <cstddef>
#include <cstdint>

namespace mensor::exact {

struct CFastForm;

/// How a conversion is computed.
enum eWay {
    SLOWLY,    ///< by whole numbers, always
    MULTIPLY,  ///< one multiplication; the factor is a double
    PROVED,    ///< one sum of products, proved to round to the nearest double
    TIES,      ///< two sums; where they differ, the result is a tie, and the even one of them
    TESTED,    ///< two sums; where they differ, by whole numbers
    OFFSET     ///< two sums with an offset; where they differ, a tie or by whole numbers
};
constexpr int WAYS = OFFSET + 1;

/// The ways, compiled for one kind of processor. All kinds give the same bits.
struct CLoops {
    const char* Name;

    /// One value, whatever it is.
    double (*One[WAYS])(const CFastForm& form, double x);

    /// `count` values. Gives false if some of the results are not known to be right, which `One` then has
    /// to compute. The arrays do not overlap.
    bool (*Many[WAYS])(const CFastForm& form, const double* values, double* results,
                       std::size_t count);

    /// (Scale·n + Offset)/Divisor for whole numbers n up to MostWhole.
    void (*Divide16)(const CFastForm& form, const std::int16_t* values, double* results,
                     std::size_t count);
    void (*Divide32)(const CFastForm& form, const std::int32_t* values, double* results,
                     std::size_t count);

    /// Other numbers as doubles; the large ones of 64 bits are rounded.
    void (*WidenFloat)(const float* values, double* results, std::size_t count);
    void (*Widen16)(const std::int16_t* values, double* results, std::size_t count);
    void (*Widen32)(const std::int32_t* values, double* results, std::size_t count);
    void (*Widen64)(const std::int64_t* values, double* results, std::size_t count);

    /// Doubles, rounded to floats. Gives false if a number may have been rounded before, so that rounding
    /// it twice may give another float than rounding it once.
    bool (*Narrow)(const double* values, float* results, std::size_t count);
};

/// For any processor of the architecture.
extern const CLoops PlainLoops;
#if defined(__x86_64__)
extern const CLoops Avx2Loops;
extern const CLoops Avx512Loops;
#endif

/// Those that this processor can run, best first; ends in a null pointer.
const CLoops* const* availableLoops();

/// The best for this processor.
inline const CLoops& bestLoops() { return *availableLoops()[0]; }

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_LOOPS_H
