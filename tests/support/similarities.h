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

}  // namespace testing_support

#endif  // XVKFC_TESTS_SUPPORT_SIMILARITIES_H_
