#include "numeric/float_to_int.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

namespace {

using detail::truncToIntArm;

TEST(TruncToIntArm, TruncatesTowardZeroSaturatesAndMapsNanToZero) {
  // 2147483520 is the largest float below 2^31: still representable.
  const std::pair<float, int> cases[] = {{2.7f, 2},
                                         {-2.7f, -2},
                                         {-0.5f, 0},
                                         {2147483520.0f, 2147483520},
                                         {2147483648.0f, INT_MAX},
                                         {-2147483648.0f, INT_MIN},
                                         {-3e9f, INT_MIN},
                                         {INFINITY, INT_MAX},
                                         {-INFINITY, INT_MIN},
                                         {std::nanf(""), 0}};
  for (const auto& [in, out] : cases) EXPECT_EQ(truncToIntArm(in), out) << in;
  EXPECT_EQ(truncToIntArm(2147483647.9), INT_MAX);  // the double overload
  EXPECT_EQ(truncToIntArm(-2147483648.9), INT_MIN);
  EXPECT_EQ(truncToIntArm(std::nan("")), 0);
}

}  // namespace
