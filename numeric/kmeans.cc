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

void findRuns(const Vec<int>& index, std::vector<Run>& runs) {
  runs.clear();
  for (std::size_t v = 0; v < index.size(); ++v) {
    if (!runs.empty() && index[v] == runs.back().start + runs.back().length) {
      ++runs.back().length;
    } else {
      runs.push_back({static_cast<int>(v), index[v], 1});
    }
  }
}

// computeMeans for k = 2: sums in label-list order, then one division each.
// Each centre element is its own sum, so summing run by run changes nothing.
void twoMeans(const std::vector<Vec<float>>& matrix, const Vec<int>& index,
              const std::vector<Run>& runs, const Vec<int>& groups, float* mean0, float* mean1) {
  const std::size_t m = index.size();
  float count[2] = {0.0f, 0.0f};
  std::fill(mean0, mean0 + m, 0.0f);
  std::fill(mean1, mean1 + m, 0.0f);
  for (std::size_t u = 0; u < groups.size(); ++u) {
    const int group = groups[u];
    count[group] += 1.0f;
    float* centre = group == 0 ? mean0 : mean1;
    const float* row = matrix[index[u]].data();
    for (const Run& run : runs) {
      float* out = centre + run.first;
      const float* in = row + run.start;
      for (int t = 0; t < run.length; ++t) out[t] += in[t];
    }
  }
  float* centres[2] = {mean0, mean1};
  for (int g = 0; g < 2; ++g) {
    if (count[g] == 0.0f) continue;
    for (std::size_t v = 0; v < m; ++v) centres[g][v] /= count[g];
  }
}

// Squared distances of kRows block rows to both centres. Every distance is
// its own chain of additions in column order, as squaredDist adds them;
// the 2 x kRows chains only overlap in time.
template <int kRows>
void distances(const float* const* rows, const std::vector<Run>& runs, const float* mean0,
               const float* mean1, float* dist0, float* dist1) {
  float sum0[kRows] = {}, sum1[kRows] = {};
  for (const Run& run : runs) {
    const float* c0 = mean0 + run.first;
    const float* c1 = mean1 + run.first;
    for (int t = 0; t < run.length; ++t) {
      for (int r = 0; r < kRows; ++r) {
        const float x = rows[r][run.start + t];
        const float d0 = x - c0[t];
        const float d1 = x - c1[t];
        sum0[r] += d0 * d0;
        sum1[r] += d1 * d1;
      }
    }
  }
  for (int r = 0; r < kRows; ++r) {
    dist0[r] = sum0[r];
    dist1[r] = sum1[r];
  }
}

}  // namespace

void twoMeansOnBlock(const std::vector<Vec<float>>& matrix, const Vec<int>& index,
                     const Vec<int>& initLabels, Vec<int>& labels, TwoMeansScratch& scratch) {
  const int m = static_cast<int>(index.size());
  labels.clear();
  labels.resize(m);
  findRuns(index, scratch.runs);
  scratch.means.resize(2 * static_cast<std::size_t>(m));
  const std::vector<Run>& runs = scratch.runs;
  float* mean0 = scratch.means.data();
  float* mean1 = mean0 + m;
  twoMeans(matrix, index, runs, initLabels, mean0, mean1);
  constexpr int kRows = 4;
  float prevCost = 0.0f;
  for (int iter = 0;; ++iter) {
    float cost = 0.0f;
    for (int u = 0; u < m; u += kRows) {
      const float* rows[kRows];
      float dist0[kRows], dist1[kRows];
      const int count = m - u < kRows ? m - u : kRows;
      for (int r = 0; r < count; ++r) rows[r] = matrix[index[u + r]].data();
      if (count == kRows) {
        distances<kRows>(rows, runs, mean0, mean1, dist0, dist1);
      } else {
        for (int r = 0; r < count; ++r)
          distances<1>(rows + r, runs, mean0, mean1, dist0 + r, dist1 + r);
      }
      // Ties go to centre 0, as in kmeansCore; the cost adds in row order.
      for (int r = 0; r < count; ++r) {
        labels[u + r] = dist1[r] < dist0[r] ? 1 : 0;
        cost += dist1[r] < dist0[r] ? dist1[r] : dist0[r];
      }
    }
    twoMeans(matrix, index, runs, labels, mean0, mean1);
    if (iter != 0) {
      const float relativeChange = std::fabs((prevCost - cost) / prevCost);
      if (static_cast<double>(relativeChange) < kRelativeChangeLimit) return;
      if (iter > kLastIterationBeforeStop) return;
    }
    prevCost = cost;
  }
}

}  // namespace detail
