#include "numeric/kmeans.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "numeric/mat_ops.h"
#include "numeric/rand_perm.h"
#include "numeric/eight_rows_avx2.h"
#include "platform/fast_paths.h"

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

#define XVKFC_ALWAYS_INLINE inline __attribute__((always_inline))

// computeMeans for k = 2, one row at a time: start(), add() for every row
// in label-list order, finish(). Each centre element is its own sum, added
// in that row order, so summing run by run or interleaved with the
// assignment changes nothing.
class CentreSums {
 public:
  CentreSums(float* sum0, float* sum1, std::size_t m) : sums_{sum0, sum1}, m_(m) {}

  void start() {
    count_[0] = count_[1] = 0.0f;
    std::fill(sums_[0], sums_[0] + m_, 0.0f);
    std::fill(sums_[1], sums_[1] + m_, 0.0f);
  }
  // Inlined, so that the AVX2 rendering's instructions reach it.
  XVKFC_ALWAYS_INLINE void add(const float* row, const std::vector<Run>& runs, int group) {
    count_[group] += 1.0f;
    float* centre = sums_[group];
    for (const Run& run : runs) {
      float* out = centre + run.first;
      const float* in = row + run.start;
      for (int t = 0; t < run.length; ++t) out[t] += in[t];
    }
  }
  // The sums become the means; a centre without rows stays all zeros.
  void finish() {
    for (int g = 0; g < 2; ++g) {
      if (count_[g] == 0.0f) continue;
      for (std::size_t v = 0; v < m_; ++v) sums_[g][v] /= count_[g];
    }
  }

 private:
  float* sums_[2];
  std::size_t m_;
  float count_[2] = {0.0f, 0.0f};
};

