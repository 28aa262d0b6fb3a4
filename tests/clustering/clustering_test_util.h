// Shared by the tests of splitting, merging and refinement.
#ifndef XVKFC_TESTS_CLUSTERING_CLUSTERING_TEST_UTIL_H_
#define XVKFC_TESTS_CLUSTERING_CLUSTERING_TEST_UTIL_H_

#include <tuple>
#include <vector>

#include "numeric/vec.h"

namespace testing_support {

// n faces: 1 on the diagonal, `across` elsewhere, then each {i, j, s} of
// `pairs` set both ways.
inline std::vector<Vec<float>> pairKernel(int n, float across,
                                          std::vector<std::tuple<int, int, float>> pairs = {}) {
  std::vector<Vec<float>> k(n, Vec<float>(n, across));
  for (int i = 0; i < n; ++i) k[i][i] = 1.0f;
  for (auto [i, j, s] : pairs) k[i][j] = k[j][i] = s;
  return k;
}

}  // namespace testing_support

#endif  // XVKFC_TESTS_CLUSTERING_CLUSTERING_TEST_UTIL_H_
