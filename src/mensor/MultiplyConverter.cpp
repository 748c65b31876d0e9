#include "mensor/MultiplyConverter.h"

#include "mensor/TextStream.h"
#include "mensor/Unit.h"
#include "mensor/arrays.h"
#include "mensor/exact_class.h"

namespace mensor {

CMultiplyConverter::CMultiplyConverter(double factor) : m_Factor(factor) {}
CMultiplyConverter::~CMultiplyConverter() = default;

CConverterPtr CMultiplyConverter::inverse() {
    return std::make_shared<CMultiplyConverter>(1.0 / m_Factor);
}

double CMultiplyConverter::convert(double x) const { return x * m_Factor; }
double CMultiplyConverter::derivative(double) const { return m_Factor; }
bool CMultiplyConverter::isLinear() const { return true; }

CConverterPtr CMultiplyConverter::concatenate(CConverterPtr other) {
    if (const auto* that = dynamic_cast<const CMultiplyConverter*>(other.get())) {
        return std::make_shared<CMultiplyConverter>(m_Factor * that->factor());
    }
    return CConverter::concatenate(other);
}

string_t CMultiplyConverter::getSymbol(CUnitPtr unit) const {
    detail::CTextStream text;
    text << "[" << toStdString(unit->getSymbol()) << "*" << derivative(0.0) << "]";
    return string_t(text.str());
}

double CMultiplyConverter::factor() const { return m_Factor; }

void CMultiplyConverter::convertArray(const double* values, double* results,
                                      std::size_t count) const {
    if (m_Factor != m_Factor || !detail::isExactly<CMultiplyConverter>(*this)) {
        CConverter::convertArray(values, results, count);
    } else {
        detail::multiplyAll(values, results, count, m_Factor);
    }
}

}  // namespace mensor
