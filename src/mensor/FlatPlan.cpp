#include "mensor/FlatPlan.h"

#include <algorithm>
#include <cstring>

#include "mensor/AddConverter.h"
#include "mensor/Converter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/arrays.h"
#include "mensor/exact_class.h"

namespace mensor::detail {

inline CFlatPlan::Row CFlatPlan::rowOf(const CConverter& child, Step& own) {
    if (isExactly<CCompound>(child)) {
        const CFlatPlan& plan = static_cast<const CCompound&>(child).m_Plan;
        return {plan.m_Steps, plan.m_Count};
    }
    if (isExactly<CIdentity>(child)) {
        return {&own, 0};
    }
    if (isExactly<CMultiplyConverter>(child)) {
        own.Kind = MULTIPLY;
        own.Constant = static_cast<const CMultiplyConverter&>(child).factor();
    } else if (isExactly<CAddConverter>(child)) {
        own.Kind = ADD;
        own.Constant = static_cast<const CAddConverter&>(child).getOffset();
    } else {
        own.Kind = CALL;
        own.Converter = &child;
    }
    return {&own, 1};
}

inline void CFlatPlan::join(Row first, Row second, bool secondIsTemporary) {
    const std::size_t count = first.Count + second.Count;
    if (count > LongestPlan) {
        return;
    }
    if (second.Count == 0) {
        m_Steps = first.Steps;
    } else if (first.Count == 0 && !secondIsTemporary) {
        m_Steps = second.Steps;
    } else if (count == 1) {
        m_OwnStep = second.Steps[0];
        m_Steps = &m_OwnStep;
    } else {
        Step* const steps = new Step[count];
        std::copy_n(first.Steps, first.Count, steps);
        std::copy_n(second.Steps, second.Count, steps + first.Count);
        m_Steps = steps;
        m_OwnsArray = true;
    }
    m_Count = static_cast<std::uint32_t>(count);
}

void CFlatPlan::set(const CConverter& first, const CConverter& second) {
    const Row ofFirst = rowOf(first, m_OwnStep);
    Step ownOfSecond;
    const Row ofSecond = rowOf(second, ownOfSecond);
    join(ofFirst, ofSecond, ofSecond.Steps == &ownOfSecond);
}

void CFlatPlan::setInverse(const CConverter& first, const CConverter& toInvert) {
    const Row ofFirst = rowOf(first, m_OwnStep);
    Step ownOfSecond;
    const Row row = rowOf(toInvert, ownOfSecond);
    Step inverted[LongestPlan];
    for (std::size_t i = 0; i < row.Count; ++i) {
        // The same arithmetic as CAddConverter::inverse() and CMultiplyConverter::inverse().
        Step& step = inverted[row.Count - 1 - i];
        step = row.Steps[i];
        step.Constant = step.Kind == ADD ? -step.Constant : 1.0 / step.Constant;
    }
    join(ofFirst, {inverted, row.Count}, true);
}

bool CFlatPlan::canInvert(const CConverter& converter) {
    Step own;
    const Row row = rowOf(converter, own);
    return row.Steps != nullptr && std::none_of(row.Steps, row.Steps + row.Count,
                                                [](const Step& step) { return step.Kind == CALL; });
}

inline double CFlatPlan::run(const Step& step, double x) {
    if (step.Kind == MULTIPLY) {
        return x * step.Constant;
    }
    if (step.Kind == ADD) {
        return x + step.Constant;
    }
    return step.Converter->convert(x);
}

double CFlatPlan::run(double x) const {
    for (const Step *step = m_Steps, *end = m_Steps + m_Count; step != end; ++step) {
        x = run(*step, x);
    }
    return x;
}

void CFlatPlan::runAll(const double* values, double* results, std::size_t count) const {
    if (m_Count == 0) {
        std::memmove(results, values, count * sizeof(double));
        return;
    }
    if (m_Count == 1) {
        runAll(*m_Steps, values, results, count);
        return;
    }
    // All steps run over one piece before the next piece, so that the piece stays in the nearest
    // cache of the processor. The first step reads `values`, all others change `results` in place.
    constexpr std::size_t Piece = 1024;
    for (std::size_t done = 0; done < count;) {
        const std::size_t size = std::min(Piece, count - done);
        const double* from = values + done;
        double* const to = results + done;
        for (const Step *step = m_Steps, *end = m_Steps + m_Count; step != end; ++step) {
            runAll(*step, from, to, size);
            from = to;
        }
        done += size;
    }
}

void CFlatPlan::runAll(const Step& step, const double* values, double* results, std::size_t count) {
    const bool isVectorisable = step.Kind != CALL && step.Constant == step.Constant;  // not NaN
    if (isVectorisable && step.Kind == ADD) {
        addAll(values, results, count, step.Constant);
    } else if (isVectorisable) {
        multiplyAll(values, results, count, step.Constant);
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            results[i] = run(step, values[i]);
        }
    }
}

}  // namespace mensor::detail
