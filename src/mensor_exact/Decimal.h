// Decimal.h: the style of the decimal numbers that the library writes.
//
//     CDecimalStyle style;
//     style.Notation = eNotation::ENGINEERING;
//     style.DecimalComma = true;
//     CConversion::between("m", "km").convertText("2.5", style);  // "2,5e-3"
#ifndef MENSOR_EXACT_DECIMAL_H
#define MENSOR_EXACT_DECIMAL_H

namespace mensor::exact {

/// The place of the decimal point, and whether there is an exponent.
enum class eNotation {
    AUTOMATIC,   ///< PLAIN from 1e-6 to below 1e21, SCIENTIFIC beyond
    PLAIN,       ///< "0.000025", "1500000"
    SCIENTIFIC,  ///< "2.5e-5", "1.5e6"
    ENGINEERING,  ///< "25e-6", "1.5e6", "150": the exponent is a multiple of three, and left out if 0
};

/// The style of a written result. It never depends on the locale.
struct CDecimalStyle {
    static constexpr int MostDigits = 50;

    /// The number of significant digits, 1 to 50. The result is rounded to it, ties to even. Zeros at the
    /// end of a fraction are not written.
    ///
    /// 0: a result of at most 17 significant digits is written in full. Any other result is written as
    /// the shortest text that reads back as the nearest double.
    int Digits = 0;
    eNotation Notation = eNotation::AUTOMATIC;
    bool DecimalComma = false;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DECIMAL_H
