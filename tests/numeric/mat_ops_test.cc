#include "numeric/mat_ops.h"

#include <gtest/gtest.h>

#include <cmath>

#include "numeric/mat.h"
#include "numeric/vec.h"

namespace {

TEST(MatConstruction, SizesFollowTheArguments) {
  Mat<float> zeros(2, 3);
  ASSERT_EQ(zeros.rowCount(), 2);
  EXPECT_EQ(zeros.colCount(), 3);
  for (const Vec<float>& row : zeros.rows) EXPECT_EQ(row, Vec<float>({0, 0, 0}));

  Mat<float> emptyRows(3, 0);
  ASSERT_EQ(emptyRows.rowCount(), 3);
  for (const Vec<float>& row : emptyRows.rows) EXPECT_TRUE(row.empty());

  EXPECT_EQ(Mat<float>(0, 5).rowCount(), 0);
}

TEST(MatConstruction, ColumnCountIsTheLengthOfRowZero) {
  Mat<int> m(2, 2);
  m[1].push_back(7);
  EXPECT_EQ(m.colCount(), 2);
  m[0].push_back(9);
  EXPECT_EQ(m.colCount(), 3);
}

TEST(SubVec, GathersInIndexOrderWithRepeats) {
  Vec<float> v = {10, 20, 30};
  EXPECT_EQ(v.subVec({2, 0, 2}), Vec<float>({30, 10, 30}));
  EXPECT_TRUE(v.subVec({}).empty());
}

TEST(Normalize, ScalesToUnitLength) {
  Vec<float> v = {3, 4};
  normalize(v);
  EXPECT_FLOAT_EQ(v[0], 0.6f);
  EXPECT_FLOAT_EQ(v[1], 0.8f);
}

TEST(Normalize, ZeroAndEmptyVectorsStayAsTheyAre) {
  Vec<float> zero = {0, -0.0f, 0};
  normalize(zero);
  for (float x : zero) {
    EXPECT_EQ(x, 0.0f);
    EXPECT_FALSE(std::signbit(x));  // set to 0.0, not divided
  }
  Vec<float> empty;
  normalize(empty);
  EXPECT_TRUE(empty.empty());
}

TEST(Normalize, MatrixFormNormalisesEachRowAlone) {
  Mat<float> m(3, 2);
  m[0] = {3, 4};
  m[2] = {0, 5};
  normalize(m);
  EXPECT_FLOAT_EQ(m[0][0], 0.6f);
  EXPECT_FLOAT_EQ(m[0][1], 0.8f);
  EXPECT_EQ(m[1], Vec<float>({0, 0}));
  EXPECT_EQ(m[2], Vec<float>({0, 1}));
}

TEST(SquaredDist, SumsSquaredDifferencesOverTheFirstVector) {
  Vec<float> a = {1, 2}, b = {4, 6, 100};
  EXPECT_EQ(squaredDist(a, b), 25.0f);
  Vec<float> none, other = {1};
  EXPECT_EQ(squaredDist(none, other), 0.0f);
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

TEST(Mean, AveragesColumnsOverRowZerosLength) {
  Mat<float> single(1, 0);
  single[0] = {1.5f, -2, 8};
  EXPECT_EQ(mean(single), Vec<float>({1.5f, -2, 8}));

  Mat<float> m(2, 0);
  m[0] = {1, 2};
  m[1] = {3, 6, 99};  // read only up to row 0's length
  EXPECT_EQ(mean(m), Vec<float>({2, 4}));

  Mat<float> none;
  EXPECT_TRUE(mean(none).empty());
}

}  // namespace
