// Decimal.h: how results are written.
//
//     CDecimalStyle style;
//     style.Notation = eNotation::ENGINEERING;
//     style.DecimalComma = true;
//     CConversion::between("m", "km").convertText("2.5", style);  // "2,5e-3"
#ifndef MENSOR_EXACT_DECIMAL_H
#define MENSOR_EXACT_DECIMAL_H

namespace mensor::exact {

/// Where the point stands, and whether there is an exponent.
enum class eNotation {
    AUTOMATIC,    ///< PLAIN from 1e-6 to below 1e21, SCIENTIFIC beyond
    PLAIN,        ///< "0.000025", "1500000"
    SCIENTIFIC,   ///< "2.5e-5", "1.5e6"
    ENGINEERING,  ///< "25e-6", "1.5e6": exponents are multiples of three, and none where it is 0
};

/// How a result is written. Never depends on the locale.
struct CDecimalStyle {
    static constexpr int MostDigits = 50;

    /// 0: a result whose decimal expansion ends within 17 significant digits is written whole, any
    /// other as the shortest text that reads back as the nearest double. 1 to 50: rounded to so many
    /// significant digits, ties to even; zeros at the end of a fraction are not written.
    int Digits = 0;
    eNotation Notation = eNotation::AUTOMATIC;
    bool DecimalComma = false;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DECIMAL_H
