// ExactConverter.h: a converter of the library that rounds once. For the companion's own use; not
// installed.
#ifndef MENSOR_CHECKED_EXACTCONVERTER_H
#define MENSOR_CHECKED_EXACTCONVERTER_H

#include <cstddef>

#include "mensor/Converter.h"
#include "mensor_exact/Conversion.h"

namespace mensor::checked {

/// Class contract: any thread.
class CExactConverter final : public CConverter {
public:
    explicit CExactConverter(const exact::CConversion& conversion);
    ~CExactConverter() override;

    CConverterPtr inverse() override;
    double convert(double x) const override;
    double derivative(double x) const override;
    bool isLinear() const override;
    bool equals(CConverterPtr other) const override;

    const exact::CConversion& conversion() const { return m_Conversion; }

protected:
    void convertArray(const double* values, double* results, std::size_t count) const override;

private:
    exact::CConversion m_Conversion;
    double m_Slope;
    bool m_HasOffset;
};

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_EXACTCONVERTER_H
