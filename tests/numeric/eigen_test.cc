#include "numeric/eigen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr float kEps = std::numeric_limits<float>::epsilon();
const float r = std::sqrt(0.5f);
using Floats = std::vector<float>;

// The eigenvalues followed by the eigenvector rows.
Floats decompose(Floats a, int n, float tolerance = 1e-7f) {
  Floats out(n + n * n);
  EXPECT_EQ(eigenDecomposition(a.data(), out.data() + n, out.data(), n, tolerance), 0);
  return out;
}

void expectNear(const Floats& got, const Floats& want) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], want[i], 20 * kEps) << i;
}

TEST(EigenDecomposition, SmallExamples) {
  // Diagonal: no rotation; identity rows move with their values, and the
  // selection sort's swap carries the first 1 behind the second.
  EXPECT_EQ(decompose({1, 0, 0, 0, 1, 0, 0, 0, 2}, 3),
            (Floats{2, 1, 1, 0, 0, 1, 0, 1, 0, 1, 0, 0}));
  EXPECT_EQ(decompose({-2.5f}, 1), (Floats{-2.5f, 1}));
  expectNear(decompose({2, 1, 1, 2}, 2), {3, 1, r, r, -r, r});
  // Eigenvalues 1, -5 and 0 come out by signed value, not magnitude.
  expectNear(decompose({-2, 3, 0, 3, -2, 0, 0, 0, 0}, 3), {1, 0, -5, r, r, 0, 0, 0, 1, -r, r, 0});
}

TEST(EigenDecomposition, ToleranceFloorPassCountAndNan) {
  // Eigenvalues +-sqrt(17) and 0. At tolerance 0.5 the one pass sweeps at
  // norm / 3, rotates only the 4 and stops, the threshold being norm / 9 by
  // then: the elements of about 0.707 it leaves stay off the diagonal.
  const Floats a = {0, 4, 1, 4, 0, 0, 1, 0, 0};
  expectNear(decompose(a, 3, 0.5f), {4, 0, -4, r, r, 0, 0, 0, 1, -r, r, 0});
  const Floats floor = decompose(a, 3);
  EXPECT_NEAR(floor[2], -std::sqrt(17.0f), 20 * kEps);
  for (float low : {0.0f, -1.0f, std::nanf("")}) EXPECT_EQ(decompose(a, 3, low), floor) << low;
  // A NaN element is not rotated, so the sweeps end.
  EXPECT_TRUE(std::isnan(decompose({std::nanf(""), 1, 1, 1, 0, 1, 1, 1, 0}, 3)[0]));
}

TEST(EigenDecomposition, RandomSymmetricMatrices) {
  std::mt19937 rng(301);  // raw output only: the same on every standard library
  for (int n : {3, 8, 17}) {
    Floats a(n * n);
    for (int i = 0; i < n; ++i) {
      for (int j = 0; j <= i; ++j) a[i * n + j] = a[j * n + i] = float(int(rng() % 19) - 9);
    }
    double norm = 0;
    for (float x : a) norm += double(x) * x;
    const Floats e = decompose(a, n);
    const float* v = e.data() + n;
    for (int k = 0; k < n; ++k) {
      EXPECT_GE(e[k > 0 ? k - 1 : 0], e[k]);
      for (int i = 0; i < n; ++i) {  // A v = lambda v, and orthonormal rows
        double av = 0, dot = 0;
        for (int j = 0; j < n; ++j) {
          av += double(a[i * n + j]) * v[k * n + j];
          dot += double(v[k * n + j]) * v[i * n + j];
        }
        EXPECT_NEAR(av, double(e[k]) * v[k * n + i], 8 * kEps * std::sqrt(norm * n));
        EXPECT_NEAR(dot, i == k ? 1.0 : 0.0, 4 * kEps * n);
      }
    }
  }
}

}  // namespace
