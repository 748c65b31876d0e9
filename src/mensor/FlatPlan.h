// FlatPlan.h: the steps of a compound converter in one row.
//
// A compound is a binary tree whose shape tells how it was made. Its value needs only the leaves of
// the tree from left to right. The plan is this row, and convert() runs it in one loop. No
// constants are combined: the same operations on the same operands in the same order give the same
// bits. Identities are left out, because they return their argument bit for bit.
//
// Clients do not use this class. The header is installed because each CCompound (Converter.h) holds
// a plan.
#ifndef MENSOR_FLATPLAN_H
#define MENSOR_FLATPLAN_H

#include <cstddef>
#include <cstdint>

#include "mensor/mensor_export.h"

namespace mensor {
class CConverter;
}

namespace mensor::detail {

/// The steps of one compound.
///
/// Class contract: caller serialises the two functions that set the plan; then any thread.
class MENSOR_API CFlatPlan {
public:
    /// Creates the object without a plan.
    CFlatPlan() = default;
    ~CFlatPlan() {
        if (m_OwnsArray) {
            delete[] m_Steps;
        }
    }
    CFlatPlan(const CFlatPlan&) = delete;
    CFlatPlan& operator=(const CFlatPlan&) = delete;

    /// Sets the steps of `first` and then those of `second`. The plan refers to both converters, so
    /// the caller keeps them alive.
    MENSOR_LOCAL void set(const CConverter& first, const CConverter& second);

    /// Sets the steps of `first` and then those of the inverse of `toInvert`, for which `canInvert`
    /// must hold.
    MENSOR_LOCAL void setInverse(const CConverter& first, const CConverter& toInvert);

    /// Returns whether all steps of `converter` are known operations, so that the plan of its
    /// inverse follows from its own.
    MENSOR_LOCAL static bool canInvert(const CConverter& converter);

    /// False for a chain of more than 32 steps. The functions below need a plan.
    bool exists() const { return m_Steps != nullptr; }

    /// Returns whether the plan is one factor or one offset. Nearly all chains are.
    bool isOneOperation() const { return m_Count == 1 && m_Steps->Kind != CALL; }

    /// The value of such a plan at `x`.
    double runOne(double x) const {
        return m_Steps->Kind == MULTIPLY ? x * m_Steps->Constant : x + m_Steps->Constant;
    }

    /// The value of the chain at `x`.
    MENSOR_LOCAL double run(double x) const;

    /// The values of the chain at `count` values, with the same bits. The arrays are the same one
    /// or do not overlap.
    MENSOR_LOCAL void runAll(const double* values, double* results, std::size_t count) const;

private:
    enum eKind { ADD, MULTIPLY, CALL };

    // A known operation and its constant, or a converter of a client's class, which is called.
    struct Step {
        eKind Kind;
        union {
            double Constant;
            const CConverter* Converter;
        };
    };

    struct Row {
        const Step* Steps;  // none for a converter that has no plan
        std::size_t Count;
    };

    static constexpr std::size_t LongestPlan = 32;

    // The steps of `child`. Those of a single converter are written to `own`.
    MENSOR_LOCAL static Row rowOf(const CConverter& child, Step& own);
    // Makes the plan from the steps of both rows. If `secondIsTemporary`, those of `second` are copied.
    MENSOR_LOCAL void join(Row first, Row second, bool secondIsTemporary);
    MENSOR_LOCAL static double run(const Step& step, double x);
    MENSOR_LOCAL static void runAll(const Step& step, const double* values, double* results,
                                    std::size_t count);

    // Points at m_OwnStep, at an array of this plan, or at the plan of a child.
    const Step* m_Steps = nullptr;
    std::uint32_t m_Count = LongestPlan + 1;  // this number if there is no plan
    bool m_OwnsArray = false;
    Step m_OwnStep;
};

}  // namespace mensor::detail

#endif  // MENSOR_FLATPLAN_H
