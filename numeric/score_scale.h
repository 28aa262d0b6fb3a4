// The comparator's similarity score on the library's integer scale.
#ifndef XVKFC_NUMERIC_SCORE_SCALE_H_
#define XVKFC_NUMERIC_SCORE_SCALE_H_

#include "numeric/float_to_int.h"

namespace detail {

// Maps a comparator score in [-1, 1] to 0..1023: 511.5 + score * 511.5 in
// single precision (the product rounded, then added), truncated toward zero
// as 32-bit ARM does. Not clamped: a score outside [-1, 1] gives a value
// outside 0..1023, and each caller applies its own limits.
inline int scoreOn1023Scale(float score) {
  const float scaled = score * 511.5f;
  return truncToIntArm(511.5f + scaled);
}

}  // namespace detail

#endif  // XVKFC_NUMERIC_SCORE_SCALE_H_
