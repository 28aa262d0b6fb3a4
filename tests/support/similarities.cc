#include "support/similarities.h"

#include "support/scripted_closed_libs.h"

namespace testing_support {

std::vector<float> taggedFeature(int tag) {
  std::vector<float> feature(960);
  feature[0] = static_cast<float>(tag);
  for (int i = 1; i < 960; ++i) feature[i] = static_cast<float>((tag * 31 + i * 7) % 97) / 97.0f;
  return feature;
}

std::vector<std::vector<float>> scriptSimilarities(
    const std::vector<std::vector<float>>& similarity) {
  std::vector<std::vector<float>> features;
  for (size_t i = 0; i < similarity.size(); ++i) features.push_back(taggedFeature(int(i)));
  for (size_t i = 0; i < similarity.size(); ++i) {
    for (size_t j = i + 1; j < similarity.size(); ++j) {
      scripted().setScore(features[i], features[j], 2.0f * similarity[i][j] - 1.0f);
    }
  }
  return features;
}

std::vector<std::vector<float>> blockSimilarities(const std::vector<int>& blockSizes, float inside,
                                                  float between) {
  std::vector<int> blockOf;
  for (size_t b = 0; b < blockSizes.size(); ++b) blockOf.insert(blockOf.end(), blockSizes[b], int(b));
  const size_t n = blockOf.size();
  std::vector<std::vector<float>> s(n, std::vector<float>(n));
  for (size_t i = 0; i < n; ++i) {
    for (size_t j = 0; j < n; ++j) {
      s[i][j] = i == j ? 1.0f : (blockOf[i] == blockOf[j] ? inside : between);
    }
  }
  return s;
}

}  // namespace testing_support
