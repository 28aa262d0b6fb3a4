// Speed of the numeric routines against the matrix size.
#include <benchmark/benchmark.h>

#include <vector>

#include "numeric/eigen.h"
#include "numeric/kmeans.h"
#include "synthetic_gallery.h"

namespace {

// A symmetric similarity-like matrix with a unit diagonal.
std::vector<float> symmetricMatrix(int n) {
  bench::Random random(301);
  std::vector<float> m(size_t(n) * n);
  for (int i = 0; i < n; ++i) {
    m[size_t(i) * n + i] = 1.0f;
    for (int j = i + 1; j < n; ++j) {
      const float v = 0.5f + 0.5f * random.next();
      m[size_t(i) * n + j] = v;
      m[size_t(j) * n + i] = v;
    }
  }
  return m;
}

void BM_EigenDecomposition(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<float> matrix = symmetricMatrix(n);
  std::vector<float> vectors(size_t(n) * n), values(n);
  for (auto _ : state) {
    eigenDecomposition(matrix.data(), vectors.data(), values.data(), n, 0.01f);
    benchmark::DoNotOptimize(values.data());
  }
}
BENCHMARK(BM_EigenDecomposition)->Arg(10)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond);

void BM_KmeansTwoWay(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<float> matrix = symmetricMatrix(n);
  Mat<float> data(n, n);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) data[i][j] = matrix[size_t(i) * n + j];
  }
  Vec<int> seed(n, 0), labels;
  seed[0] = 1;
  for (auto _ : state) {
    kmeans(data, 2, seed, labels);
    benchmark::DoNotOptimize(labels.data());
  }
}
BENCHMARK(BM_KmeansTwoWay)->Arg(10)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
