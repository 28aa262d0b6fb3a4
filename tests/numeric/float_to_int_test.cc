#include "numeric/float_to_int.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

namespace {

using detail::truncToIntArm;

TEST(TruncToIntArm, TruncatesTowardZero) {
  EXPECT_EQ(truncToIntArm(2.7f), 2);
  EXPECT_EQ(truncToIntArm(-2.7f), -2);
  EXPECT_EQ(truncToIntArm(-0.5f), 0);
  EXPECT_EQ(truncToIntArm(1022.4885f), 1022);
}

TEST(TruncToIntArm, SaturatesAtTheIntRangeLikeArm) {
  // 2147483520 is the largest float below 2^31: still representable.
  EXPECT_EQ(truncToIntArm(2147483520.0f), 2147483520);
  EXPECT_EQ(truncToIntArm(2147483648.0f), INT_MAX);
  EXPECT_EQ(truncToIntArm(3e9f), INT_MAX);
  EXPECT_EQ(truncToIntArm(-2147483648.0f), INT_MIN);
  EXPECT_EQ(truncToIntArm(-3e9f), INT_MIN);
  EXPECT_EQ(truncToIntArm(std::numeric_limits<float>::infinity()), INT_MAX);
  EXPECT_EQ(truncToIntArm(-std::numeric_limits<float>::infinity()), INT_MIN);
  EXPECT_EQ(truncToIntArm(2147483647.9), INT_MAX);
  EXPECT_EQ(truncToIntArm(-2147483648.9), INT_MIN);
}

TEST(TruncToIntArm, NanGivesZero) {
  EXPECT_EQ(truncToIntArm(std::nanf("")), 0);
  EXPECT_EQ(truncToIntArm(std::nan("")), 0);
}

}  // namespace
