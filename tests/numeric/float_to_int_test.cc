#include "numeric/float_to_int.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

namespace {

using detail::truncToIntArm;

TEST(TruncToIntArm, TruncatesTowardZeroSaturatesAndMapsNanToZero) {
  // 2147483520 is the largest float below 2^31: still representable.
  const float in[] = {2.7f,           -2.7f, -0.5f,    2147483520.0f, 2147483648.0f,
                      -2147483648.0f, -3e9f, INFINITY, -INFINITY,     std::nanf("")};
  const int out[] = {2, -2, 0, 2147483520, INT_MAX, INT_MIN, INT_MIN, INT_MAX, INT_MIN, 0};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(truncToIntArm(in[i]), out[i]) << in[i];
  EXPECT_EQ(truncToIntArm(2147483647.9), INT_MAX);  // the double overload
  EXPECT_EQ(truncToIntArm(-2147483648.9), INT_MIN);
  EXPECT_EQ(truncToIntArm(std::nan("")), 0);
}

}  // namespace
