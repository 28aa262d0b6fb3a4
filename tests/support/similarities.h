// Test features that are told apart by the scripted comparator.
#ifndef XVKFC_TESTS_SUPPORT_SIMILARITIES_H_
#define XVKFC_TESTS_SUPPORT_SIMILARITIES_H_

#include <vector>

namespace testing_support {

// A 960-float feature whose element 0 is `tag` and whose other elements are a
// fixed pattern of the tag. Tagged features sort (and so load) in ascending
// tag order, and distinct tags give distinct features.
inline std::vector<float> taggedFeature(int tag) {
  std::vector<float> feature(960);
  feature[0] = static_cast<float>(tag);
  for (int i = 1; i < 960; ++i) feature[i] = static_cast<float>((tag * 31 + i * 7) % 97) / 97.0f;
  return feature;
}

// The tagged features of `tags`, one after another.
inline std::vector<float> taggedFeatures(const std::vector<int>& tags) {
  std::vector<float> all;
  for (int tag : tags) {
    const std::vector<float> one = taggedFeature(tag);
    all.insert(all.end(), one.begin(), one.end());
  }
  return all;
}

// A comparator for tagged features: tags with the same tens digit are one
// person (score 0.9, similarity 0.95), all other pairs score -0.4 (0.3).
inline float tensDigitPeople(const float* a, const float* b) {
  return static_cast<int>(a[0]) / 10 == static_cast<int>(b[0]) / 10 ? 0.9f : -0.4f;
}

}  // namespace testing_support

#endif  // XVKFC_TESTS_SUPPORT_SIMILARITIES_H_
