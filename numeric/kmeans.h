// Lloyd's k-means on the rows of a Mat<float>.
#ifndef XVKFC_NUMERIC_KMEANS_H_
#define XVKFC_NUMERIC_KMEANS_H_

#include <vector>

#include "numeric/index_runs.h"
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

namespace detail {

// Scratch space of twoMeansOnBlock, kept by the caller so that repeated
// calls allocate nothing once it has grown.
struct TwoMeansScratch {
  std::vector<float> means;  // the two centres, m floats each
  std::vector<Run> runs;     // the block's column runs
};

// kmeans(block, 2, initLabels, labels) on the m x m block of the square
// `matrix` whose entry (u, v) is matrix[index[u]][index[v]], m =
// index.size(), read in place: the block is never copied, and runs of
// consecutive indices are read as contiguous row ranges. The result is bit
// for bit that of the plain routine on the gathered block: every distance
// and every centre element is summed in the same order.
// REQUIRES: m >= 1; every index < matrix.size() and < each row's length;
// initLabels has m entries, each 0 or 1; initLabels and labels distinct.
void twoMeansOnBlock(const std::vector<Vec<float>>& matrix, const Vec<int>& index,
                     const Vec<int>& initLabels, Vec<int>& labels, TwoMeansScratch& scratch);

}  // namespace detail

#endif  // XVKFC_NUMERIC_KMEANS_H_
