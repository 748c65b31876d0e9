// Loops.h: the loops of the fast conversions, compiled for several processors. Not installed.
#ifndef MENSOR_EXACT_LOOPS_H
#define MENSOR_EXACT_LOOPS_H

#include <cstddef>
#include <cstdint>

namespace mensor::exact {

struct CFastForm;

/// The way in which a conversion is computed.
enum eWay {
    SLOWLY,    ///< with whole numbers, always
    MULTIPLY,  ///< one multiplication, if the factor is a double
    PROVED,    ///< one sum of products, if it always gives the nearest double, also for ties
    TIES,      ///< two sums; if they differ, the exact result is a tie, and the even one is taken
    TESTED,    ///< two sums; if they differ, whole numbers decide
    OFFSET     ///< two sums with an offset; if they differ, as TIES or as TESTED
};
constexpr int WAYS = OFFSET + 1;

/// The kinds of the numbers in arrays.
enum eNumbers { WHOLE16, WHOLE32, WHOLE64, FLOATS, DOUBLES };

/// The functions for each way, compiled for one kind of processor. All kinds give the same bits.
struct CLoops {
    /// The number of doubles in a cache line.
    static constexpr std::size_t Line = 8;
    /// The number of values that OffsetPastCaches stores at once.
    static constexpr std::size_t OffsetPiece = 64;

    const char* Name;

    /// Converts one value, which may be any double.
    double (*One[WAYS])(const CFastForm& form, double x);

    /// Converts `count` values. Returns false if some results may be wrong. The caller then computes
    /// all of them with `One`. The arrays do not overlap.
    bool (*Many[WAYS])(const CFastForm& form, const double* values, double* results,
                       std::size_t count);

    /// Copies a multiple of Line doubles to another array. Both begin at a cache line. On x86-64, the results
    /// are written past the caches.
    void (*CopyPastCaches)(const double* values, double* results, std::size_t count);

    /// Does the same as Many[OFFSET], for a multiple of OffsetPiece values. On x86-64, the results are
    /// written past the caches and begin at a cache line. An offset takes about as long to compute as its
    /// result takes to write, so this loop does both at once.
    bool (*OffsetPastCaches)(const CFastForm& form, const double* values, double* results,
                             std::size_t count);

    /// Computes (Scale·n + Offset)/Divisor for whole numbers n up to MostWhole. The index is WHOLE16 or WHOLE32.
    void (*Divide[WHOLE32 + 1])(const CFastForm& form, const void* values, double* results,
                                std::size_t count);

    /// Converts numbers of the kind that is the index to doubles. Large numbers of 64 bits are rounded.
    void (*Widen[FLOATS + 1])(const void* values, double* results, std::size_t count);

    /// Rounds doubles to floats. Returns false if a double lies in the middle between two floats or
    /// becomes a subnormal float. If such a double was rounded before, the float may be wrong.
    bool (*Narrow)(const double* values, float* results, std::size_t count);
};

/// The loops for any processor of the architecture.
extern const CLoops PlainLoops;
#if defined(__x86_64__)
extern const CLoops Avx2Loops;
extern const CLoops Avx512Loops;
#endif

/// Returns the loops that this processor can run, the fastest first. The list ends with a null pointer.
const CLoops* const* availableLoops();

/// Returns the fastest loops for this processor.
inline const CLoops& bestLoops() { return *availableLoops()[0]; }

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_LOOPS_H
