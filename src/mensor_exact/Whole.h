// Whole.h: whole numbers of any size. For the library's own use; not installed.
#ifndef MENSOR_EXACT_WHOLE_H
#define MENSOR_EXACT_WHOLE_H

#include <boost/multiprecision/cpp_int.hpp>
#include <cstddef>
#include <cstdint>

namespace mensor {
namespace exact {

/// Whole numbers. Those of everyday conversions, also of the smallest doubles, need no memory beside
/// the object.
using Whole = boost::multiprecision::number<
    boost::multiprecision::cpp_int_backend<2304, 0, boost::multiprecision::signed_magnitude,
                                           boost::multiprecision::unchecked,
                                           std::allocator<boost::multiprecision::limb_type>>,
    boost::multiprecision::et_off>;

/// The bits of `number`, which is not negative; 0 of zero.
inline std::size_t bitsOf(const Whole& number) {
    return number.is_zero() ? 0 : boost::multiprecision::msb(number) + 1;
}

/// `base` to the power `exponent`.
inline Whole powerOf(const Whole& base, std::int64_t exponent) {
    return boost::multiprecision::pow(base, static_cast<unsigned>(exponent));
}

}  // namespace exact
}  // namespace mensor

#endif  // MENSOR_EXACT_WHOLE_H
