#include "numeric/kmeans.h"

#include <algorithm>
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

namespace detail {
namespace {

// The block's rows: row u starts at rowStart(u), and its element v is at
// offset v (contiguous indices) or index[v] (any other list).
template <bool kContiguous>
class Block {
 public:
  Block(const std::vector<Vec<float>>& matrix, const Vec<int>& index)
      : matrix_(matrix), index_(index.data()), size_(static_cast<int>(index.size())) {}

  int size() const { return size_; }
  const float* rowStart(int u) const {
    const float* row = matrix_[index_[u]].data();
    return kContiguous ? row + index_[0] : row;
  }
  float at(const float* row, int v) const { return kContiguous ? row[v] : row[index_[v]]; }

 private:
  const std::vector<Vec<float>>& matrix_;
  const int* index_;
  int size_;
};

// computeMeans for k = 2: sums in label-list order, then one division each.
template <bool kContiguous>
void twoMeans(const Block<kContiguous>& block, const Vec<int>& groups, float* mean0,
              float* mean1) {
  const int m = block.size();
  float count[2] = {0.0f, 0.0f};
  std::fill(mean0, mean0 + m, 0.0f);
  std::fill(mean1, mean1 + m, 0.0f);
  for (std::size_t u = 0; u < groups.size(); ++u) {
    const int group = groups[u];
    count[group] += 1.0f;
    float* centre = group == 0 ? mean0 : mean1;
    const float* row = block.rowStart(static_cast<int>(u));
    for (int v = 0; v < m; ++v) centre[v] += block.at(row, v);
  }
  float* centres[2] = {mean0, mean1};
  for (int g = 0; g < 2; ++g) {
    if (count[g] == 0.0f) continue;
    for (int v = 0; v < m; ++v) centres[g][v] /= count[g];
  }
}

// Squared distances of block row u to both centres: two chains of
// additions, each in element order, as squaredDist adds them.
template <bool kContiguous>
void distances(const Block<kContiguous>& block, int u, const float* mean0, const float* mean1,
               float* dist0, float* dist1) {
  const int m = block.size();
  const float* row = block.rowStart(u);
  float sum0 = 0.0f, sum1 = 0.0f;
  for (int v = 0; v < m; ++v) {
    const float x = block.at(row, v);
    const float d0 = x - mean0[v];
    const float d1 = x - mean1[v];
    sum0 += d0 * d0;
    sum1 += d1 * d1;
  }
  *dist0 = sum0;
  *dist1 = sum1;
}

template <bool kContiguous>
void twoMeansCore(const Block<kContiguous>& block, const Vec<int>& initLabels, Vec<int>& labels,
                  std::vector<float>& means) {
  const int m = block.size();
  labels.clear();
  labels.resize(m);
  means.resize(2 * static_cast<std::size_t>(m));
  float* mean0 = means.data();
  float* mean1 = mean0 + m;
  twoMeans(block, initLabels, mean0, mean1);
  float prevCost = 0.0f;
  for (int iter = 0;; ++iter) {
    float cost = 0.0f;
    for (int u = 0; u < m; ++u) {
      float dist0, dist1;
      distances(block, u, mean0, mean1, &dist0, &dist1);
      // Ties go to centre 0, as in kmeansCore.
      labels[u] = dist1 < dist0 ? 1 : 0;
      cost += dist1 < dist0 ? dist1 : dist0;
    }
    twoMeans(block, labels, mean0, mean1);
    if (iter != 0) {
      const float relativeChange = std::fabs((prevCost - cost) / prevCost);
      if (static_cast<double>(relativeChange) < kRelativeChangeLimit) return;
      if (iter > kLastIterationBeforeStop) return;
    }
    prevCost = cost;
  }
}

}  // namespace

void twoMeansOnBlock(const std::vector<Vec<float>>& matrix, const Vec<int>& index,
                     const Vec<int>& initLabels, Vec<int>& labels, std::vector<float>& means) {
  bool contiguous = true;
  for (std::size_t v = 1; v < index.size() && contiguous; ++v) {
    contiguous = index[v] == index[0] + static_cast<int>(v);
  }
  if (contiguous) {
    twoMeansCore(Block<true>(matrix, index), initLabels, labels, means);
  } else {
    twoMeansCore(Block<false>(matrix, index), initLabels, labels, means);
  }
}

}  // namespace detail
