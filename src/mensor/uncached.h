// uncached.h: the algebra for texts and for folding a product. For the library's own use; not
// installed.
//
// The results are those of CUnit's algebra. Slots that clients' algebra has filled are used, but no
// slot is filled: a table of slots is as long as the largest number of a unit, and most units that a
// text or a fold meets on the way are never asked again.
#ifndef MENSOR_UNCACHED_H
#define MENSOR_UNCACHED_H

#include <vector>

#include "mensor/Unit.h"

namespace mensor {
namespace detail {

// The caller holds CUnit::mutex().
struct Uncached {
    // left->multiply(right). Slot 0 alone is filled: all units that were never registered share it, so
    // what it holds decides what comes later.
    static CUnitPtr multiply(const CUnitPtr& left, const CUnitPtr& right);

    // unit->pow(pow)->root(root).
    static CUnitPtr raise(const CUnitPtr& unit, int pow, int root);

private:
    static const CUnitPtr* find(const std::vector<CUnitPtr>& slots, int index);
    static CUnitPtr divide(const CUnitPtr& left, const CUnitPtr& right);
    static CUnitPtr pow(const CUnitPtr& unit, int n);
    static CUnitPtr root(const CUnitPtr& unit, int n);
};

}  // namespace detail
}  // namespace mensor

#endif  // MENSOR_UNCACHED_H
