#include "clustering/kernel_block.h"

#include "numeric/transpose8.h"

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

#if defined(__x86_64__) && defined(__GNUC__)
#define XVKFC_BLOCK_AVX2 1
// The same with row r in lane r of an AVX2 register: blocks of 8 x 8
// elements are transposed, then each lane adds its row's columns in order.
// The same additions, so the same bits.
__attribute__((target("avx2"))) void eightRowSumsAvx2(const float* const* rows,
                                                      const std::vector<Run>& runs, float* sums) {
  __m256 s = _mm256_setzero_ps();
  for (const Run& run : runs) {
    int t = 0;
    for (; t + 8 <= run.length; t += 8) {
      const int j = run.start + t;
      __m256 columns[8];
      transpose8x8(rows, j, columns);
      for (const __m256& column : columns) s = _mm256_add_ps(s, column);
    }
    for (; t < run.length; ++t) {
      const int j = run.start + t;
      s = _mm256_add_ps(s, _mm256_setr_ps(rows[0][j], rows[1][j], rows[2][j], rows[3][j],
                                          rows[4][j], rows[5][j], rows[6][j], rows[7][j]));
    }
  }
  _mm256_storeu_ps(sums, s);
}
#endif

using EightRowSums = void (*)(const float* const*, const std::vector<Run>&, float*);

EightRowSums eightRowSumsForThisCpu() {
#ifdef XVKFC_BLOCK_AVX2
  __builtin_cpu_init();  // idempotent; needed before constructors have run
  if (__builtin_cpu_supports("avx2")) return eightRowSumsAvx2;
#endif
  return eightRowSums;
}

}  // namespace

void blockRowSums(const Kernel& kernel, const Vec<int>& members, std::vector<Run>& runs,
                  std::vector<float>& sums) {
  const EightRowSums eightSums = eightRowSumsForThisCpu();
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
