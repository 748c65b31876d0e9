#include "mensor/Chain.h"

#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "mensor/identity.h"
#include "mensor/require.h"

namespace mensor::detail {

// Lets std::allocate_shared call the private constructor of CCompound.
template <class T>
struct Chain::Allocator {
    using value_type = T;

    Allocator() = default;
    template <class Other>
    Allocator(const Allocator<Other>&) {}

    T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
    void deallocate(T* place, std::size_t count) { std::allocator<T>().deallocate(place, count); }

    void construct(CCompound* place, const CConverterPtr& first, CCompound::InverseOf second) {
        ::new (static_cast<void*>(place)) CCompound(first, second);
    }

    friend bool operator==(const Allocator&, const Allocator&) { return true; }
    friend bool operator!=(const Allocator&, const Allocator&) { return false; }
};

const CConverterPtr& Chain::second(const CCompound& compound) {
    if (!compound.m_SecondIsReady.load(std::memory_order_acquire)) {
        invertSecond(compound);
    }
    return compound.m_Second;
}

void Chain::invertSecond(const CCompound& compound) {
    // Recursive, because the converter to invert may itself have a second step to invert. All
    // converters below are of the library's own classes and take no other lock.
    static std::recursive_mutex mutex;
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    if (!compound.m_SecondIsReady.load(std::memory_order_relaxed)) {
        compound.m_Second = inverse(compound.m_Second);
        compound.m_SecondIsReady.store(true, std::memory_order_release);
    }
}

CConverterPtr Chain::throughInverse(const CConverterPtr& first, const CConverterPtr& toInvert) {
    if (!CFlatPlan::canInvert(*toInvert) || first == theIdentity() || toInvert == theIdentity()) {
        return requireGiven(toInvert->inverse(), "inverse")->concatenate(first);
    }
    return std::allocate_shared<CCompound>(Allocator<CCompound>(), first,
                                           CCompound::InverseOf{toInvert});
}

double Chain::convert(const CCompound& chain, double x) {
    std::vector<const CConverter*> ahead{second(chain).get(), chain.m_First.get()};
    while (!ahead.empty()) {
        const CConverter* next = ahead.back();
        ahead.pop_back();
        const CCompound* compound = asCompound(*next);
        if (compound != nullptr && !compound->m_Plan.exists()) {
            ahead.push_back(second(*compound).get());
            ahead.push_back(compound->m_First.get());
        } else {
            x = next->convert(x);
        }
    }
    return x;
}

double Chain::slope(const CConverter& converter, double& x, bool isLast, int levels) {
    const CCompound* compound = asCompound(converter);
    if (compound == nullptr) {
        const double slope = converter.derivative(x);
        if (!isLast) {
            x = converter.convert(x);
        }
        return slope;
    }
    if (levels == 0) {
        return slopeByList(*compound, x, isLast);
    }
    const double ofFirst = slope(*compound->m_First, x, false, levels - 1);
    return ofFirst * slope(*second(*compound), x, isLast, levels - 1);
}

double Chain::slopeByList(const CCompound& chain, double& x, bool isLast) {
    struct Visit {
        const CConverter* Converter;
        bool ChildrenDone;
        bool IsLast;
    };
    std::vector<Visit> ahead{{&chain, false, isLast}};
    std::vector<double> slopes;
    while (!ahead.empty()) {
        const Visit visit = ahead.back();
        ahead.pop_back();
        if (visit.ChildrenDone) {
            const double ofSecond = slopes.back();
            slopes.pop_back();
            slopes.back() = slopes.back() * ofSecond;
        } else if (const CCompound* compound = asCompound(*visit.Converter)) {
            ahead.push_back({compound, true, false});
            ahead.push_back({second(*compound).get(), false, visit.IsLast});
            ahead.push_back({compound->m_First.get(), false, false});
        } else {
            slopes.push_back(slope(*visit.Converter, x, visit.IsLast, 0));
        }
    }
    return slopes.back();
}

CConverterPtr Chain::inverse(const CConverterPtr& converter, int levels) {
    if (converter == theIdentity()) {
        return converter;
    }
    const CCompound* compound = asCompound(*converter);
    if (compound == nullptr) {
        return requireGiven(converter->inverse(), "inverse");
    }
    if (levels == 0) {
        return inverseByList(*converter);
    }
    CConverterPtr ofSecond = inverse(second(*compound), levels - 1);
    return std::make_shared<CCompound>(std::move(ofSecond), inverse(compound->m_First, levels - 1));
}

CConverterPtr Chain::inverseByList(CConverter& chain) {
    struct Visit {
        CConverter* Converter;
        bool ChildrenDone;
    };
    std::vector<Visit> ahead{{&chain, false}};
    std::vector<CConverterPtr> inverses;
    while (!ahead.empty()) {
        const Visit visit = ahead.back();
        ahead.pop_back();
        if (visit.ChildrenDone) {
            CConverterPtr ofFirst = std::move(inverses.back());
            inverses.pop_back();
            CConverterPtr ofSecond = std::move(inverses.back());
            inverses.back() = std::make_shared<CCompound>(std::move(ofSecond), std::move(ofFirst));
        } else if (const CCompound* compound = asCompound(*visit.Converter)) {
            ahead.push_back({visit.Converter, true});
            ahead.push_back({compound->m_First.get(), false});
            ahead.push_back({second(*compound).get(), false});  // on top: inverted first
        } else {
            inverses.push_back(requireGiven(visit.Converter->inverse(), "inverse"));
        }
    }
    return std::move(inverses.back());
}

}  // namespace mensor::detail
