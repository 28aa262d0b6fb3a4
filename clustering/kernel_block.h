// Reading a cluster's block of the similarity kernel in place: no gathered
// copies of rows or index lists.
#ifndef XVKFC_CLUSTERING_KERNEL_BLOCK_H_
#define XVKFC_CLUSTERING_KERNEL_BLOCK_H_

#include <cstddef>
#include <vector>

#include "numeric/kmeans.h"
#include "numeric/vec.h"

namespace detail {

using Kernel = std::vector<Vec<float>>;

// For every face rows[u], in order, calls visit(u, sum, max) with the sum of
// its kernel entries over `cols` (added in list order, starting at 0.0) and
// their maximum (starting at 0.0, replaced only by a strictly greater value,
// so NaN never wins). Four rows go through the columns together: each sum is
// still its own chain of additions in list order, so every figure is bit for
// bit that of a plain loop over one row, while the four chains overlap.
// REQUIRES: every face and column index < kernel.size().
template <typename Visit>
void rowSumsAndMaxima(const Kernel& kernel, const Vec<int>& rows, const Vec<int>& cols,
                      Visit&& visit) {
  const int* col = cols.data();
  const std::size_t colCount = cols.size();
  std::size_t u = 0;
  for (; u + 4 <= rows.size(); u += 4) {
    const float* r0 = kernel[rows[u]].data();
    const float* r1 = kernel[rows[u + 1]].data();
    const float* r2 = kernel[rows[u + 2]].data();
    const float* r3 = kernel[rows[u + 3]].data();
    float s0 = 0.0f, s1 = 0.0f, s2 = 0.0f, s3 = 0.0f;
    float m0 = 0.0f, m1 = 0.0f, m2 = 0.0f, m3 = 0.0f;
    for (std::size_t v = 0; v < colCount; ++v) {
      const int j = col[v];
      const float x0 = r0[j], x1 = r1[j], x2 = r2[j], x3 = r3[j];
      s0 += x0;
      s1 += x1;
      s2 += x2;
      s3 += x3;
      m0 = x0 > m0 ? x0 : m0;
      m1 = x1 > m1 ? x1 : m1;
      m2 = x2 > m2 ? x2 : m2;
      m3 = x3 > m3 ? x3 : m3;
    }
    visit(u, s0, m0);
    visit(u + 1, s1, m1);
    visit(u + 2, s2, m2);
    visit(u + 3, s3, m3);
  }
  for (; u < rows.size(); ++u) {
    const float* r = kernel[rows[u]].data();
    float s = 0.0f, m = 0.0f;
    for (std::size_t v = 0; v < colCount; ++v) {
      const float x = r[col[v]];
      s += x;
      m = x > m ? x : m;
    }
    visit(u, s, m);
  }
}

// sums[u] = the sum of kernel row members[u] over `members`, added in list
// order from 0.0: the sums rowSumsAndMaxima gives, for a whole block at a
// time, read by runs of consecutive members with eight rows together (eight
// lanes of a vector register where the CPU has AVX2). `runs` is scratch.
// REQUIRES: every member < kernel.size().
void blockRowSums(const Kernel& kernel, const Vec<int>& members, std::vector<Run>& runs,
                  std::vector<float>& sums);

// The minimum of kernel row `face` over `cols`: starts at the first entry and
// is replaced only by a strictly smaller one.
// REQUIRES: cols not empty.
inline float rowMinimum(const Kernel& kernel, int face, const Vec<int>& cols) {
  const float* row = kernel[face].data();
  float minimum = row[cols[0]];
  for (int j : cols) minimum = row[j] < minimum ? row[j] : minimum;
  return minimum;
}

}  // namespace detail

#endif  // XVKFC_CLUSTERING_KERNEL_BLOCK_H_
