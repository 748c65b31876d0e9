// MultiplyConverter.h: the converter that scales a value by a constant.
//
//     auto toMetre = std::make_shared<CMultiplyConverter>(1000);
//     toMetre->convert(2.5);              // 2500, kilometre to metre
//     toMetre->inverse()->convert(2500);  // 2.5
//     toMetre->getSymbol(SI::Meter());    // "[m*1000]"
//
// Immutable once built; any thread may share it.
#ifndef MENSOR_MULTIPLYCONVERTER_H
#define MENSOR_MULTIPLYCONVERTER_H

#include <cstddef>
#include <memory>

#include "mensor/Converter.h"
#include "mensor/mensor_export.h"

namespace mensor {

/// Multiplies by a constant. A factor of one is not the identity converter.
///
/// Class contract: any thread.
class MENSOR_API CMultiplyConverter : public CConverter {
public:
    /// `factor`, in target units per source unit. Any double is accepted.
    explicit CMultiplyConverter(double factor);
    ~CMultiplyConverter() override;

    /// Multiplies by 1/factor. The inverse of the factor 0 has an infinite factor.
    CConverterPtr inverse() override;
    double convert(double x) const override;
    double derivative(double x) const override;  ///< the factor
    bool isLinear() const override;              ///< true

    /// If `other` is a multiply converter, a new one with the product of both factors. Otherwise
    /// the function of the base class. Only a call through this class runs it, since it is not
    /// virtual.
    CConverterPtr concatenate(CConverterPtr other);

    /// "[m*1000]": the unit's symbol and the factor with six significant digits.
    string_t getSymbol(CUnitPtr unit) const;

    /// The factor, in target units per source unit.
    double factor() const;

protected:
    void convertArray(const double* values, double* results, std::size_t count) const override;

private:
    friend struct detail::DebugLayout;

    double m_Factor;  // multiplied by convert(); never changes
};

using CMultiplyConverterPtr = std::shared_ptr<CMultiplyConverter>;

}  // namespace mensor

#endif  // MENSOR_MULTIPLYCONVERTER_H
