// Float-to-int conversion with the result 32-bit ARM gives.
#ifndef XVKFC_NUMERIC_FLOAT_TO_INT_H_
#define XVKFC_NUMERIC_FLOAT_TO_INT_H_

#include <climits>

namespace detail {

// Truncates toward zero, saturates at INT_MIN and INT_MAX, and maps NaN to 0,
// as ARM's VCVT does. A plain cast is undefined for out-of-range values and
// gives INT_MIN on x86 for them and for NaN, so every conversion in the
// library goes through here to get the device's answer on every platform.
inline int truncToIntArm(double value) {
  if (value != value) return 0;
  if (value >= 2147483647.0) return INT_MAX;
  if (value <= -2147483648.0) return INT_MIN;
  return static_cast<int>(value);
}

// Every float is exactly representable as a double, so the float form only
// widens.
inline int truncToIntArm(float value) { return truncToIntArm(static_cast<double>(value)); }

}  // namespace detail

#endif  // XVKFC_NUMERIC_FLOAT_TO_INT_H_
