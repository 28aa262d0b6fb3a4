#include "numeric/mat_ops.h"

#include <cmath>
#include <cstddef>

void normalize(Vec<float>& v) {
  float sum = 0.0f;
  for (float x : v) sum += x * x;
  const float norm = std::sqrt(sum);
  if (norm == 0.0f) {
    for (float& x : v) x = 0.0f;
    return;
  }
  // Multiplying by the reciprocal may differ from dividing in the last bit;
  // the engine's results are defined with the multiplication.
  const float reciprocal = 1.0f / norm;
  for (float& x : v) x *= reciprocal;
}

void normalize(Mat<float>& m) {
  for (Vec<float>& row : m.rows) normalize(row);
}

float squaredDist(Vec<float>& a, Vec<float>& b) {
  float sum = 0.0f;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const float d = a[i] - b[i];
    sum += d * d;
  }
  return sum;
}

void thresholding(Mat<float>& m, const float& threshold) {
  for (Vec<float>& row : m.rows) {
    for (float& x : row) {
      if (x < threshold) x = 0.0f;
    }
  }
}

Vec<float> mean(Mat<float>& m) {
  if (m.rows.empty()) return Vec<float>();
  const std::size_t d = m.rows[0].size();
  Vec<float> sum(d);
  for (const Vec<float>& row : m.rows) {
    for (std::size_t j = 0; j < d; ++j) sum[j] += row[j];
  }
  const float reciprocal = 1.0f / static_cast<float>(m.rows.size());
  for (float& x : sum) x *= reciprocal;
  return sum;
}
