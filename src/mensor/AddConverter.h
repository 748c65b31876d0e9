// AddConverter.h: the converter that shifts a value by a constant, as temperature scales need.
//
//     auto toKelvin = std::make_shared<CAddConverter>(273.15);
//     toKelvin->convert(21.5);               // 294.65
//     toKelvin->inverse()->convert(294.65);  // 21.5
//     toKelvin->isLinear();                  // false: it is not a scaling
//
// Immutable once built; any thread may share it.
#ifndef MENSOR_ADDCONVERTER_H
#define MENSOR_ADDCONVERTER_H

#include <cstddef>
#include <memory>

#include "mensor/Converter.h"
#include "mensor/mensor_export.h"

namespace mensor {

/// Adds a constant. An offset of zero is not the identity converter.
///
/// Class contract: any thread.
class MENSOR_API CAddConverter : public CConverter {
public:
    /// `convert` adds `offset`, which is given in the target unit. Any double is accepted.
    explicit CAddConverter(double offset);
    ~CAddConverter() override;

    CConverterPtr inverse() override;
    double convert(double x) const override;
    double derivative(double x) const override;  ///< 1
    bool isLinear() const override;              ///< false
    /// Returns whether `other` is an offset converter with the same offset in single precision.
    bool equals(CConverterPtr other) const override;

    /// If `other` is an offset converter, a new one with the sum of both offsets. Otherwise the
    /// function of the base class. Only a call through this class runs it, since it is not virtual.
    CConverterPtr concatenate(CConverterPtr other);

    /// The bits of the offset in single precision. Only a call through this class runs it. The
    /// identity of units uses the function of the base class, which is the same for all offsets.
    int hashCode() const;

    /// "[K+273.15]": the unit's symbol and the offset with six significant digits.
    string_t getSymbol(CUnitPtr unit) const;

    /// The offset, in the target unit.
    double getOffset() const;

protected:
    void convertArray(const double* values, double* results, std::size_t count) const override;

private:
    friend struct detail::DebugLayout;

    double m_Offset;  // added by convert(), in the target unit; never changes
};

using CAddConverterPtr = std::shared_ptr<CAddConverter>;

}  // namespace mensor

#endif  // MENSOR_ADDCONVERTER_H
