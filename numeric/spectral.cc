#include "numeric/spectral.h"

#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include "numeric/eigen.h"
#include "numeric/kmeans.h"
#include "numeric/mat_ops.h"
#include "platform/alloc_guard.h"

namespace {

// The eigen solver's tolerance for the spectral embedding.
constexpr float kEigenTolerance = 0.01f;

}  // namespace

int kernelToLabels(const Mat<float>& kernel, Vec<int>& labels, float threshold) {
  const int n = kernel.rowCount();
  std::vector<bool> visited(n, false);
  labels.clear();
  labels.resize(n, 0);

  int count = 0;
  for (int i = 0; i < n; ++i) {
    if (visited[i]) continue;
    for (int j = 0; j < n; ++j) {
      if (!visited[j] && kernel[i][j] > threshold) {
        labels[j] = count;
        visited[j] = true;
      }
    }
    ++count;
  }
  return count;
}

int spectralClustering(Mat<float>& kernel, int k, Vec<int>& initialLabels, Vec<int>& labels) {
  const int n = kernel.rowCount();
  const std::size_t cells = static_cast<std::size_t>(n) * static_cast<std::size_t>(n);

  std::unique_ptr<float[]> affinity;  // L
  std::unique_ptr<float[]> degree;    // D
  std::unique_ptr<float[]> vectors;   // V
  std::unique_ptr<float[]> values;    // E
  if (!detail::runOrLogAllocFailure("sClustering - L malloc fail!!!",
                                    [&] { affinity.reset(new float[cells]); })) {
    return 0;
  }
  if (!detail::runOrLogAllocFailure("sClustering - D malloc fail!!!",
                                    [&] { degree.reset(new float[n]()); })) {
    return 0;
  }

  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) degree[i] += kernel[i][j];
    degree[i] = 1.0f / std::sqrt(degree[i]);
  }
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) affinity[i * n + j] = (degree[j] * kernel[i][j]) * degree[i];
  }
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j) {
      const float average = (affinity[i * n + j] + affinity[j * n + i]) * 0.5f;
      affinity[i * n + j] = average;
      affinity[j * n + i] = average;
    }
  }

  // Zero-filled, so that an eigen solver that could not get its own storage
  // leaves a zero embedding rather than indeterminate floats.
  if (!detail::runOrLogAllocFailure("sClustering - V malloc fail!!!",
                                    [&] { vectors.reset(new float[cells]()); })) {
    return 0;
  }
  if (!detail::runOrLogAllocFailure("sClustering - E malloc fail!!!",
                                    [&] { values.reset(new float[n]()); })) {
    return 0;
  }
  eigenDecomposition(affinity.get(), vectors.get(), values.get(), n, kEigenTolerance);

  // Row i of the embedding: face i's entries in the eigenvectors of the k
  // largest eigenvalues.
  Mat<float> embedding(n, k);
  for (int i = 0; i < n; ++i) {
    for (int m = 0; m < k; ++m) embedding[i][m] = vectors[m * n + i];
  }
  normalize(embedding);

  affinity.reset();
  degree.reset();
  vectors.reset();
  values.reset();

  kmeans(embedding, k, initialLabels, labels);
  return 1;
}
