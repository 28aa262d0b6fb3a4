#include "numeric/eigen.h"

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/alloc_guard.h"

namespace {

// Smaller tolerances, and NaN, are raised to this: the outputs are floats
// (about 1.2e-7 apart near 1), so a finer final threshold would buy nothing.
constexpr double kToleranceFloor = 1e-7;

// Square matrix of doubles in one row-major block.
class SquareMatrix {
 public:
  void resize(int n) {
    n_ = n;
    values_.assign(static_cast<std::size_t>(n) * static_cast<std::size_t>(n), 0.0);
  }
  double& at(int i, int j) { return values_[static_cast<std::size_t>(i) * n_ + j]; }

 private:
  int n_ = 0;
  std::vector<double> values_;
};

// Annihilates a(p, q), p < q, by one plane rotation applied to `a` (upper
// triangle only) and to the rows p and q of `v`.
void rotate(SquareMatrix& a, SquareMatrix& v, int n, int p, int q) {
  const double apq = a.at(p, q);
  const double app = a.at(p, p);
  const double aqq = a.at(q, q);
  const double y = (app - aqq) * 0.5;
  double x = -apq / std::sqrt(apq * apq + y * y);
  if (y < 0.0) x = -x;
  const double sn = x / std::sqrt(2.0 * (1.0 + std::sqrt(1.0 - x * x)));
  const double cs = std::sqrt(1.0 - sn * sn);

  // Column p and column q above row p.
  for (int i = 0; i < p; ++i) {
    const double aip = a.at(i, p);
    const double aiq = a.at(i, q);
    a.at(i, p) = aip * cs - aiq * sn;
    a.at(i, q) = aiq * cs + aip * sn;
  }
  // Row p and column q between p and q.
  for (int i = p; i < q; ++i) {
    const double aip = a.at(p, i);
    const double aiq = a.at(i, q);
    a.at(p, i) = aip * cs - aiq * sn;
    a.at(i, q) = aiq * cs + aip * sn;
  }
  // Rows p and q from column q on.
  for (int i = q; i < n; ++i) {
    const double aip = a.at(p, i);
    const double aiq = a.at(q, i);
    a.at(p, i) = aip * cs - aiq * sn;
    a.at(q, i) = aiq * cs + aip * sn;
  }
  for (int i = 0; i < n; ++i) {
    const double vpi = v.at(p, i);
    const double vqi = v.at(q, i);
    v.at(p, i) = vpi * cs - vqi * sn;
    v.at(q, i) = vqi * cs + vpi * sn;
  }

  const double cs2 = cs * cs;
  const double sn2 = sn * sn;
  const double cross = 2.0 * apq * cs * sn;
  a.at(p, p) = app * cs2 + aqq * sn2 - cross;
  a.at(q, q) = app * sn2 + aqq * cs2 + cross;
  a.at(p, q) = 0.0;
  a.at(q, p) = 0.0;
}

// One cyclic sweep over the upper triangle; returns whether it rotated.
bool sweep(SquareMatrix& a, SquareMatrix& v, int n, double threshold) {
  bool rotated = false;
  for (int p = 0; p < n - 1; ++p) {
    for (int q = p + 1; q < n; ++q) {
      // Written so that NaN is skipped too: rotating it would only spread it,
      // and the sweeps would never end.
      if (!(std::fabs(a.at(p, q)) >= threshold)) continue;
      rotate(a, v, n, p, q);
      rotated = true;
    }
  }
  return rotated;
}

}  // namespace

int eigenDecomposition(float* matrix, float* eigenvectors, float* eigenvalues, int n,
                       float tolerance) {
  if (n < 1) return 0;

  SquareMatrix a;
  SquareMatrix v;
  std::vector<double> d;
  if (!detail::runOrLogAllocFailure("malloc fail!!!(in eigenDecomposition", [&] {
        a.resize(n);
        v.resize(n);
        d.resize(n);
      })) {
    return 0;
  }

  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) a.at(i, j) = matrix[i * n + j];
  }
  // Written as a test that NaN fails, so a NaN tolerance takes the floor.
  const double eps = tolerance >= kToleranceFloor ? tolerance : kToleranceFloor;

  double off = 0.0;
  for (int i = 0; i < n; ++i) {
    v.at(i, i) = 1.0;
    for (int j = 0; j < i; ++j) off += a.at(i, j) * a.at(i, j);
  }
  const double anorm = std::sqrt(2.0 * off);
  const double finalThreshold = anorm * eps / n;
  const double rn = 1.0 / n;
  double threshold = anorm;
  while (finalThreshold < threshold) {
    // Divided by n before and again after the sweeps: this fixes how many
    // thresholds a decomposition visits.
    threshold *= rn;
    while (sweep(a, v, n, threshold)) {
    }
    threshold *= rn;
  }

  for (int i = 0; i < n; ++i) d[i] = a.at(i, i);

  // Selection sort, descending by signed value; ties keep the earlier index.
  for (int i = 0; i < n; ++i) {
    int m = i;
    double best = d[i];
    for (int j = i + 1; j < n; ++j) {
      if (d[j] > best) {
        m = j;
        best = d[j];
      }
    }
    if (m == i) continue;
    std::swap(d[i], d[m]);
    for (int j = 0; j < n; ++j) std::swap(v.at(i, j), v.at(m, j));
  }

  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) eigenvectors[i * n + j] = static_cast<float>(v.at(i, j));
    eigenvalues[i] = static_cast<float>(d[i]);
  }
  return 0;
}
