// Step 1 of a plan: a face's score profile, its scores against a fixed set of
// reference faces. Faces of one person score alike against any third face,
// so their profiles correlate even when neither is a reference; faces of
// different people do not. A profile turns every face into a short vector
// that can be searched without the comparator.
#ifndef XVKFC_PLANNING_SCORE_PROFILES_H_
#define XVKFC_PLANNING_SCORE_PROFILES_H_

#include <cstddef>
#include <cstdint>
#include <vector>

class FaceRecognition;

namespace detail {

// References per profile: a profile costs this many comparator calls.
inline constexpr int kProfileLength = 64;

// Profiles of features against references it keeps copies of. Starts no
// threads; uses the handle it points to (not owned) for every call.
class ScoreProfiles {
 public:
  // References: kProfileLength of `rows` (960 floats each), evenly spread
  // over them (all of them when fewer), copied.
  ScoreProfiles(FaceRecognition& handle, const std::vector<float*>& rows);

  // Appends the profile of `feature` (960 floats, given to the comparator,
  // which may write through it): its scores against the references, less
  // their mean, scaled to unit length (all zero when every reference scores
  // alike). Returns its index.
  int add(float* feature);

  const float* profile(int index) const { return &profiles_[static_cast<std::size_t>(index) * length_]; }
  int length() const { return length_; }
  int size() const { return static_cast<int>(profiles_.size() / length_); }
  int64_t comparisons() const { return comparisons_; }

 private:
  FaceRecognition& handle_;
  int length_;
  std::vector<float> references_;  // length_ x 960
  std::vector<float> profiles_;    // size() x length_
  int64_t comparisons_ = 0;
};

// Correlation of two profiles of `length` floats: a dot product in eight
// partial sums added in a fixed order, so every platform gets the same value.
// Inline: the profile search calls it about n^2 / 64 times.
inline float profileDot(const float* a, const float* b, int length) {
  float part[8] = {0, 0, 0, 0, 0, 0, 0, 0};
  int k = 0;
  for (; k + 8 <= length; k += 8) {
    for (int j = 0; j < 8; ++j) part[j] += a[k + j] * b[k + j];
  }
  for (int j = 0; k < length; ++k, ++j) part[j] += a[k] * b[k];
  return ((part[0] + part[1]) + (part[2] + part[3])) + ((part[4] + part[5]) + (part[6] + part[7]));
}

}  // namespace detail

#endif  // XVKFC_PLANNING_SCORE_PROFILES_H_
