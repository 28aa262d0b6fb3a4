#include "numeric/kmeans.h"

#include <cmath>
#include <cstddef>

#include "numeric/mat_ops.h"
#include "numeric/rand_perm.h"

namespace {

// The iteration stops once the cost changes by less than this fraction...
constexpr double kRelativeChangeLimit = 1e-10;
// ...or after the pass with iteration index 101, i.e. at most 102 passes.
constexpr int kLastIterationBeforeStop = 100;

}  // namespace

void kmeans(Mat<float>& data, int k, Vec<int>& labels) {
  const int n = data.rowCount();
  if (n < 1 || k < 1 || k > n) return;
  const int d = data.colCount();
  labels.clear();
  labels.resize(n);
  Mat<float> means(k, d);
  const Vec<int> perm = randPerm(n);
  for (int m = 0; m < k; ++m) means[m] = data[perm[m]];
  kmeansCore(data, means, labels);
}

void kmeans(Mat<float>& data, int k, Vec<int>& initLabels, Vec<int>& labels) {
  const int n = data.rowCount();
  if (n < 1 || k < 1) return;
  const int d = data.colCount();
  // Cleared before initLabels is read: passing one list as both seeds every
  // centre from label 0.
  labels.clear();
  labels.resize(n);
  Mat<float> means(k, d);
  computeMeans(data, means, initLabels);
  kmeansCore(data, means, labels);
}

void kmeansCore(Mat<float>& data, Mat<float>& means, Vec<int>& labels) {
  const int n = data.rowCount();
  const int k = means.rowCount();
  if (k < 1) return;
  float prevCost = 0.0f;
  for (int iter = 0;; ++iter) {
    float cost = 0.0f;
    for (int i = 0; i < n; ++i) {
      int best = 0;
      float bestDist = squaredDist(data[i], means[0]);
      for (int m = 1; m < k; ++m) {
        const float dist = squaredDist(data[i], means[m]);
        if (dist < bestDist) {
          best = m;
          bestDist = dist;
        }
      }
      labels[i] = best;
      cost += bestDist;
    }
    computeMeans(data, means, labels);
    if (iter != 0) {
      // A previous cost of 0 makes this NaN; the test then fails and the
      // loop runs on to the pass limit.
      const float relativeChange = std::fabs((prevCost - cost) / prevCost);
      if (static_cast<double>(relativeChange) < kRelativeChangeLimit) return;
      if (iter > kLastIterationBeforeStop) return;
    }
    prevCost = cost;
  }
}

void computeMeans(Mat<float>& data, Mat<float>& means, Vec<int>& labels) {
  const int k = means.rowCount();
  Vec<float> count(k);
  for (Vec<float>& row : means.rows) {
    for (float& x : row) x = 0.0f;
  }
  // Over the label list, not the data rows.
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const int m = labels[i];
    count[m] += 1.0f;
    Vec<float>& centre = means[m];
    for (std::size_t j = 0; j < centre.size(); ++j) centre[j] += data[i][j];
  }
  // An empty cluster keeps its zero centre; it can win points again.
  for (int m = 0; m < k; ++m) {
    if (count[m] == 0.0f) continue;
    for (float& x : means[m]) x /= count[m];
  }
}
