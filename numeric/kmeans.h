// Lloyd's k-means on the rows of a Mat<float>.
#ifndef XVKFC_NUMERIC_KMEANS_H_
#define XVKFC_NUMERIC_KMEANS_H_

#include "numeric/mat.h"
#include "numeric/vec.h"
#include "platform/export.h"

// k-means seeded from k rows chosen by randPerm (clock-seeded). `labels` is
// cleared and receives one label in [0, k) per row.
// REQUIRES: data has at least one row; 1 <= k <= rows.
XVKFC_EXPORT void kmeans(Mat<float>& data, int k, Vec<int>& labels);

// k-means seeded with the means of the partition `initLabels` (read only).
// `labels` is cleared and zero-filled before `initLabels` is read, so the two
// must be distinct vectors.
// REQUIRES: data has at least one row; k >= 1; initLabels in [0, k).
XVKFC_EXPORT void kmeans(Mat<float>& data, int k, Vec<int>& initLabels, Vec<int>& labels);

// Lloyd iterations from the centres in `means`: assignment (ties to the
// lowest centre index), then centre update; at most 102 passes.
// REQUIRES: labels.size() == data rows; means has k >= 1 rows.
XVKFC_EXPORT void kmeansCore(Mat<float>& data, Mat<float>& means, Vec<int>& labels);

// Sets every row of `means` to the mean of the data rows carrying its label;
// a centre with no rows stays all zeros.
// REQUIRES: every label in [0, means rows).
XVKFC_EXPORT void computeMeans(Mat<float>& data, Mat<float>& means, Vec<int>& labels);

#endif  // XVKFC_NUMERIC_KMEANS_H_
