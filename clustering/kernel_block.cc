#include "clustering/kernel_block.h"

#include <cstddef>

#include "numeric/eight_rows_avx2.h"
#include "platform/fast_paths.h"

namespace detail {
namespace {

// Row sums of eight rows over the runs: eight chains, each in column order.
void eightRowSums(const float* const* rows, const std::vector<Run>& runs, float* sums) {
  float s[8] = {};
  for (const Run& run : runs) {
    for (int t = 0; t < run.length; ++t) {
      for (int r = 0; r < 8; ++r) s[r] += rows[r][run.start + t];
    }
  }
  for (int r = 0; r < 8; ++r) sums[r] = s[r];
}

#ifdef XVKFC_AVX2_RENDERINGS
// The same with row r in lane r: the same additions, so the same bits.
__attribute__((target("avx2"))) void eightRowSumsAvx2(const float* const* rows,
                                                      const std::vector<Run>& runs, float* sums) {
  __m256 s = _mm256_setzero_ps();
  forEachColumnOfEightRows(rows, runs, [&](std::ptrdiff_t, __m256 column) XVKFC_AVX2_LAMBDA {
    s = _mm256_add_ps(s, column);
  });
  _mm256_storeu_ps(sums, s);
}
#endif

}  // namespace

void blockRowSums(const Kernel& kernel, const Vec<int>& members, std::vector<Run>& runs,
                  std::vector<float>& sums) {
  const auto eightSums = XVKFC_PICK(eightRowSums, eightRowSumsAvx2);
  findRuns(members, runs);
  const std::size_t m = members.size();
  sums.resize(m);
  std::size_t u = 0;
  for (; u + 8 <= m; u += 8) {
    const float* rows[8];
    for (int r = 0; r < 8; ++r) rows[r] = kernel[members[u + r]].data();
    eightSums(rows, runs, &sums[u]);
  }
  for (; u < m; ++u) {
    const float* row = kernel[members[u]].data();
    float s = 0.0f;
    for (const Run& run : runs) {
      for (int t = 0; t < run.length; ++t) s += row[run.start + t];
    }
    sums[u] = s;
  }
}

}  // namespace detail
