// Element helpers on Vec and Mat. All sums are single precision.
#ifndef XVKFC_NUMERIC_MAT_OPS_H_
#define XVKFC_NUMERIC_MAT_OPS_H_

#include "numeric/mat.h"
#include "numeric/vec.h"
#include "platform/export.h"

// Scales `v` in place to unit Euclidean length by multiplying every element by
// 1 / norm (computed once). A vector of norm 0 (all zeros) becomes all zeros
// with no division; an empty vector stays empty.
XVKFC_EXPORT void normalize(Vec<float>& v);

// normalize(Vec) on every row, in row order; zero rows stay zero.
XVKFC_EXPORT void normalize(Mat<float>& m);

// Sum over i < a.size() of (a[i] - b[i])^2; no square root. 0 for an empty a.
// REQUIRES: b.size() >= a.size().
XVKFC_EXPORT float squaredDist(Vec<float>& a, Vec<float>& b);

// In place: every element strictly below `threshold` becomes 0; an element
// equal to the threshold, or NaN, is kept.
XVKFC_EXPORT void thresholding(Mat<float>& m, const float& threshold);

// Column means over the first row-0-length elements of every row, each sum
// multiplied by 1 / rowCount. A matrix without rows gives an empty vector.
XVKFC_EXPORT Vec<float> mean(Mat<float>& m);

#endif  // XVKFC_NUMERIC_MAT_OPS_H_
