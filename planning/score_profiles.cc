#include "planning/score_profiles.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "interface/face_recognition.h"
#include "interface/handle_support.h"

namespace detail {

namespace {
constexpr int kDim = xvkfc::kFeatureDim;
}  // namespace

ScoreProfiles::ScoreProfiles(FaceRecognition& handle, const std::vector<float*>& rows)
    : handle_(handle), length_(std::min(kProfileLength, static_cast<int>(rows.size()))) {
  references_.resize(static_cast<std::size_t>(length_) * kDim);
  for (int r = 0; r < length_; ++r) {
    const std::size_t row = static_cast<std::size_t>(static_cast<int64_t>(r) * rows.size() / length_);
    std::memcpy(&references_[static_cast<std::size_t>(r) * kDim], rows[row], kDim * sizeof(float));
  }
}

int ScoreProfiles::add(float* feature) {
  const std::size_t at = profiles_.size();
  profiles_.resize(at + length_);
  float* p = &profiles_[at];
  double mean = 0.0;
  for (int r = 0; r < length_; ++r) {
    p[r] = static_cast<float>(
        handle_.itf_xvk_compareFeature(feature, &references_[static_cast<std::size_t>(r) * kDim]));
    ++comparisons_;
    mean += p[r];
  }
  mean /= length_;
  double norm = 0.0;
  for (int r = 0; r < length_; ++r) {
    p[r] = static_cast<float>(p[r] - mean);
    norm += static_cast<double>(p[r]) * p[r];
  }
  // A flat profile correlates with nothing.
  const float scale = norm > 0.0 ? static_cast<float>(1.0 / std::sqrt(norm)) : 0.0f;
  for (int r = 0; r < length_; ++r) p[r] *= scale;
  return static_cast<int>(at / length_);
}

}  // namespace detail
