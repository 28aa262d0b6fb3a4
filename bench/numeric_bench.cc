// Speed of the numeric routines against the matrix size.
#include <benchmark/benchmark.h>

#include <cmath>
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
      const float v = 0.5f + 0.5f * random.symmetric();
      m[size_t(i) * n + j] = v;
      m[size_t(j) * n + i] = v;
    }
  }
  return m;
}

// The matrix the eigen solver is given in spectral clustering: the
// normalised affinity D^(-1/2) K D^(-1/2) of a similarity kernel
// K = (cosine + 1) / 2 of faces of n / 10 people, symmetrised. Its spectrum
// (a few large eigenvalues, one per person, and many small ones) sets how
// many sweeps the solver needs, so a random matrix would mislead.
std::vector<float> spectralAffinity(int n) {
  const int people = n < 10 ? 1 : n / 10;
  const std::vector<float> faces = bench::syntheticGallery(n, people);
  std::vector<float> kernel(size_t(n) * n), degree(n, 0.0f);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      float dot = 0.0f;
      for (int d = 0; d < 960; ++d) dot += faces[size_t(i) * 960 + d] * faces[size_t(j) * 960 + d];
      kernel[size_t(i) * n + j] = i == j ? 1.0f : (dot + 1.0f) * 0.5f;
      degree[i] += kernel[size_t(i) * n + j];
    }
  }
  for (float& d : degree) d = 1.0f / std::sqrt(d);
  std::vector<float> affinity(size_t(n) * n);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j)
      affinity[size_t(i) * n + j] = degree[j] * kernel[size_t(i) * n + j] * degree[i];
  }
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j) {
      const float mean = (affinity[size_t(i) * n + j] + affinity[size_t(j) * n + i]) * 0.5f;
      affinity[size_t(i) * n + j] = affinity[size_t(j) * n + i] = mean;
    }
  }
  return affinity;
}

void BM_EigenDecomposition(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<float> matrix = spectralAffinity(n);
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
