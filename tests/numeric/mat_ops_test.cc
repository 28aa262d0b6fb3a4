#include "numeric/mat_ops.h"

#include <gtest/gtest.h>

#include <cmath>

#include "numeric/mat.h"
#include "numeric/vec.h"

namespace {

TEST(Normalize, EachRowAloneAndZeroRowsSetToPositiveZero) {
  Mat<float> m(4, 0);
  m[0] = {3, 4};
  m[1] = {0, -0.0f, 0};  // set to 0.0, not divided (0 / 0 would give NaN)
  m[3] = {0, 5};
  normalize(m);
  EXPECT_FLOAT_EQ(m[0][0], 0.6f);
  EXPECT_FLOAT_EQ(m[0][1], 0.8f);
  for (float x : m[1]) EXPECT_TRUE(x == 0.0f && !std::signbit(x));
  EXPECT_TRUE(m[2].empty());
  EXPECT_EQ(m[3], Vec<float>({0, 1}));
}

TEST(MatOps, LengthsComeFromTheFirstVectorOrRowZero) {
  Vec<float> a = {1, 2}, b = {4, 6, 100}, none;
  EXPECT_EQ(squaredDist(a, b), 25.0f);
  EXPECT_EQ(squaredDist(none, b), 0.0f);
  Mat<float> m(2, 0);
  m[0] = {1, 2};
  m[1] = {3, 6, 99};
  EXPECT_EQ(m.colCount(), 2);
  EXPECT_EQ(mean(m), Vec<float>({2, 4}));
  Mat<float> empty;
  EXPECT_TRUE(mean(empty).empty());
}

TEST(Thresholding, KeepsValuesAtTheThresholdAndNan) {
  Mat<float> m(1, 0);
  m[0] = {0.4f, 0.5f, 0.6f, std::nanf(""), -1.0f};
  thresholding(m, 0.5f);
  EXPECT_EQ(m[0][0], 0.0f);
  EXPECT_EQ(m[0][1], 0.5f);
  EXPECT_EQ(m[0][2], 0.6f);
  EXPECT_TRUE(std::isnan(m[0][3]));
  EXPECT_EQ(m[0][4], 0.0f);
}

}  // namespace
