// The loop the AVX2 renderings of the per-row block sums share: eight rows
// in the eight lanes of AVX2 registers, handed out column by column, so that
// each lane does its row's operations in column order, as the plain
// rendering does for one row.
#ifndef XVKFC_NUMERIC_EIGHT_ROWS_AVX2_H_
#define XVKFC_NUMERIC_EIGHT_ROWS_AVX2_H_

#include <cstddef>
#include <vector>

#include "numeric/index_runs.h"
#include "platform/fast_paths.h"

#ifdef XVKFC_AVX2_RENDERINGS

namespace detail {

// columns[k], lane r = rows[r][j + k], for k and r in 0..7.
XVKFC_AVX2_INLINE void transpose8x8(const float* const* rows, int j, __m256* columns) {
  const __m256 r0 = _mm256_loadu_ps(rows[0] + j), r1 = _mm256_loadu_ps(rows[1] + j);
  const __m256 r2 = _mm256_loadu_ps(rows[2] + j), r3 = _mm256_loadu_ps(rows[3] + j);
  const __m256 r4 = _mm256_loadu_ps(rows[4] + j), r5 = _mm256_loadu_ps(rows[5] + j);
  const __m256 r6 = _mm256_loadu_ps(rows[6] + j), r7 = _mm256_loadu_ps(rows[7] + j);
  const __m256 t0 = _mm256_unpacklo_ps(r0, r1), t1 = _mm256_unpackhi_ps(r0, r1);
  const __m256 t2 = _mm256_unpacklo_ps(r2, r3), t3 = _mm256_unpackhi_ps(r2, r3);
  const __m256 t4 = _mm256_unpacklo_ps(r4, r5), t5 = _mm256_unpackhi_ps(r4, r5);
  const __m256 t6 = _mm256_unpacklo_ps(r6, r7), t7 = _mm256_unpackhi_ps(r6, r7);
  // Columns k and k + 4 of rows 0-3 (lo) and rows 4-7 (hi).
  const __m256 lo0 = _mm256_shuffle_ps(t0, t2, _MM_SHUFFLE(1, 0, 1, 0));
  const __m256 lo1 = _mm256_shuffle_ps(t0, t2, _MM_SHUFFLE(3, 2, 3, 2));
  const __m256 lo2 = _mm256_shuffle_ps(t1, t3, _MM_SHUFFLE(1, 0, 1, 0));
  const __m256 lo3 = _mm256_shuffle_ps(t1, t3, _MM_SHUFFLE(3, 2, 3, 2));
  const __m256 hi0 = _mm256_shuffle_ps(t4, t6, _MM_SHUFFLE(1, 0, 1, 0));
  const __m256 hi1 = _mm256_shuffle_ps(t4, t6, _MM_SHUFFLE(3, 2, 3, 2));
  const __m256 hi2 = _mm256_shuffle_ps(t5, t7, _MM_SHUFFLE(1, 0, 1, 0));
  const __m256 hi3 = _mm256_shuffle_ps(t5, t7, _MM_SHUFFLE(3, 2, 3, 2));
  columns[0] = _mm256_permute2f128_ps(lo0, hi0, 0x20);
  columns[1] = _mm256_permute2f128_ps(lo1, hi1, 0x20);
  columns[2] = _mm256_permute2f128_ps(lo2, hi2, 0x20);
  columns[3] = _mm256_permute2f128_ps(lo3, hi3, 0x20);
  columns[4] = _mm256_permute2f128_ps(lo0, hi0, 0x31);
  columns[5] = _mm256_permute2f128_ps(lo1, hi1, 0x31);
  columns[6] = _mm256_permute2f128_ps(lo2, hi2, 0x31);
  columns[7] = _mm256_permute2f128_ps(lo3, hi3, 0x31);
}

// visit(v, column) for every entry v of the index list `runs` describes, in
// order, where lane r of `column` is rows[r][index[v]]. Whole 8 x 8 blocks
// of a run are transposed; the rest of a run is gathered column by column.
// `visit` must be XVKFC_AVX2_INLINE too.
template <typename Visit>
XVKFC_AVX2_INLINE void forEachColumnOfEightRows(const float* const* rows,
                                                const std::vector<Run>& runs, Visit&& visit) {
  for (const Run& run : runs) {
    // Entry positions as std::ptrdiff_t: no sign extension per column.
    const std::ptrdiff_t first = run.first;
    int t = 0;
    for (; t + 8 <= run.length; t += 8) {
      __m256 columns[8];
      transpose8x8(rows, run.start + t, columns);
      for (int k = 0; k < 8; ++k) visit(first + t + k, columns[k]);
    }
    for (; t < run.length; ++t) {
      const int j = run.start + t;
      visit(first + t, _mm256_setr_ps(rows[0][j], rows[1][j], rows[2][j], rows[3][j], rows[4][j],
                                      rows[5][j], rows[6][j], rows[7][j]));
    }
  }
}

}  // namespace detail

#endif  // XVKFC_AVX2_RENDERINGS

#endif  // XVKFC_NUMERIC_EIGHT_ROWS_AVX2_H_
