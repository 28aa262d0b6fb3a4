#include "clustering/kernel_block.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

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
      const __m256 r0 = _mm256_loadu_ps(rows[0] + j), r1 = _mm256_loadu_ps(rows[1] + j);
      const __m256 r2 = _mm256_loadu_ps(rows[2] + j), r3 = _mm256_loadu_ps(rows[3] + j);
      const __m256 r4 = _mm256_loadu_ps(rows[4] + j), r5 = _mm256_loadu_ps(rows[5] + j);
      const __m256 r6 = _mm256_loadu_ps(rows[6] + j), r7 = _mm256_loadu_ps(rows[7] + j);
      const __m256 t0 = _mm256_unpacklo_ps(r0, r1), t1 = _mm256_unpackhi_ps(r0, r1);
      const __m256 t2 = _mm256_unpacklo_ps(r2, r3), t3 = _mm256_unpackhi_ps(r2, r3);
      const __m256 t4 = _mm256_unpacklo_ps(r4, r5), t5 = _mm256_unpackhi_ps(r4, r5);
      const __m256 t6 = _mm256_unpacklo_ps(r6, r7), t7 = _mm256_unpackhi_ps(r6, r7);
      const __m256 lo0 = _mm256_shuffle_ps(t0, t2, _MM_SHUFFLE(1, 0, 1, 0));
      const __m256 lo1 = _mm256_shuffle_ps(t0, t2, _MM_SHUFFLE(3, 2, 3, 2));
      const __m256 lo2 = _mm256_shuffle_ps(t1, t3, _MM_SHUFFLE(1, 0, 1, 0));
      const __m256 lo3 = _mm256_shuffle_ps(t1, t3, _MM_SHUFFLE(3, 2, 3, 2));
      const __m256 hi0 = _mm256_shuffle_ps(t4, t6, _MM_SHUFFLE(1, 0, 1, 0));
      const __m256 hi1 = _mm256_shuffle_ps(t4, t6, _MM_SHUFFLE(3, 2, 3, 2));
      const __m256 hi2 = _mm256_shuffle_ps(t5, t7, _MM_SHUFFLE(1, 0, 1, 0));
      const __m256 hi3 = _mm256_shuffle_ps(t5, t7, _MM_SHUFFLE(3, 2, 3, 2));
      s = _mm256_add_ps(s, _mm256_permute2f128_ps(lo0, hi0, 0x20));
      s = _mm256_add_ps(s, _mm256_permute2f128_ps(lo1, hi1, 0x20));
      s = _mm256_add_ps(s, _mm256_permute2f128_ps(lo2, hi2, 0x20));
      s = _mm256_add_ps(s, _mm256_permute2f128_ps(lo3, hi3, 0x20));
      s = _mm256_add_ps(s, _mm256_permute2f128_ps(lo0, hi0, 0x31));
      s = _mm256_add_ps(s, _mm256_permute2f128_ps(lo1, hi1, 0x31));
      s = _mm256_add_ps(s, _mm256_permute2f128_ps(lo2, hi2, 0x31));
      s = _mm256_add_ps(s, _mm256_permute2f128_ps(lo3, hi3, 0x31));
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