// Squared distances of kRows block rows to both centres. Every distance is
// its own chain of additions in column order, as squaredDist adds them;
// the 2 x kRows chains only overlap in time.
template <int kRows>
XVKFC_ALWAYS_INLINE void distances(const float* const* rows, const std::vector<Run>& runs,
                                   const float* mean0, const float* mean1, float* dist0,
                                   float* dist1) {
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

using EightDistances = void (*)(const float* const*, const std::vector<Run>&, const float*,
                                const float*, float*, float*);

#ifdef XVKFC_AVX2_RENDERINGS
// distances<8> with row r in lane r: every lane does distances<8>'s
// operations for its row, column after column (subtract, square, add; no
// fused multiply-add), so the bits are the same.
__attribute__((target("avx2"))) void distances8Avx2(const float* const* rows,
                                                    const std::vector<Run>& runs,
                                                    const float* mean0, const float* mean1,
                                                    float* dist0, float* dist1) {
  __m256 sum0 = _mm256_setzero_ps(), sum1 = _mm256_setzero_ps();
  forEachColumnOfEightRows(rows, runs, [&](std::ptrdiff_t v, __m256 x) XVKFC_AVX2_LAMBDA {
    const __m256 d0 = _mm256_sub_ps(x, _mm256_broadcast_ss(mean0 + v));
    const __m256 d1 = _mm256_sub_ps(x, _mm256_broadcast_ss(mean1 + v));
    sum0 = _mm256_add_ps(sum0, _mm256_mul_ps(d0, d0));
    sum1 = _mm256_add_ps(sum1, _mm256_mul_ps(d1, d1));
  });
  _mm256_storeu_ps(dist0, sum0);
  _mm256_storeu_ps(dist1, sum1);
}
#endif

// One Lloyd pass: every row assigned to the nearer of the centres in
// `means` (ties to centre 0), while `next` receives the means of the new
// labels. Returns the cost, summed in row order.
template <EightDistances kDistancesOf8>
XVKFC_ALWAYS_INLINE float assignAndSum(const std::vector<Vec<float>>& matrix,
                                       const Vec<int>& index, const std::vector<Run>& runs,
                                       const float* means, float* next, Vec<int>& labels) {
  constexpr int kRows = 8;
  const int m = static_cast<int>(index.size());
  const float* mean0 = means;
  const float* mean1 = means + m;
  CentreSums sums(next, next + m, m);
  sums.start();
  float cost = 0.0f;
  for (int u = 0; u < m; u += kRows) {
    const float* rows[kRows];
    float dist0[kRows], dist1[kRows];
    const int count = m - u < kRows ? m - u : kRows;
    for (int r = 0; r < count; ++r) rows[r] = matrix[index[u + r]].data();
    if (count == kRows) {
      kDistancesOf8(rows, runs, mean0, mean1, dist0, dist1);
    } else {
      for (int r = 0; r < count; ++r) {
        distances<1>(rows + r, runs, mean0, mean1, dist0 + r, dist1 + r);
      }
    }
    // The cost and the centre sums take the rows in order.
    for (int r = 0; r < count; ++r) {
      const int group = dist1[r] < dist0[r] ? 1 : 0;
      labels[u + r] = group;
      cost += group == 1 ? dist1[r] : dist0[r];
      sums.add(rows[r], runs, group);
    }
  }
  sums.finish();
  return cost;
}

// twoMeansOnBlock with kDistancesOf8 for the distances of eight rows.
template <EightDistances kDistancesOf8>
XVKFC_ALWAYS_INLINE void twoMeans(const std::vector<Vec<float>>& matrix, const Vec<int>& index,
                                  const Vec<int>& initLabels, Vec<int>& labels,
                                  TwoMeansScratch& scratch) {
  const int m = static_cast<int>(index.size());
  labels.clear();
  labels.resize(m);
  findRuns(index, scratch.runs);
  const std::vector<Run>& runs = scratch.runs;
  // Two pairs of centres: the pass reads one pair (the means of the last
  // labels) while it sums the other (the means of the new labels), so a
  // pass reads the block once for the assignment and the update together.
  scratch.means.resize(4 * static_cast<std::size_t>(m));
  float* means = scratch.means.data();
  float* next = means + 2 * static_cast<std::size_t>(m);
  // The first centre update: the means of the seed labels.
  CentreSums seeds(means, means + m, m);
  seeds.start();
  for (int u = 0; u < m; ++u) seeds.add(matrix[index[u]].data(), runs, initLabels[u]);
  seeds.finish();

  float prevCost = 0.0f;
  for (int iter = 0;; ++iter) {
    const float cost = assignAndSum<kDistancesOf8>(matrix, index, runs, means, next, labels);
    std::swap(means, next);
    if (iter != 0) {
      const float relativeChange = std::fabs((prevCost - cost) / prevCost);
      if (static_cast<double>(relativeChange) < kRelativeChangeLimit) return;
      if (iter > kLastIterationBeforeStop) return;
    }
    prevCost = cost;
  }
}

void twoMeansPlain(const std::vector<Vec<float>>& matrix, const Vec<int>& index,
                   const Vec<int>& initLabels, Vec<int>& labels, TwoMeansScratch& scratch) {
  twoMeans<distances<8>>(matrix, index, initLabels, labels, scratch);
}

#ifdef XVKFC_AVX2_RENDERINGS
// The same operations; the centre sums may use AVX2 too, each element still
// its own chain of additions.
__attribute__((target("avx2"))) void twoMeansAvx2(const std::vector<Vec<float>>& matrix,
                                                  const Vec<int>& index,
                                                  const Vec<int>& initLabels, Vec<int>& labels,
                                                  TwoMeansScratch& scratch) {
  twoMeans<distances8Avx2>(matrix, index, initLabels, labels, scratch);
}
#endif

}  // namespace

void twoMeansOnBlock(const std::vector<Vec<float>>& matrix, const Vec<int>& index,
                     const Vec<int>& initLabels, Vec<int>& labels, TwoMeansScratch& scratch) {
  XVKFC_PICK(twoMeansPlain, twoMeansAvx2)(matrix, index, initLabels, labels, scratch);
}

}  // namespace detail
