#include "mensor_checked/converting.h"

#include <memory>

#include "mensor_checked/ExactConverter.h"
#include "mensor_checked/Faults.h"
#include "mensor_checked/Lock.h"
#include "mensor_checked/Rounding.h"
#include "mensor_checked/words.h"
#include "mensor_exact/kinds.h"

namespace mensor::checked {

CConverterPtr converter(const CUnitPtr& from, const CUnitPtr& to, eKinds kinds) {
    requireUnit(from, "converter");
    requireUnit(to, "converter");
    if (from == to) {
        return CConverter::identity();
    }
    const Lock lock;
    if (!isOfNumbers(from) || !isOfNumbers(to)) {
        if (kinds == eKinds::SAME) {
            exact::requireSameMarks(meaningOf(from), meaningOf(to));
        }
        return from->getConverterTo(to);
    }
    const CMeaning source = meaningOf(from);
    const CMeaning target = meaningOf(to);
    const bool isMapped = !source.isCompatibleWith(target) && from->isCompatible(to) &&
                          !faultOf(from, source) && !faultOf(to, target);
    return isMapped ? from->getConverterTo(to) : converter(source, target, kinds);
}

CConverterPtr converter(const CMeaning& from, const CMeaning& to, eKinds kinds) {
    return std::make_shared<CExactConverter>(exact::CConversion(from, to, kinds));
}

}  // namespace mensor::checked
